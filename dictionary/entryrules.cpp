#include "dictionary/entryrules.h"

#include "canopen/canopentypes.h"
#include "canopen/cohelper.h"
#include "canopen/objectranges.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cctype>

namespace {

/// Bit n stands for subindex n.
constexpr quint32 allSubs = 0xFFFFFFFF;
constexpr quint32 allButZero = allSubs & ~1U;

struct ManagedRange
{
    ObjectRange objects;
    quint32 subs; ///< of the first 31; those above are as the last
};

// Ascending and without overlap.
constexpr std::array managedRanges = {
    ManagedRange{{0x1003, 0x1003}, allSubs},
    ManagedRange{{0x1005, 0x1006}, allSubs},
    ManagedRange{{0x100C, 0x100D}, allSubs},
    ManagedRange{{0x1010, 0x1011}, 0b1110},
    ManagedRange{{0x1014, 0x1015}, allSubs},
    ManagedRange{{0x1016, 0x1016}, allButZero},
    ManagedRange{{0x1017, 0x1017}, allSubs},
    ManagedRange{{0x1019, 0x1019}, allSubs},
    ManagedRange{{0x1028, 0x1028}, allButZero},
    ManagedRange{{0x1029, 0x1029}, 0b10},
    ManagedRange{{0x102A, 0x102A}, allSubs},
    ManagedRange{{0x1032, 0x1032}, allSubs},
    ManagedRange{{ObjectRanges::sdoServers.low, ObjectRanges::sdoClients.high}, allButZero},
    ManagedRange{{ObjectRanges::srdos.low, 0x13FF}, allSubs},
    ManagedRange{ObjectRanges::receivePdos, allButZero},
    ManagedRange{ObjectRanges::receiveMappings, allSubs},
    ManagedRange{ObjectRanges::transmitPdos, allButZero},
    ManagedRange{ObjectRanges::transmitMappings, allSubs},
    ManagedRange{{0x1F2C, 0x1F2C}, allButZero},
    ManagedRange{{0x1F80, 0x1F82}, allSubs},
    ManagedRange{{0x1F90, 0x1F90}, allButZero},
};

bool isOneOf(quint16 dataType, std::initializer_list<quint16> types)
{
    return std::ranges::find(types, dataType) != types.end();
}

bool hasUncheckedSize(quint16 dataType)
{
    return isOneOf(dataType, {CAN::INTEGER24, CAN::UNSIGNED24, CAN::UNSIGNED40, CAN::UNSIGNED48,
                              CAN::UNSIGNED64});
}

void fillLimits(EntryRules::Record &record)
{
    if (!isOneOf(record.datatype, {CAN::REAL32, CAN::REAL64}))
        COHelper::getDefaultLimits(record.datatype, record.lowlimit, record.uplimit);
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

} // namespace

bool EntryRules::isString(quint16 dataType)
{
    return isOneOf(dataType,
                   {CAN::VISIBLE_STRING, CAN::OCTET_STRING, CAN::UNICODE_STRING, CAN::UTF8_STRING});
}

bool EntryRules::hasSize(quint16 dataType)
{
    return isString(dataType) || dataType == CAN::DOMAIN_TYPE;
}

bool EntryRules::hasLimitCheck(quint16 dataType)
{
    return !hasSize(dataType) && !hasUncheckedSize(dataType);
}

bool EntryRules::isManagedByStack(quint16 index, quint8 subindex)
{
    const auto range = std::ranges::lower_bound(
        managedRanges, index, {}, [](const ManagedRange &entry) { return entry.objects.high; });
    if (range == managedRanges.end() || !range->objects.contains(index))
        return false;
    constexpr quint8 lastBit = 31;
    return (range->subs >> std::min(subindex, lastBit) & 1U) != 0;
}

void EntryRules::setDataType(Record &record, quint16 dataType)
{
    record.datatype = dataType;
    if (!hasSize(dataType))
        record.size = 0;
    if (!hasLimitCheck(dataType))
        record.limitineds = false;
    if (hasUncheckedSize(dataType)) {
        record.lowlimit.clear();
        record.uplimit.clear();
    } else if (hasLimitCheck(dataType)) {
        fillLimits(record);
    }
}

void EntryRules::setLimitCheck(Record &record, bool on)
{
    record.limitineds = on && hasLimitCheck(record.datatype);
    if (record.limitineds && record.lowlimit.isEmpty() && record.uplimit.isEmpty())
        fillLimits(record);
}

QString EntryRules::variableName(quint16 index, quint8 subindex)
{
    return QStringLiteral("v_%1%2").arg(QString::number(index), QString::number(subindex));
}

EntryRules::Record EntryRules::atPlace(Record record, ObjectDataBase::SubIndexKey from,
                                       ObjectDataBase::SubIndexKey to)
{
    if (record.varname == variableName(from.first, from.second))
        record.varname = variableName(to.first, to.second);
    return record;
}

QString EntryRules::raised(const QString &text)
{
    static const QRegularExpression lastNumber(QStringLiteral("([0-9]+)(?!.*[0-9])"),
                                               QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = lastNumber.match(text);
    bool isNumber = false;
    const quint64 number = match.captured(1).toULongLong(&isNumber);
    if (!isNumber)
        return text;
    const QString next = QString::number(number + 1).rightJustified(match.capturedLength(1), u'0');
    return QString(text).replace(match.capturedStart(1), match.capturedLength(1), next);
}

qsizetype EntryRules::byteCount(quint16 dataType, const QString &text)
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

std::optional<QString> EntryRules::convertHexDec(const QString &text)
{
    const QString number = text.trimmed();
    bool isNumber = false;
    if (number.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)) {
        const quint64 value = number.mid(2).toULongLong(&isNumber, 16);
        return isNumber ? std::optional(QString::number(value)) : std::nullopt;
    }
    const quint64 value = number.toULongLong(&isNumber, 10);
    return isNumber ? std::optional(QLatin1String("0x") + QString::number(value, 16))
                    : std::nullopt;
}
