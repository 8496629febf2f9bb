#include "canopen/indextext.h"

#include <array>

namespace {

template <int count>
QString hexText(quint32 number, QLatin1String prefix)
{
    static constexpr const char *digits = "0123456789abcdef";
    std::array<char, count> text;
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 4)
        *digit = digits[number & 0xF];
    return prefix + QLatin1String(text.data(), count);
}

} // namespace

QString IndexText::digits(quint16 index)
{
    return hexText<4>(index, {});
}

QString IndexText::hex(quint16 index)
{
    return hexText<4>(index, QLatin1String("0x"));
}

QString IndexText::subDigits(quint8 subindex)
{
    return hexText<2>(subindex, {});
}

QString IndexText::subHex(quint8 subindex)
{
    return hexText<2>(subindex, QLatin1String("0x"));
}

QString IndexText::titled(quint16 index, const QString &name)
{
    return hex(index) + QLatin1String(" - ") + name;
}

QString IndexText::hex32(quint32 number)
{
    return hexText<8>(number, QLatin1String("0x"));
}
