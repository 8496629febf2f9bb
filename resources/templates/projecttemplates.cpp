#include "resources/templates/projecttemplates.h"

// Outside of any namespace, since that is where the resource's own function stands.
static void initializeResource()
{
    Q_INIT_RESOURCE(templates);
}

void ProjectTemplates::makeAvailable()
{
    initializeResource();
}
