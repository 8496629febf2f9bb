#include "fuzz/fuzzsupport.h"

#include "import/importhandler.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzSupport::prepare();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    ImportHandler handler(&FuzzSupport::store());
    const bool done =
        handler.loadImportFile(FuzzSupport::file(data, size, "ini")) && handler.applyImportFile();
    if (done != handler.errorString().isEmpty())
        __builtin_trap();
    return 0;
}
