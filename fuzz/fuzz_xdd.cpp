#include "fuzz/fuzzsupport.h"

#include "import/xddimporter.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzSupport::prepare();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    XDDImporter importer;
    importer.setLine(0);
    importer.setDatabase(&FuzzSupport::store());
    importer.setRange(0x1000, 0x10FF);
    importer.setFile(FuzzSupport::file(data, size, "xdd"));
    importer.doImport();
    return 0;
}
