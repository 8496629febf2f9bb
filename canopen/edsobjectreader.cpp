#include "canopen/edsobjectreader.h"

#include "canopen/canopentypes.h"
#include "canopen/cohelper.h"
#include "canopen/edsvalue.h"
#include "canopen/indextext.h"
#include "canopen/objectranges.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

using Note = ImportResult::Kind;

constexpr qsizetype mostUnknownKeys = 200;
constexpr qsizetype longestKey = 60;
constexpr int firstSignalType = 100;

QString tr(const char *text)
{
    return QCoreApplication::translate("EdsParser", text);
}

QString findingText(EdsValue::Finding finding)
{
    switch (finding) {
    case EdsValue::Finding::TwosComplement:
        return tr("%1: '%2' is read as the bits of a negative number: %3.");
    case EdsValue::Finding::LeadingZero:
        return tr("%1: '%2' can't be octal and is read as %3.");
    case EdsValue::Finding::Comment:
        return tr("%1: the comment behind the value of '%2' is passed over: %3.");
    case EdsValue::Finding::TruthValue:
        return tr("%1: '%2' is read as %3.");
    case EdsValue::Finding::RealBits:
        return tr("%1: '%2' are the bits of a real number, not its value; kept as "
                  "written, but generating asks for the value.");
    case EdsValue::Finding::NodeIdForm:
        return tr("%1: '%2' is no sum of $NODEID and numbers; kept as written.");
    case EdsValue::Finding::OutOfRange:
        return tr("%1: '%2' lies outside the range of the data type; kept as written.");
    case EdsValue::Finding::NoNumber:
        return tr("%1: '%2' is no value of the data type; kept as written.");
    case EdsValue::Finding::Plain:
        break;
    }
    return {};
}

} // namespace

QString EdsObjectReader::Where::text() const
{
    const QString object = IndexText::hex(index);
    return subindex < 0 ? object : object + QLatin1String("sub") + QString::number(subindex, 16);
}

