#include "canopen/numbertext.h"

#include <QVarLengthArray>

#include <charconv>
#include <limits>

namespace {

struct Number
{
    quint64 magnitude = 0;
    bool isNegative = false;
    bool isBeyond = false; ///< of 64 bits; `magnitude` holds all bits then
};

int takeRadix(QStringView &text, NumberText::Base base)
{
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)) {
        text = text.mid(2);
        return 16;
    }
    const bool isOctal =
        base == NumberText::Base::Automatic && text.size() > 1 && text.startsWith(u'0');
    return isOctal ? 8 : 10;
}

/// Without an allocation for what fits: every subindex has a number or more.
std::optional<Number> read(QStringView text, NumberText::Base base)
{
    text = text.trimmed();
    Number number;
    number.isNegative = text.startsWith(u'-');
    if (number.isNegative || text.startsWith(u'+'))
        text = text.mid(1);
    const int radix = takeRadix(text, base);
    // A second sign would be read as one of the digits.
    if (text.isEmpty() || text.startsWith(u'-'))
        return std::nullopt;
    QVarLengthArray<char, 32> digits;
    for (const QChar character : text)
        digits.append(character.toLatin1());
    const char *last = digits.constData() + digits.size();
    const auto result = std::from_chars(digits.constData(), last, number.magnitude, radix);
    if (result.ec == std::errc::invalid_argument || result.ptr != last)
        return std::nullopt;
    if (result.ec == std::errc::result_out_of_range) {
        number.isBeyond = true;
        number.magnitude = std::numeric_limits<quint64>::max();
    }
    return number;
}

constexpr quint64 lowest = quint64(1) << 63; // the magnitude of the lowest negative number

} // namespace

std::optional<quint64> NumberText::toUnsigned(QStringView text, Base base)
{
    const auto number = read(text, base);
    if (!number || number->isBeyond || number->isNegative)
        return std::nullopt;
    return number->magnitude;
}

std::optional<quint32> NumberText::toUnsigned32(QStringView text, Base base)
{
    const auto number = toUnsigned(text, base);
    if (!number || *number > std::numeric_limits<quint32>::max())
        return std::nullopt;
    return static_cast<quint32>(*number);
}

std::optional<qint64> NumberText::toSigned(QStringView text, Base base)
{
    const auto number = read(text, base);
    if (!number || number->magnitude > lowest - (number->isNegative ? 0 : 1))
        return std::nullopt;
    return static_cast<qint64>(number->isNegative ? ~number->magnitude + 1 : number->magnitude);
}

std::optional<quint64> NumberText::toBits(QStringView text, Base base)
{
    const auto number = read(text, base);
    if (!number)
        return std::nullopt;
    if (!number->isNegative)
        return number->magnitude;
    return number->magnitude > lowest ? lowest : ~number->magnitude + 1;
}
