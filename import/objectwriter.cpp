#include "import/objectwriter.h"

#include <algorithm>
#include <cctype>

namespace {

bool isText(quint16 dataType)
{
    return dataType == CAN::VISIBLE_STRING || dataType == CAN::OCTET_STRING ||
           dataType == CAN::UNICODE_STRING || dataType == CAN::UTF8_STRING;
}

/// Bytes of an octet string that is written as pairs of hexadecimal digits; -1 if it isn't.
qsizetype octetCount(const QString &text)
{
    qsizetype digits = 0;
    const QStringList groups =
        text.simplified().replace(u',', u' ').split(u' ', Qt::SkipEmptyParts);
    for (const QString &group : groups) {
        const QStringView bare = group.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)
                                     ? QStringView(group).mid(2)
                                     : QStringView(group);
        const bool isHex = std::all_of(bare.begin(), bare.end(), [](QChar c) {
            return c.unicode() < 0x80 && std::isxdigit(static_cast<unsigned char>(c.toLatin1()));
        });
        if (bare.isEmpty() || !isHex || bare.size() % 2 != 0)
            return -1;
        digits += bare.size();
    }
    return digits / 2;
}

qsizetype byteCount(quint16 dataType, const QString &text)
{
    if (dataType == CAN::UNICODE_STRING)
        return 2 * text.size();
    if (dataType == CAN::OCTET_STRING || dataType == CAN::DOMAIN_TYPE) {
        if (const qsizetype octets = octetCount(text); octets >= 0)
            return octets;
    }
    const bool isLatin1 =
        dataType != CAN::UTF8_STRING &&
        std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x100; });
    return isLatin1 ? text.size() : text.toUtf8().size();
}

} // namespace

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
    if (!isDomain && !isText(data.datatype))
        return;
    const bool isConstant =
        data.accesstype == QLatin1String("const") || data.accesstype == QLatin1String("ro");
    if (isConstant && !isDomain) {
        data.implementation = CANopen::ManagedConst;
    } else {
        data.implementation = CANopen::Variable;
        data.varname =
            QStringLiteral("v_%1%2").arg(QString::number(index), QString::number(subindex));
    }
    data.size =
        static_cast<quint32>(std::max<qsizetype>(1, byteCount(data.datatype, data.defaultvalue)));
}

/// A record that becomes a variable would keep the subindices that it has no more.
void ObjectWriter::dropOutdatedEntries()
{
    const QList<quint16> present = m_store.getIndices(m_line);
    for (const quint16 index : present) {
        const auto object = m_objects.constFind(index);
        if (object == m_objects.constEnd() || object->objecttype == CANopen::ARRAY ||
            object->objecttype == CANopen::RECORD)
            continue;
        const QList<quint8> subindices = m_store.getSubIndices(m_line, index);
        for (const quint8 subindex : subindices) {
            if (subindex > 0)
                m_store.deleteSubIndex(m_line, index, subindex);
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