EdsObjectReader::Key EdsObjectReader::keyOf(QByteArrayView name)
{
    static constexpr std::array<QByteArrayView, KeyCount> names = {
        "ParameterName", "ObjectType",    "DataType",     "AccessType",
        "PDOMapping",    "DefaultValue",  "LowLimit",     "HighLimit",
        "SubNumber",     "CompactSubObj", "ObjFlags",     "ParameterValue",
        "Denotation",    "UploadFile",    "DownloadFile", "ParamRefd"};
    for (quint8 i = 0; i < KeyCount; ++i) {
        if (names[i].size() == name.size() && names[i].compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<Key>(i);
    }
    return KeyCount;
}

EdsObjectReader::Fields EdsObjectReader::readFields(const EdsText::Section &section,
                                                    Telling telling)
{
    Fields fields;
    fields.line = section.line;
    m_text.forEachEntry(
        section,
        [&](const EdsText::Entry &entry) {
            const Key key = keyOf(entry.key);
            if (key == KeyCount) {
                if (telling == Telling::All)
                    noteUnknown(entry);
            } else if (fields.keys[key].line != 0) {
                if (telling == Telling::All)
                    m_result.add(Note::PassedOver, entry.line,
                                 tr("The key %1 stands twice in its section; the first "
                                    "one counts.")
                                     .arg(m_text.excerpt(entry.key)));
            } else {
                fields.keys[key] = {entry.value, entry.line};
            }
        },
        [&](QByteArrayView text) { fields.description.append(text); });
    return fields;
}

void EdsObjectReader::noteUnknown(const EdsText::Entry &entry)
{
    if (entry.key.isEmpty()) {
        if (!m_result.isFull())
            m_result.add(Note::PassedOver, entry.line,
                         tr("The line '%1' is no entry and is passed over.")
                             .arg(m_text.excerpt(entry.value)));
        else
            m_result.add(Note::PassedOver, entry.line, {});
        return;
    }
    const QByteArray name = entry.key.first(qMin(entry.key.size(), longestKey)).toByteArray();
    const auto known = m_unknownKeys.find(name);
    if (known != m_unknownKeys.end())
        ++known->count;
    else if (m_unknownKeys.size() < mostUnknownKeys)
        m_unknownKeys.insert(name, {entry.line, 1});
}

void EdsObjectReader::reportUnknownKeys()
{
    QList<std::pair<QByteArray, UnknownKey>> keys;
    for (auto it = m_unknownKeys.cbegin(); it != m_unknownKeys.cend(); ++it)
        keys.append({it.key(), it.value()});
    std::sort(keys.begin(), keys.end(),
              [](const auto &a, const auto &b) { return a.second.firstLine < b.second.firstLine; });
    for (const auto &[name, found] : std::as_const(keys))
        m_result.add(Note::PassedOver, found.firstLine,
                     tr("The key %1 is unknown and is passed over; it stands in %2 places.")
                         .arg(m_text.excerpt(name))
                         .arg(found.count));
    m_unknownKeys.clear();
}

/// Long descriptions are cut into lines, so the lines are put together again. A variable carries
/// the descriptions of object and value in one section, which mostly are the same text.
QString EdsObjectReader::descriptionOf(const Fields &fields, bool isVariable) const
{
    const QList<QByteArrayView> &pieces = fields.description;
    qsizetype count = pieces.size();
    if (isVariable && count % 2 == 0 &&
        std::equal(pieces.begin(), pieces.begin() + count / 2, pieces.begin() + count / 2))
        count /= 2;
    QString text;
    for (qsizetype i = 0; i < count; ++i)
        text += m_text.decoded(pieces.at(i));
    return text;
}

std::optional<quint32> EdsObjectReader::numberOf(const Field &field, const char *key)
{
    const auto number = EdsValue::number(field.text);
    if (!number && !field.text.isEmpty())
        m_result.add(Note::PassedOver, field.line,
                     tr("%1: '%2' is no number and is passed over.")
                         .arg(QLatin1String(key), m_text.excerpt(field.text)));
    return number;
}

quint32 EdsObjectReader::numberOf(const Field &field, quint32 fallback, const char *key)
{
    return numberOf(field, key).value_or(fallback);
}

/// A variable's value shares the variable's name, whose lack is told of the object.
QString EdsObjectReader::nameOf(const Fields &fields, const Owner &owner, const Where &where,
                                Telling telling)
{
    const QString name = textOf(fields.keys[ParameterName]);
    if (!name.isEmpty())
        return name;
    if (where.subindex < 0)
        return owner.name;
    if (telling == Telling::All)
        m_result.add(Note::Made, fields.line, tr("%1 has no name.").arg(where.text()));
    return IndexText::unnamedSubIndex;
}

bool EdsObjectReader::flagOf(const Field &field, const char *key)
{
    for (const char *word : {"true", "yes"}) {
        if (field.text.compare(QByteArrayView(word), Qt::CaseInsensitive) == 0)
            return true;
    }
    for (const char *word : {"false", "no"}) {
        if (field.text.compare(QByteArrayView(word), Qt::CaseInsensitive) == 0)
            return false;
    }
    return numberOf(field, 0, key) != 0;
}

/// Entries of PDO mappings are of one type, while many files state the structure of the whole.
quint16 EdsObjectReader::compactTypeOf(const Field &field, const Where &where)
{
    constexpr quint32 mappingStructure = 0x21;
    if (ObjectRanges::isPdoMapping(where.index) &&
        (field.text.isEmpty() || EdsValue::number(field.text) == mappingStructure))
        return CAN::UNSIGNED32;
    return dataTypeOf(field, 0, where);
}

quint16 EdsObjectReader::dataTypeOf(const Field &field, quint16 fallback, const Where &where)
{
    if (field.text.isEmpty()) {
        if (fallback == 0)
            m_result.add(Note::Read, field.line, tr("%1 has no data type.").arg(where.text()));
        return fallback;
    }
    auto number = EdsValue::number(field.text);
    if (!number) {
        number = COHelper::mapDataTypeString(m_text.excerpt(field.text));
        if (*number == 0)
            number = ~0U;
    }
    // From 100 up stand types of ours, which mean something else in a device description.
    const bool known = *number < firstSignalType &&
                       !COHelper::index2DataTypeString(static_cast<quint16>(*number)).isEmpty();
    if (!known)
        m_result.add(Note::Lost, field.line,
                     tr("%1: the data type '%2' is not supported; it becomes 0, which "
                        "is no data type.")
                         .arg(where.text(), m_text.excerpt(field.text)));
    return known ? static_cast<quint16>(*number) : quint16(0);
}

QString EdsObjectReader::accessOf(const Field &field, const QString &fallback, int line,
                                  const Where &where)
{
    static const QStringList accessTypes = {QStringLiteral("rw"),    QStringLiteral("ro"),
                                            QStringLiteral("const"), QStringLiteral("wo"),
                                            QStringLiteral("rww"),   QStringLiteral("rwr")};
    if (field.text.isEmpty()) {
        if (!fallback.isEmpty())
            return fallback;
        m_result.add(Note::Made, line,
                     tr("%1 has no access type; it is taken as \"ro\".").arg(where.text()));
        return QStringLiteral("ro");
    }
    const QString access = COHelper::normalizeAccessType(m_text.excerpt(field.text));
    if (!accessTypes.contains(access))
        m_result.add(Note::Read, field.line,
                     tr("%1: the access type '%2' is unknown.").arg(where.text(), access));
    return access;
}

QString EdsObjectReader::valueOf(const Field &field, quint16 dataType, const Where &where)
{
    const QString text = textOf(field);
    EdsValue::Value value = EdsValue::value(dataType, text);
    if (value.finding == EdsValue::Finding::Plain)
        return value.text;
    const QString sentence = findingText(value.finding);
    const QString written = text.left(60);
    const Note kind = value.text == text ? Note::Read : Note::Mended;
    m_result.add(kind, field.line,
                 sentence.contains(QLatin1String("%3"))
                     ? sentence.arg(where.text(), written, value.text.left(60))
                     : sentence.arg(where.text(), written));
    return value.text;
}

/// Many files state both limits empty everywhere, which means that there are none. Of a range
/// with one end the data type gives the other.
void EdsObjectReader::readLimits(const Fields &fields, quint16 dataType, const Where &where,
                                 QString &low, QString &high, bool &given)
{
    low = valueOf(fields.keys[LowLimit], dataType, where);
    high = valueOf(fields.keys[HighLimit], dataType, where);
    given = !low.isEmpty() || !high.isEmpty();
    if (!given || (!low.isEmpty() && !high.isEmpty()))
        return;
    QString naturalLow;
    QString naturalHigh;
    COHelper::getDefaultLimits(dataType, naturalLow, naturalHigh);
    (low.isEmpty() ? low : high) = low.isEmpty() ? naturalLow : naturalHigh;
}

EdsObjectReader::Object EdsObjectReader::readObject(const EdsText::Section &section, quint16 index)
{
    const Fields fields = readFields(section, Telling::All);
    const auto &keys = fields.keys;
    Object object;
    CANopen::CANopenIndex &record = object.record;
    record.index = index;
    record.name = textOf(keys[ParameterName]);
    record.objectCode =
        static_cast<quint8>(qMin(numberOf(keys[ObjectType], CANopen::VAR, "ObjectType"), 0xFFU));
    object.hasObjectType = !keys[ObjectType].text.isEmpty();
    object.hasDataType = !keys[DataType].text.isEmpty();
    object.looksLikeObject = object.hasObjectType || object.hasDataType ||
                             keys[ParameterName].line != 0 || keys[SubNumber].line != 0;
    object.subNumber = numberOf(keys[SubNumber], "SubNumber");
    const bool isComplex =
        record.objectCode == CANopen::ARRAY || record.objectCode == CANopen::RECORD;
    record.description = descriptionOf(fields, !isComplex);
    record.dataType = static_cast<quint16>(
        EdsValue::number(keys[DataType].text)
            .value_or(COHelper::mapDataTypeString(m_text.excerpt(keys[DataType].text))));
    const Where where{index};
    quint32 compact = numberOf(keys[CompactSubObj], 0, "CompactSubObj");
    if (compact > mostCompactEntries) {
        m_result.add(Note::Mended, keys[CompactSubObj].line,
                     tr("%1: CompactSubObj is %2; an object has at most %3 entries.")
                         .arg(where.text())
                         .arg(compact)
                         .arg(mostCompactEntries));
        compact = mostCompactEntries;
    }
    record.compactSubObj = static_cast<quint16>(compact);
    if (compact == 0)
        return object;
    record.dataType = compactTypeOf(keys[DataType], where);
    record.accessType = accessOf(keys[AccessType], {}, fields.line, where);
    record.pdoMapping = flagOf(keys[PDOMappingKey], "PDOMapping");
    record.defaultValue = valueOf(keys[DefaultValue], record.dataType, where);
    record.hasDefaultValue = !record.defaultValue.isEmpty();
    readLimits(fields, record.dataType, where, record.lowLimit, record.highLimit, record.hasLimits);
    return object;
}

CANopenSubindex EdsObjectReader::readSubindex(const EdsText::Section &section, const Owner &owner,
                                              quint8 subindex, Telling telling)
{
    const Fields fields = readFields(section, telling);
    const auto &keys = fields.keys;
    const bool isComplex =
        owner.objectCode == CANopen::ARRAY || owner.objectCode == CANopen::RECORD;
    const bool isCount = isComplex && subindex == 0;
    const bool isDomain =
        owner.objectCode == CANopen::DOMAIN_OBJECT ||
        (isComplex && EdsValue::number(keys[ObjectType].text) == quint32(CANopen::DOMAIN_OBJECT));
    const Where where{owner.index, isComplex ? int(subindex) : -1};

    CANopenSubindex record;
    record.index = owner.index;
    record.subindex = subindex;
    record.name = nameOf(fields, owner, where, telling);
    const quint16 usualType = isDomain                             ? quint16(CAN::DOMAIN_TYPE)
                              : isCount                            ? quint16(CAN::UNSIGNED8)
                              : owner.objectCode == CANopen::ARRAY ? owner.dataType
                                                                   : quint16(0);
    Field typeField = keys[DataType];
    if (typeField.line == 0)
        typeField.line = fields.line;
    record.dataType = dataTypeOf(typeField, usualType, where);
    const QString usualAccess = isCount    ? QStringLiteral("ro")
                                : isDomain ? QStringLiteral("rw")
                                           : QString();
    record.accessType = accessOf(keys[AccessType], usualAccess, fields.line, where);
    record.pdoMapping = flagOf(keys[PDOMappingKey], "PDOMapping");
    record.defaultValue = valueOf(keys[DefaultValue], record.dataType, where);
    record.hasDefaultValue = !record.defaultValue.isEmpty();
    record.parameterValue = valueOf(keys[ParameterValue], record.dataType, where);
    record.denotation = textOf(keys[Denotation]);
    readLimits(fields, record.dataType, where, record.lowLimit, record.highLimit, record.hasLimits);
    const quint32 flags = numberOf(keys[ObjFlags], 0, "ObjFlags");
    record.refuseWrite = (flags & 1U) != 0;
    record.refuseRead = (flags & 2U) != 0;
    record.uploadFile = textOf(keys[UploadFile]);
    record.downloadFile = textOf(keys[DownloadFile]);
    for (const Key key : {UploadFile, DownloadFile}) {
        if (!keys[key].text.isEmpty())
            m_result.add(Note::Lost, keys[key].line,
                         tr("%1: the file of a domain is not kept: '%2'.")
                             .arg(where.text(), m_text.excerpt(keys[key].text)));
    }
    record.description = descriptionOf(fields, !isComplex);
    if (isCount)
        completeCount(record, owner, fields.line, where);
    return record;
}

/// Subindex 0 tells the highest subindex. Without a value the device would tell 0; only the error
/// list and dynamic PDO mappings start so.
void EdsObjectReader::completeCount(CANopenSubindex &record, const Owner &owner, int line,
                                    const Where &where)
{
    if (record.description.isEmpty())
        record.description = owner.description;
    const bool countsItself = owner.index == 0x1003 || (ObjectRanges::isPdoMapping(owner.index) &&
                                                        record.accessType == QLatin1String("rw"));
    if (record.hasDefaultValue || countsItself)
        return;
    record.defaultValue = QString::number(owner.highestSubindex);
    record.hasDefaultValue = true;
    m_result.add(Note::Made, line,
                 tr("%1 has no default value; it gets the highest sub-index, %2.")
                     .arg(where.text(), record.defaultValue));
}

CANopenSubindex EdsObjectReader::countEntry(const Owner &owner)
{
    CANopenSubindex record;
    record.index = owner.index;
    record.isMade = true;
    record.name = QStringLiteral("Highest subindex supported");
    record.dataType = CAN::UNSIGNED8;
    record.accessType = QStringLiteral("ro");
    record.defaultValue = QString::number(owner.highestSubindex);
    record.hasDefaultValue = true;
    record.description = owner.description;
    return record;
}
