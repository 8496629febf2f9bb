#include "tests/generatedc/expectedobjects.h"

#include "canopen/canopentypes.h"
#include "canopen/cohelper.h"

#include <QRegularExpression>

#include <bit>

namespace {

using Sub = ObjectDataBase::SUBINDEX_DATA_T;

struct TypeName
{
    const char *name;
    int bytes;
    bool isSigned = false;
};

const QMap<quint16, TypeName> &typeNames()
{
    using namespace CAN;
    static const QMap<quint16, TypeName> names = {
        {BOOLEAN, {"BOOL", 1}},
        {UNSIGNED8, {"U8", 1}},
        {UNSIGNED16, {"U16", 2}},
        {UNSIGNED24, {"U24", 3}},
        {UNSIGNED32, {"U32", 4}},
        {UNSIGNED40, {"U40", 5}},
        {UNSIGNED48, {"U48", 6}},
        {UNSIGNED64, {"U64", 8}},
        {TIME_OF_DAY, {"U48", 6}},
        {TIME_DIFFERENCE, {"U48", 6}},
        {BITS2, {"U8", 1}},
        {BITS7, {"U8", 1}},
        {INTEGER8, {"I8", 1, true}},
        {INTEGER16, {"I16", 2, true}},
        {INTEGER24, {"I24", 3, true}},
        {INTEGER32, {"I32", 4, true}},
        {REAL32, {"R32", 4}},
        {VISIBLE_STRING, {"STRING_NULL", 0}},
        {UTF8_STRING, {"UTF8_STRING", 0}},
        {OCTET_STRING, {"OCTET_STRING", 0}},
        {DOMAIN_TYPE, {"DOMAIN", 0}},
        {INTEGER40, {"I40", 5}},
        {INTEGER48, {"I48", 6}},
        {INTEGER56, {"I56", 8}},
        {INTEGER64, {"I64", 8}},
        {UNSIGNED56, {"U56", 8}},
        {REAL64, {"R64", 8}},
        {BITS9, {"U16", 2}},
        {BITS29, {"U32", 4}},
        {UNICODE_STRING, {"UNICODE_STRING", 0}},
    };
    return names;
}

QString hexNumber(quint64 value, int bytes)
{
    const QString digits = QStringLiteral("%1").arg(value, 16, 16, QLatin1Char('0'));
    return digits.right(2 * bytes);
}

QString numberText(const Sub &sub, const QString &written, int base)
{
    const TypeName type = typeNames()[sub.datatype];
    QString text = written;
    text.remove(QStringLiteral("$NODEID+"), Qt::CaseInsensitive);
    if (sub.datatype == CAN::REAL32)
        return hexNumber(std::bit_cast<quint32>(text.toFloat()), 4);
    if (sub.datatype == CAN::REAL64)
        return hexNumber(std::bit_cast<quint64>(text.toDouble()), 8);
    if (base == 10 && text.startsWith(QLatin1String("0x")))
        base = 16;
    bool ok = false;
    quint64 value = text.toULongLong(&ok, base);
    if (!ok)
        value = quint64(text.toLongLong(&ok, base));
    // Beyond what 64 bits can hold: the nearest number.
    static const QRegularExpression digits(QStringLiteral("^-?\\d+$"));
    if (!ok && digits.match(text).hasMatch())
        value = text.startsWith(QLatin1Char('-')) ? quint64(1) << 63 : ~quint64(0);
    return hexNumber(value, type.bytes);
}

/// A limit that is not written is the natural one.
QString limitText(const Sub &sub, const QString &written, bool isLow)
{
    QString low;
    QString high;
    COHelper::getDefaultLimits(sub.datatype, low, high);
    return numberText(sub, !written.isEmpty() ? written : isLow ? low : high, 10);
}

QString stringText(const Sub &sub)
{
    const bool isLatin = sub.datatype == CAN::VISIBLE_STRING &&
                         QString::fromLatin1(sub.defaultvalue.toLatin1()) == sub.defaultvalue;
    const QByteArray bytes = isLatin ? sub.defaultvalue.toLatin1() : sub.defaultvalue.toUtf8();
    return QLatin1Char('"') + QString::fromLatin1(bytes.toHex()) + QLatin1Char('"');
}

QString attributesOf(const Sub &sub, bool hasLimits)
{
    const bool isString = typeNames()[sub.datatype].bytes == 0;
    const bool hasTable =
        !isString || sub.datatype == CAN::VISIBLE_STRING || sub.datatype == CAN::UTF8_STRING;
    const bool canRead = sub.accesstype != QLatin1String("wo");
    const bool canWrite = sub.accesstype.contains(QLatin1Char('w'));
    const bool isMapped = sub.pdomapping != PDOMapping(PDOMapping::Forbidden);
    QString text;
    if (!isString && (sub.datatype < CAN::VISIBLE_STRING || sub.datatype == CAN::UNSIGNED24))
        text += QLatin1String("NUM|");
    if (canRead)
        text += QLatin1String("READ|");
    if (canWrite)
        text += QLatin1String("WRITE|");
    if (isMapped && canRead && sub.accesstype != QLatin1String("rww"))
        text += QLatin1String("MAP_TR|");
    if (isMapped && canWrite && sub.accesstype != QLatin1String("rwr"))
        text += QLatin1String("MAP_REC|");
    if (sub.implementation != CANopen::ManagedConst && hasTable)
        text += QLatin1String("DEFVAL|");
    if (hasLimits)
        text += QLatin1String("LIMIT|");
    if (sub.nvstorage)
        text += QLatin1String("STORE|");
    return text;
}

ExpectedSub expected(const Sub &sub, bool checksLimits, bool isInitialised)
{
    const TypeName type = typeNames()[sub.datatype];
    const bool isNumber = type.bytes > 0;
    const bool hasLimits =
        checksLimits && sub.limitineds && isNumber && sub.accesstype.contains(QLatin1Char('w'));
    ExpectedSub result;
    result.type = QLatin1String(type.name);
    result.attributes = attributesOf(sub, hasLimits);
    const QString defaultText = isNumber ? numberText(sub, sub.defaultvalue, 0) : stringText(sub);
    if (result.attributes.contains(QLatin1String("DEFVAL")))
        result.defaultValue = defaultText;
    if (isNumber && sub.implementation == CANopen::ManagedConst)
        result.value = defaultText;
    else if (isNumber && sub.implementation == CANopen::ManagedVariable)
        result.value = isInitialised ? defaultText : hexNumber(0, type.bytes);
    else if (sub.implementation == CANopen::ManagedConst &&
             (sub.datatype == CAN::VISIBLE_STRING || sub.datatype == CAN::UTF8_STRING))
        result.value = defaultText;
    if (hasLimits) {
        result.low = limitText(sub, sub.lowlimit, true);
        result.high = limitText(sub, sub.uplimit, false);
    }
    // The structure of all tables has no member for these.
    if (sub.datatype == CAN::INTEGER24) {
        result.value.clear();
        result.defaultValue = result.defaultValue.isEmpty() ? QString() : QStringLiteral("none");
    }
    return result;
}

QString keyOf(quint8 line, quint16 index, quint8 sub)
{
    return QStringLiteral("%1 %2:%3")
        .arg(line)
        .arg(index, 4, 16, QLatin1Char('0'))
        .arg(sub, 2, 16, QLatin1Char('0'));
}

} // namespace

