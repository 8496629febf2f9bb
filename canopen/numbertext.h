#pragma once

#include <QStringView>

#include <optional>

/// Numbers as the texts of a project write them: "0x" (in either case) marks hexadecimal digits, a
/// leading "0" octal ones, anything else is decimal. One sign may stand in front, blanks around.
/// Always in the C locale; binary digits ("0b11") are no number. Stateless; any thread.
namespace NumberText {

enum class Base {
    Automatic, ///< "0x" hexadecimal, a leading "0" octal, else decimal
    Decimal    ///< "0x" hexadecimal, else decimal: "010" is ten
};

/// Nothing for a text that is no number, below 0 or beyond 64 bits.
[[nodiscard]] std::optional<quint64> toUnsigned(QStringView text, Base base = Base::Automatic);

/// The same, and nothing beyond 32 bits.
[[nodiscard]] std::optional<quint32> toUnsigned32(QStringView text, Base base = Base::Automatic);

/// Nothing for a text that is no number or does not fit into 64 bits with a sign.
[[nodiscard]] std::optional<qint64> toSigned(QStringView text, Base base = Base::Automatic);

/// The 64 bits of the number, negative ones as two's complement. Beyond them the nearest number:
/// all bits, or the lowest negative number. Nothing only for a text that is no number.
[[nodiscard]] std::optional<quint64> toBits(QStringView text, Base base = Base::Automatic);

} // namespace NumberText
