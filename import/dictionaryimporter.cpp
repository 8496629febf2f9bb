#include "import/dictionaryimporter.h"

void DictionaryImporter::doImport()
{
    run([this] {
        if (store() && !import())
            reportError(tr("%1: the project refused a part of the import.").arg(fileName()));
        reset();
    });
}

void DictionaryImporter::noteDropped(int count)
{
    if (count > 0)
        note(ImportResult::Kind::Lost, 0,
             tr("Arrays or records have become variables; subindices that went with that: %1.")
                 .arg(count));
}
