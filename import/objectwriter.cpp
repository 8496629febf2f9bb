#include "import/objectwriter.h"

#include "dictionary/entryrules.h"
#include <QCoreApplication>
#include <algorithm>

void ObjectWriter::addObject(quint16 index, const ObjectDataBase::INDEX_DATA_T &data)
{
    if (!m_objects.contains(index))
        m_order.append(index);
    m_objects.insert(index, data);
}

void ObjectWriter::addEntry(quint16 index, quint8 subindex, ObjectDataBase::SUBINDEX_DATA_T data)
{
    makeGeneratable(data, index, subindex);
    m_entries.append({m_line, index, subindex, std::move(data)});
}

ObjectDataBase::INDEX_DATA_T *ObjectWriter::object(quint16 index)
{
    const auto found = m_objects.find(index);
    return found == m_objects.end() ? nullptr : &*found;
}

void ObjectWriter::makeGeneratable(ObjectDataBase::SUBINDEX_DATA_T &data, quint16 index,
                                   quint8 subindex)
{
    const bool isDomain = data.datatype == CAN::DOMAIN_TYPE;
    if (!EntryRules::hasSize(data.datatype))
        return;
    const bool isConstant =
        data.accesstype == QLatin1String("const") || data.accesstype == QLatin1String("ro");
    if (isConstant && !isDomain) {
        data.implementation = CANopen::ManagedConst;
    } else {
        data.implementation = CANopen::Variable;
        data.varname = EntryRules::variableName(index, subindex);
    }
    data.size = static_cast<quint32>(
        std::max<qsizetype>(1, EntryRules::byteCount(data.datatype, data.defaultvalue)));
}

/// A record that becomes a variable would keep the subindices that it has no more.
void ObjectWriter::dropOutdatedEntries()
{
    m_droppedCount = 0;
    const QList<quint16> present = m_store.getIndices(m_line);
    for (const quint16 index : present) {
        const auto object = m_objects.constFind(index);
        if (object == m_objects.constEnd() || object->objecttype == CANopen::ARRAY ||
            object->objecttype == CANopen::RECORD)
            continue;
        const QList<quint8> subindices = m_store.getSubIndices(m_line, index);
        for (const quint8 subindex : subindices) {
            if (subindex > 0 && m_store.deleteSubIndex(m_line, index, subindex))
                ++m_droppedCount;
        }
    }
}

/// The model check wants the flag on subindex 0 of everything but variables, and a domain has no
/// value that a file could give.
void ObjectWriter::flagDomains()
{
    for (ObjectDataBase::SubEntry &entry : m_entries) {
        const auto object = m_objects.constFind(entry.index);
        if (entry.subindex == 0 && object != m_objects.constEnd() &&
            object->objecttype == CANopen::DOMAIN_OBJECT) {
            entry.data.defaultineds = true;
            entry.data.writedefaulttoeds = 1;
        }
    }
}

bool ObjectWriter::write()
{
    dropOutdatedEntries();
    flagDomains();
    QList<ObjectDataBase::IndexEntry> objects;
    objects.reserve(m_order.size());
    for (const quint16 index : std::as_const(m_order))
        objects.append({m_line, index, m_objects.value(index)});
    bool done = m_store.addIndices(objects);
    done &= m_store.addSubIndices(m_entries);
    // The batch goes past the caches.
    m_store.clearSubCache(m_line);
    m_order.clear();
    m_objects.clear();
    m_entries.clear();
    return done;
}
