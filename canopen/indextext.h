#pragma once

#include <QString>
#include <QtGlobal>

/// Numbers of objects and subindices as texts, in lower case with all their digits.
namespace IndexText {

/// "100a"
[[nodiscard]] QString digits(quint16 index);
/// "0x100a"
[[nodiscard]] QString hex(quint16 index);
/// "0a"
[[nodiscard]] QString subDigits(quint8 subindex);
/// "0x0a"
[[nodiscard]] QString subHex(quint8 subindex);
/// "0x100a - Name"
[[nodiscard]] QString titled(quint16 index, const QString &name);
/// "0x100a0108", as the entries of mapping objects are written (CiA 301).
[[nodiscard]] QString hex32(quint32 number);

/// Shown in place of the name that an object doesn't have.
inline constexpr QLatin1String unnamedObject("unnamed object");
inline constexpr QLatin1String unnamedSubIndex("unnamed subindex");

} // namespace IndexText
