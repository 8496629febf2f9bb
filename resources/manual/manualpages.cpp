#include "resources/manual/manualpages.h"

#include <QtGlobal>

// Outside of any namespace, since that is where the resource's own function stands.
static void initializeResource()
{
    Q_INIT_RESOURCE(manual);
}

void ManualPages::makeAvailable()
{
    initializeResource();
}
