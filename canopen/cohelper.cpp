#include "canopen/cohelper.h"

#include "canopen/datatypetable.h"
#include "canopen/wordtable.h"

#include <QStringView>

#include <algorithm>
#include <array>

namespace {

struct AccessType
{
    QString text;
    QString label;
};

const std::array<AccessType, 6> &accessTypes()
{
    static const std::array<AccessType, 6> table = {{
        {QStringLiteral("const"), QStringLiteral("Constant")},
        {QStringLiteral("ro"), QStringLiteral("Read Only")},
        {QStringLiteral("wo"), QStringLiteral("Write Only")},
        {QStringLiteral("rw"), QStringLiteral("Read Write")},
        {QStringLiteral("rwr"), QStringLiteral("Read Write Read")},
        {QStringLiteral("rww"), QStringLiteral("Read Write Write")},
    }};
    return table;
}

enum AccessIndex : quint8 { Const, Ro, Wo, Rw, Rwr, Rww };

// CiA 301 calls rwr "read/write on process input" and rww "read/write on process output",
// CiA 311 "readWriteInput" and "readWriteOutput". Input and output are seen from the network:
// process input goes out in TPDOs, process output comes in RPDOs.
const WordTable<AccessIndex> &accessWords()
{
    static const WordTable<AccessIndex> table({
        {"const", Const},
        {"constant", Const},
        {"c", Const},
        {"cons", Const},
        {"const value", Const},
        {"constant value", Const},
        {"ro", Ro},
        {"r", Ro},
        {"read", Ro},
        {"read only", Ro},
        {"rd only", Ro},
        {"rd", Ro},
        {"read access", Ro},
        {"wo", Wo},
        {"w", Wo},
        {"write", Wo},
        {"write only", Wo},
        {"wr only", Wo},
        {"wr", Wo},
        {"write access", Wo},
        {"rw", Rw},
        {"rd/wr", Rw},
        {"read/write", Rw},
        {"read and write", Rw},
        {"write/read", Rw},
        {"rwr", Rwr},
        {"rw/r", Rwr},
        {"rwi", Rwr},
        {"rw in", Rwr},
        {"rw input", Rwr},
        {"read/write/read", Rwr},
        {"read/write input", Rwr},
        {"read/write process input", Rwr},
        {"read/write on process input", Rwr},
        {"rw on process input", Rwr},
        {"rww", Rww},
        {"rwo", Rww},
        {"rw out", Rww},
        {"rw output", Rww},
        {"read/write/write", Rww},
        {"read/write output", Rww},
        {"read/write process output", Rww},
        {"read/write on process output", Rww},
        {"rw on process output", Rww},
    });
    return table;
}

struct ObjectCodeName
{
    CANopen::ObjectCode code;
    const char *name;
};

constexpr ObjectCodeName objectCodeNames[] = {
    {CANopen::DOMAIN_OBJECT, "DOMAIN"}, {CANopen::DEFTYPE, "DEFTYPE"},
    {CANopen::DEFSTRUCT, "DEFSTRUCT"},  {CANopen::VAR, "VAR"},
    {CANopen::ARRAY, "ARRAY"},          {CANopen::RECORD, "RECORD"},
};

const WordTable<CANopen::ObjectCode> &objectCodeWords()
{
    static const WordTable<CANopen::ObjectCode> table = [] {
        std::vector<WordTable<CANopen::ObjectCode>::Entry> entries = {
            {"VARIABLE", CANopen::VAR},  {"ARR", CANopen::ARRAY},         {"REC", CANopen::RECORD},
            {"STRUCT", CANopen::RECORD}, {"DOM", CANopen::DOMAIN_OBJECT},
        };
        for (const ObjectCodeName &entry : objectCodeNames)
            entries.push_back({entry.name, entry.code});
        return WordTable<CANopen::ObjectCode>(std::move(entries));
    }();
    return table;
}

const WordTable<CANopen::ObjectCategory> &categoryWords()
{
    static const WordTable<CANopen::ObjectCategory> table({
        {"m", CANopen::Mandatory},
        {"man", CANopen::Mandatory},
        {"mand", CANopen::Mandatory},
        {"mandatory", CANopen::Mandatory},
        {"required", CANopen::Mandatory},
        {"c", CANopen::Conditional},
        {"cond", CANopen::Conditional},
        {"conditional", CANopen::Conditional},
        {"conditionally", CANopen::Conditional},
    });
    return table;
}

/// The first word of a text, since profiles put the condition behind the category.
QStringView firstWord(QStringView text)
{
    text = text.trimmed();
    qsizetype length = 0;
    while (length < text.size() && text[length].isLetterOrNumber())
        ++length;
    return text.left(length);
}

/// Length of the prefix that stands before the number of a CiA document in file names, or 0.
qsizetype profilePrefixLength(QStringView stem)
{
    for (const QStringView prefix : {u"cia", u"ds", u"v"}) {
        if (stem.startsWith(prefix, Qt::CaseInsensitive))
            return prefix.size();
    }
    return 0;
}

QStringView fileStem(QStringView path)
{
    const qsizetype folderEnd = std::max(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\'));
    QStringView stem = path.mid(folderEnd + 1);
    const qsizetype dot = stem.lastIndexOf(u'.');
    // A digit behind the dot belongs to a version, as in "v301_4.2".
    if (dot > 0 && dot + 1 < stem.size() && stem[dot + 1].isLetter())
        stem = stem.left(dot);
    return stem;
}

} // namespace

QString COHelper::index2DataTypeString(quint16 dataType)
{
    return DataTypeTable::byNumber(dataType).name;
}

QString COHelper::index2DataTypeShortString(quint16 dataType)
{
    return DataTypeTable::byNumber(dataType).shortName;
}

quint8 COHelper::getDataLengthBits(quint16 dataType)
{
    return DataTypeTable::byNumber(dataType).bits;
}

CAN::CANopenDataType COHelper::mapDataTypeString(const QString &text)
{
    return static_cast<CAN::CANopenDataType>(DataTypeTable::numberOf(text));
}

const QMap<quint16, QString> &COHelper::stringDataTypeIndexMap()
{
    return DataTypeTable::names();
}

bool COHelper::getDefaultLimits(quint16 dataType, QString &low, QString &high)
{
    const DataTypeTable::Type &type = DataTypeTable::byNumber(dataType);
    if (type.low.isEmpty())
        return false;
    low = type.low;
    high = type.high;
    return true;
}

QString COHelper::objectCode2String(quint32 objectCode)
{
    for (const ObjectCodeName &entry : objectCodeNames) {
        if (entry.code == objectCode)
            return QString::fromLatin1(entry.name);
    }
    return {};
}

CANopen::ObjectCode COHelper::string2objectCode(const QString &text)
{
    if (const auto number = readFileNumber(text)) {
        for (const ObjectCodeName &entry : objectCodeNames) {
            if (entry.code == *number)
                return entry.code;
        }
        return CANopen::UNKNOWN_OBJECT;
    }
    return objectCodeWords().find(text).value_or(CANopen::UNKNOWN_OBJECT);
}

QString COHelper::implementation2String(quint8 implementation)
{
    static const std::array<QString, 4> labels = {
        QStringLiteral("Managed Variable"), QStringLiteral("Managed Const"),
        QStringLiteral("Variable"), QStringLiteral("Virtual Object")};
    return implementation < labels.size() ? labels[implementation] : QString();
}

QString COHelper::pdoMapping2String(const PDOMapping &mapping)
{
    return mapping.label();
}

QString COHelper::normalizeAccessType(const QString &text)
{
    if (const auto index = accessWords().find(text))
        return accessTypes()[*index].text;
    return text.trimmed().toLower();
}

QString COHelper::accessType2String(const QString &accessType)
{
    if (const auto index = accessWords().find(accessType))
        return accessTypes()[*index].label;
    return accessType;
}

CANopen::ObjectCategory COHelper::convertCategory(const QString &text)
{
    if (const auto number = readFileNumber(text)) {
        return *number <= CANopen::Conditional ? static_cast<CANopen::ObjectCategory>(*number)
                                               : CANopen::Optional;
    }
    return categoryWords().find(firstWord(text)).value_or(CANopen::Optional);
}

QString COHelper::category2String(quint8 category)
{
    static const std::array<QString, 3> labels = {
        QStringLiteral("Mandatory"), QStringLiteral("Optional"), QStringLiteral("Conditional")};
    return category < labels.size() ? labels[category] : QString();
}

QString COHelper::convertDbNames(const QString &fileName)
{
    const QStringView stem = fileStem(fileName);
    const QStringView number = stem.mid(profilePrefixLength(stem));
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    const auto digits = std::find_if_not(number.begin(), number.end(), isDigit) - number.begin();
    const bool isProfile = number.size() < stem.size() && digits >= 3 && digits <= 4 &&
                           (digits == number.size() || !number[digits].isLetter());
    if (!isProfile)
        return stem.toString();
    QString rest = number.mid(digits).toString().toUpper();
    rest.replace(u'_', u' ');
    return QStringLiteral("CiA %1%2").arg(number.left(digits), rest);
}

QString COHelper::convertEBType(const QString &text)
{
    return index2DataTypeString(mapDataTypeString(text));
}
