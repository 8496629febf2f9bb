#include "dictionary/dictionaryclipboard.h"

#include <algorithm>

bool DictionaryClipboard::copy(ObjectDataBase &store, quint8 line, QList<quint16> indices)
{
    std::ranges::sort(indices);
    std::vector<DictionaryObject> objects;
    objects.reserve(static_cast<std::size_t>(indices.size()));
    for (const quint16 index : std::as_const(indices)) {
        if (store.indexExists(line, index))
            objects.push_back(readDictionaryObject(store, line, index));
    }
    if (objects.empty() || !std::ranges::all_of(objects, &DictionaryObject::isWhole))
        return false;
    m_objects = std::move(objects);
    return true;
}