QMap<QString, ExpectedSub> ExpectedObjects::of(ObjectDataBase &store)
{
    const bool checksLimits = store.getGeneralSetting(QStringLiteral("limit_check")).toInt() > 0;
    const bool isInitialised =
        store.getGeneralSetting(QStringLiteral("init_static_variables")).toInt() == 1;
    QMap<QString, ExpectedSub> result;
    for (const quint8 line : store.getLines()) {
        for (const quint16 index : store.getIndices(line, 0x1000)) {
            for (const quint8 number : store.getSubIndices(line, index)) {
                Sub sub;
                store.getSubIndexData(line, index, number, sub);
                if (sub.implementation != CANopen::VirtualObject)
                    result[keyOf(line, index, number)] = expected(sub, checksLimits, isInitialised);
            }
        }
    }
    return result;
}

QMap<QString, ExpectedSub> ExpectedObjects::parse(const QString &output, QStringList &problems)
{
    static const QRegularExpression pattern(
        QStringLiteral("^sub (\\d+ [0-9a-f:]+) type=(\\S+)(?: spec=(\\S+))? attr=(\\S*) "
                       "value=(.*?)(?: default=(\\S+))?(?: low=(\\S+))?(?: high=(\\S+))?$"));
    QMap<QString, ExpectedSub> result;
    for (const QString &line : output.split(QLatin1Char('\n'))) {
        if (line.contains(QLatin1String("BAD")))
            problems.append(line);
        const auto match = pattern.match(line);
        if (!match.hasMatch())
            continue;
        ExpectedSub sub;
        sub.type = match.captured(2);
        sub.attributes = match.captured(4).remove(QStringLiteral("COMPACT|"));
        sub.value = match.captured(5);
        sub.defaultValue = match.captured(6);
        sub.low = match.captured(7);
        sub.high = match.captured(8);
        // What a service keeps for itself has no value in the tables.
        if (match.captured(3).contains(QLatin1Char(':')))
            sub.value = QStringLiteral("service");
        result[match.captured(1)] = sub;
    }
    return result;
}
