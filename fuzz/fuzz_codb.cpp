#include "fuzz/fuzzsupport.h"

#include "import/codbimporter.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzSupport::prepare();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    constexpr quint8 line = ObjectDataBase::stagingLine;
    ObjectDataBase &store = FuzzSupport::store();
    FuzzSupport::emptyLine(line);

    CODBImporter importer;
    importer.setLine(line);
    importer.setDatabase(&store);
    importer.setRange(0, 0xFFFF);
    importer.setFile(FuzzSupport::file(data, size, "codb"));
    importer.setExpandCopies(true);
    importer.doImport();
    // What the project has no use for is no reason to refuse a file.
    if (!importer.errorString().isEmpty() && store.getIndices(line).size() > 0)
        __builtin_trap();
    return 0;
}
