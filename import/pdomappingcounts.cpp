#include "import/pdomappingcounts.h"

#include "canopen/cobid.h"
#include "canopen/edsobjectreader.h"
#include "canopen/indextext.h"
#include "canopen/objectranges.h"
#include "import/objectwriter.h"

#include <QCoreApplication>
#include <QMap>

namespace {

using Entry = ObjectDataBase::SUBINDEX_DATA_T;
using Object = QMap<quint8, Entry *>;

constexpr quint16 mappingDistance = 0x200; ///< from communication parameters to their mapping

QString tr(const char *text)
{
    return QCoreApplication::translate("PdoMappingCounts", text);
}

bool isEmpty(const Entry *entry)
{
    return entry->defaultvalue.toULongLong(nullptr, 0) == 0;
}

/// Entries in use, from the first on.
quint8 usedCount(const Object &mapping)
{
    quint8 used = 0;
    for (auto entry = mapping.upperBound(0); entry != mapping.cend(); ++entry) {
        if (entry.key() != used + 1 || isEmpty(*entry))
            break;
        ++used;
    }
    return used;
}

bool isEmptyFrom(const Object &mapping, quint8 subindex)
{
    for (auto entry = mapping.lowerBound(subindex); entry != mapping.cend(); ++entry) {
        if (!isEmpty(*entry))
            return false;
    }
    return true;
}

QString disablePdo(const Object &communication, quint16 index)
{
    Entry *cobId = communication.value(1);
    if (cobId == nullptr || CobId::isDisabled(cobId->defaultvalue))
        return {};
    const QString before = cobId->defaultvalue;
    cobId->defaultvalue = CobId::disabled(before);
    if (cobId->defaultvalue == before)
        return {};
    return tr("%1 maps nothing; its PDO is disabled by the COB-ID %2.")
        .arg(IndexText::hex(index), cobId->defaultvalue);
}

} // namespace

void PdoMappingCounts::add(quint16 index)
{
    if (ObjectRanges::isPdoMapping(index))
        m_indices.insert(index);
}

QStringList PdoMappingCounts::mend(ObjectWriter &writer) const
{
    QMap<quint16, Object> objects;
    for (ObjectDataBase::SubEntry &entry : writer.entries()) {
        if (m_indices.contains(entry.index) || m_indices.contains(entry.index + mappingDistance))
            objects[entry.index][entry.subindex] = &entry.data;
    }
    QStringList sentences;
    QMap<quint16, quint8> lastOf; // of mappings that become shorter
    for (auto object = objects.cbegin(); object != objects.cend(); ++object) {
        const quint16 index = object.key();
        const Object &mapping = *object;
        Entry *count = mapping.value(0);
        if (!m_indices.contains(index) || count == nullptr || mapping.size() < 2)
            continue;
        count->accesstype = (*std::next(mapping.cbegin()))->accesstype;
        const quint8 used = usedCount(mapping);
        const quint8 last = mapping.lastKey();
        const bool isDynamic = count->accesstype == QLatin1String("rw");
        if (used == last || !isEmptyFrom(mapping, used + 1) || (!isDynamic && used == 0))
            continue;
        count->defaultvalue = QString::number(used);
        sentences.append(
            (isDynamic ? tr("%1 maps %2 of %3 entries; its subindex 0 says so.")
                       : tr("%1 maps %2 of %3 entries and is fixed; the others are left out."))
                .arg(IndexText::hex(index))
                .arg(used)
                .arg(last));
        if (!isDynamic)
            lastOf.insert(index, used);
        else if (used == 0)
            sentences.append(disablePdo(objects.value(index - mappingDistance), index));
    }
    writer.entries().removeIf([&](const ObjectDataBase::SubEntry &entry) {
        return entry.subindex > lastOf.value(entry.index, 0xFF);
    });
    sentences.removeAll(QString());
    return sentences;
}
