#include "import/codbimporterline.h"

#include "canopen/cohelper.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace {

/// A CAN-ID that depends on the node: the highest node-ID stands behind the number.
constexpr QLatin1String highestNode("127");

struct CodeName
{
    const char *name;
    quint32 code;
};
constexpr std::array codeNames{
    CodeName{"VAR", CANopen::VAR},
    CodeName{"ARRAY", CANopen::ARRAY},
    CodeName{"RECORD", CANopen::RECORD},
};

const QRegularExpression &decimalNumber()
{
    static const QRegularExpression pattern(QStringLiteral("[0-9]+"));
    return pattern;
}

const QRegularExpression &hexNumber()
{
    static const QRegularExpression pattern(QStringLiteral("0x[0-9A-Fa-f]+"));
    return pattern;
}

/// The decimal text of a number; empty for one that no data type can hold.
QString decimalText(const QString &number)
{
    bool ok = false;
    const bool isHex = number.startsWith(QLatin1String("0x"));
    const quint64 value = isHex ? number.mid(2).toULongLong(&ok, 16) : number.toULongLong(&ok, 10);
    return ok ? QString::number(value) : QString();
}

/// "0x02...0x05" gives 2.
QString firstNumber(const QString &text)
{
    const QRegularExpressionMatch hex = hexNumber().match(text);
    return decimalText(hex.hasMatch() ? hex.captured() : decimalNumber().match(text).captured());
}

QString lastMatch(const QRegularExpression &pattern, const QString &text)
{
    QString last;
    for (auto match = pattern.globalMatch(text); match.hasNext();)
        last = match.next().captured();
    return last;
}

/// The last number of either notation, and of the two the greater one; empty if it is too great.
QString lastNumber(const QString &text)
{
    const QString decimalMatch = lastMatch(decimalNumber(), text);
    const QString hexMatch = lastMatch(hexNumber(), text);
    QString decimal = decimalText(decimalMatch);
    QString hex = decimalText(hexMatch);
    if (hexMatch.isEmpty())
        return decimal;
    return decimal.toULongLong() > hex.toULongLong() && !hex.isEmpty() ? decimal : hex;
}

bool hasNoLimit(const QString &field)
{
    return field.isEmpty() || field == QLatin1String("d") || field == QLatin1String("n");
}

/// "d[const,ro]" gives "const,ro"; "m" gives an empty text.
QString listOfRule(const QString &rule)
{
    return rule.size() > 3 ? rule.mid(2, rule.size() - 3) : QString();
}

PDOMapping mappingOf(const QString &value, const QString &rule)
{
    const bool mappable =
        value == QLatin1String("y") || (value.isEmpty() && rule == QLatin1String("d"));
    return PDOMapping(mappable);
}

/// Strings and domains can't live where other values do, and a profile doesn't say where.
void placeText(ObjectDataBase::SUBINDEX_DATA_T &data, quint16 index, quint8 subindex)
{
    if (data.datatype == CAN::DOMAIN_TYPE) {
        data.implementation = CANopen::Variable;
        data.varname =
            QStringLiteral("v_%1%2").arg(QString::number(index), QString::number(subindex));
    } else if (data.datatype == CAN::VISIBLE_STRING) {
        data.implementation = CANopen::ManagedConst;
        if (data.defaultvalue.isEmpty())
            data.defaultvalue = QStringLiteral(" ");
        data.size = 1;
    }
}

} // namespace

CodbLine CodbLine::faulty(const QString &text)
{
    CodbLine line;
    line.m_kind = Kind::Faulty;
    line.m_fault = text;
    return line;
}

CodbLine CodbLine::parseCopy(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\$([0-9A-Fa-f]{4})=([0-9A-Fa-f]{4})"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return faulty(QStringLiteral("a copy is written as $AAAA=BBBB"));
    CodbLine line;
    line.m_kind = Kind::Copy;
    line.m_index = match.captured(1).toUShort(nullptr, 16);
    line.m_source = match.captured(2).toUShort(nullptr, 16);
    return line;
}

