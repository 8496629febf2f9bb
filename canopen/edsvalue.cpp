#include "canopen/edsvalue.h"

#include "canopen/canopentypes.h"
#include "canopen/cohelper.h"
#include "canopen/numbertext.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

using EdsValue::Finding;
using EdsValue::Value;

bool isDigits(QStringView text)
{
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

bool isSigned(quint16 dataType)
{
    switch (dataType) {
    case CAN::INTEGER8:
    case CAN::INTEGER16:
    case CAN::INTEGER24:
    case CAN::INTEGER32:
    case CAN::INTEGER40:
    case CAN::INTEGER48:
    case CAN::INTEGER56:
    case CAN::INTEGER64:
        return true;
    default:
        return false;
    }
}

/// BOOLEAN and the integers of CiA 301.
bool isInteger(quint16 dataType)
{
    return isSigned(dataType) || dataType == CAN::BOOLEAN ||
           (dataType >= CAN::UNSIGNED8 && dataType <= CAN::UNSIGNED32) ||
           (dataType >= CAN::UNSIGNED24 && dataType <= CAN::UNSIGNED64);
}

bool isReal(quint16 dataType)
{
    return dataType == CAN::REAL32 || dataType == CAN::REAL64;
}

/// Decimal digits that automatic base would take for a wrong octal number.
bool hasMisleadingZero(const QString &text)
{
    return !NumberText::toUnsigned(text) && text.size() > 1 && text.startsWith(u'0') &&
           isDigits(text);
}

QString withoutLeadingZeros(const QString &text)
{
    qsizetype zeros = 0;
    while (zeros + 1 < text.size() && text[zeros] == u'0')
        ++zeros;
    return text.mid(zeros);
}

/// The summands of an expression brought into the one form, with a hexadecimal number, as the model
/// check compares them; nothing if there is anything else than one node-ID and numbers.
std::optional<QString> nodeIdForm(const QString &text)
{
    int nodeIds = 0;
    QList<QString> numbers;
    quint64 sum = 0;
    const QStringList summands = text.split(u'+');
    for (const QString &summand : summands) {
        const QString term = summand.trimmed();
        if (term.compare(QLatin1String("$NODEID"), Qt::CaseInsensitive) == 0) {
            ++nodeIds;
            continue;
        }
        const auto number = NumberText::toUnsigned(term);
        if (!number || sum + *number < sum)
            return std::nullopt;
        sum += *number;
        numbers.append(term);
    }
    if (nodeIds != 1)
        return std::nullopt;
    static const QRegularExpression plain(QStringLiteral("^0[xX]([1-9a-fA-F]|[0-9a-fA-F]{8}$)"));
    const QString number = numbers.isEmpty() ? QStringLiteral("0")
                           : numbers.size() == 1 && plain.match(numbers.first()).hasMatch()
                               ? numbers.first()
                               : QStringLiteral("0x") + QString::number(sum, 16);
    return QLatin1String("$NODEID+") + number;
}

Value signedValue(quint16 dataType, const QString &text)
{
    const uint bits = COHelper::getDataLengthBits(dataType);
    const qint64 high = static_cast<qint64>((quint64(1) << (bits - 1)) - 1);
    const qint64 low = -high - 1;
    const auto number = NumberText::toSigned(text);
    if (number && *number >= low && *number <= high)
        return {text, Finding::Plain};
    const auto raw = NumberText::toUnsigned(text);
    if (!raw)
        return {text, number && *number < low ? Finding::OutOfRange : Finding::NoNumber};
    const bool fits = bits == 64 || *raw < (quint64(1) << bits);
    if (!fits || !text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        return {text, Finding::OutOfRange};
    const quint64 sign = bits == 64 ? 0 : ~quint64(0) << bits;
    return {QString::number(static_cast<qint64>(*raw | sign)), Finding::TwosComplement};
}

Value unsignedValue(quint16 dataType, const QString &text)
{
    const auto number = NumberText::toUnsigned(text);
    if (!number)
        return {text, Finding::NoNumber};
    const uint bits = COHelper::getDataLengthBits(dataType);
    return {text,
            bits == 64 || *number < (quint64(1) << bits) ? Finding::Plain : Finding::OutOfRange};
}

Value integerValue(quint16 dataType, const QString &text)
{
    if (text.contains(QLatin1String("$NODEID"), Qt::CaseInsensitive)) {
        const auto form = nodeIdForm(text);
        return form ? Value{*form, Finding::Plain} : Value{text, Finding::NodeIdForm};
    }
    if (dataType == CAN::BOOLEAN) {
        for (const auto &[word, digit] : {std::pair("true", "1"), std::pair("false", "0")}) {
            if (text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0)
                return {QString::fromLatin1(digit), Finding::TruthValue};
        }
    }
    if (hasMisleadingZero(text))
        return {withoutLeadingZeros(text), Finding::LeadingZero};
    return isSigned(dataType) ? signedValue(dataType, text) : unsignedValue(dataType, text);
}

Value realValue(const QString &text)
{
    bool ok = false;
    text.toDouble(&ok);
    if (ok)
        return {text, Finding::Plain};
    return {text, NumberText::toUnsigned(text) ? Finding::RealBits : Finding::NoNumber};
}

} // namespace

std::optional<quint32> EdsValue::number(QByteArrayView bytes)
{
    if (const qsizetype comment = bytes.indexOf(';'); comment >= 0)
        bytes = bytes.first(comment);
    bytes = bytes.trimmed();
    // The usual case, without a text in between.
    if (bytes.size() <= 9 && !bytes.isEmpty() && (bytes.front() != '0' || bytes.size() == 1) &&
        std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        quint32 result = 0;
        for (const char digit : bytes)
            result = result * 10 + static_cast<quint32>(digit - '0');
        return result;
    }
    if (bytes.isEmpty() || bytes.size() > 32 || bytes.front() == '-' || bytes.front() == '+')
        return std::nullopt;
    const QString text = QString::fromLatin1(bytes);
    const auto result = NumberText::toUnsigned32(text);
    return result || !isDigits(text) ? result
                                     : NumberText::toUnsigned32(text, NumberText::Base::Decimal);
}

EdsValue::Value EdsValue::value(quint16 dataType, const QString &text)
{
    const bool integer = isInteger(dataType);
    if (text.isEmpty() || (!integer && !isReal(dataType)))
        return {text, Finding::Plain};
    if (const qsizetype comment = text.indexOf(u';'); comment > 0) {
        Value bare = value(dataType, text.left(comment).trimmed());
        if (bare.finding == Finding::Plain)
            bare.finding = Finding::Comment;
        return bare;
    }
    return integer ? integerValue(dataType, text) : realValue(text);
}
