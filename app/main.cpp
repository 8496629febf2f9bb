#include "app/startsequence.h"

int main(int argc, char *argv[])
{
    return runQuillforge(argc, argv, QUILLFORGE_APPLICATION_NAME);
}
