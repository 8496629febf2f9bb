#include "fuzz/fuzzsupport.h"

#include "import/csvimporter.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzSupport::prepare();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    constexpr quint8 line = 1; // a line of the project, so that the column `line` counts too
    ObjectDataBase &store = FuzzSupport::store();
    FuzzSupport::emptyLine(line);

    CsvImporter importer;
    importer.setLine(line);
    importer.setDatabase(&store);
    importer.setRange(0x1000, 0xFFFF);
    importer.setFile(FuzzSupport::file(data, size, "icsv"));
    importer.doImport();
    if (!importer.errorString().isEmpty() && !store.getIndices(line).isEmpty())
        __builtin_trap();
    return 0;
}
