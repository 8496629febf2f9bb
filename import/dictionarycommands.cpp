#include "import/dictionarycommands.h"

#include "store/objectdatabase.h"

void DictionaryCommands::run(ObjectDataBase &store, quint8 line) const
{
    for (const auto &[target, source] : copies) {
        if (!target.subindex) {
            if (store.indexExists(line, source.index) && source.index != target.index)
                store.copyIndex(line, source.index, line, target.index);
            continue;
        }
        ObjectDataBase::SUBINDEX_DATA_T entry;
        if (store.getSubIndexData(line, source.index, *source.subindex, entry))
            store.addSubIndex(line, target.index, *target.subindex, entry);
    }
    for (const Address &address : deletions) {
        if (!address.subindex) {
            if (store.indexExists(line, address.index))
                store.deleteIndex(line, address.index);
        } else if (store.subIndexExists(line, address.index, *address.subindex)) {
            store.deleteSubIndex(line, address.index, *address.subindex);
        }
    }
}