CodbLine CodbLine::parse(const QString &text)
{
    if (text.trimmed().isEmpty() || text.startsWith(u'#'))
        return {};
    if (text.startsWith(u'$'))
        return parseCopy(text);

    CodbLine line;
    line.m_fields = text.split(u':');
    const QString index = line.field(Index).trimmed();
    bool isIndex = false;
    line.m_index = index.toUShort(&isIndex, 16);
    if (!isIndex || index.size() != 4)
        return faulty(QStringLiteral("'%1' is no object index").arg(index.left(20)));
    if (QStringView(text).mid(4, 2) == QLatin1String("::")) {
        line.m_kind = line.objectCode() == 0 ? Kind::Unused : Kind::Object;
        return line;
    }
    const QString subindex = line.field(Subindex).trimmed();
    bool isSubindex = false;
    const ushort number = subindex.toUShort(&isSubindex, 16);
    if (!isSubindex || number > 0xFF)
        return faulty(
            QStringLiteral("'%1' is no subindex of object 0x%2").arg(subindex.left(20), index));
    line.m_subindex = quint8(number);
    line.m_kind = Kind::Subindex;
    return line;
}

QString CodbLine::doubt() const
{
    const bool hasEntry =
        m_kind == Kind::Subindex || (m_kind == Kind::Object && objectCode() == CANopen::VAR);
    const QString type = field(DataType).trimmed();
    if (hasEntry && !type.isEmpty() && COHelper::mapDataTypeString(type) == 0)
        return QStringLiteral("'%1' is no data type; it becomes 0").arg(type.left(40));
    const QString access = COHelper::normalizeAccessType(field(AccessType));
    if (hasEntry && !access.isEmpty() && COHelper::accessType2String(access) == access)
        return QStringLiteral("'%1' is no access type").arg(access.left(40));
    return {};
}

quint32 CodbLine::objectCode() const
{
    const QString name = field(ObjectCode).trimmed();
    const auto *found = std::find_if(codeNames.begin(), codeNames.end(), [&](const CodeName &row) {
        return name == QLatin1String(row.name);
    });
    return found == codeNames.end() ? 0 : found->code;
}

ObjectDataBase::INDEX_DATA_T CodbLine::objectData() const
{
    ObjectDataBase::INDEX_DATA_T data;
    data.name = field(Name);
    data.category = COHelper::convertCategory(field(Category));
    data.objecttype = objectCode();
    // An array gets the type of its first element from that element's line.
    if (data.objecttype == CANopen::VAR)
        data.datatype = COHelper::mapDataTypeString(field(DataType));
    return data;
}

ObjectDataBase::SUBINDEX_DATA_T CodbLine::entryData() const
{
    ObjectDataBase::SUBINDEX_DATA_T data;
    data.name = field(Name);
    data.datatype = COHelper::mapDataTypeString(field(DataType));
    const QString access = COHelper::normalizeAccessType(field(AccessType));
    data.accesstype = access.isEmpty() ? QStringLiteral("ro") : access;
    data.allowedaccesstypes = listOfRule(field(AccessRule).trimmed());
    data.pdomapping = mappingOf(field(Mapping).trimmed(), field(MappingRule).trimmed());
    data.defaultvalue = field(DefaultValue);
    data.defaultineds = true;
    data.writedefaulttoeds = data.defaultvalue.isEmpty() && m_subindex != 0 ? 0 : 1;
    takeLimits(data);
    placeText(data, m_index, m_subindex);
    return data;
}

/// The limits are kept, but checking them is the user's choice.
void CodbLine::takeLimits(ObjectDataBase::SUBINDEX_DATA_T &data) const
{
    data.limitineds = false;
    COHelper::getDefaultLimits(data.datatype, data.lowlimit, data.uplimit);
    const QString low = field(LowLimit).trimmed();
    const QString high = field(HighLimit).trimmed();
    if (m_kind == Kind::Object || hasNoLimit(low))
        return;
    if (const QString number = firstNumber(low); !number.isEmpty())
        data.lowlimit = number;
    const QString number = lastNumber(high);
    const bool ofNode = high.contains(QLatin1String("NODEID"));
    if (!number.isEmpty() || ofNode)
        data.uplimit = number + (ofNode ? QString(highestNode) : QString());
}
