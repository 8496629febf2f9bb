#pragma once

#include <QString>

/// Reading of the texts that a project keeps as numbers, by the rules of `NumberText`.

/// Whether the default value can be read as the data type. An empty text can, and so can any text
/// of a type that is no plain number. Ranges are not looked at.
[[nodiscard]] bool isValueConvertible(quint16 dataType, const QString &text);

/// Unsigned; 0 for a text that is no such number.
[[nodiscard]] quint64 toNumber(const QString &text);
/// `toNumber` cut to 8 bits, as the device holds a subindex 0.
[[nodiscard]] quint8 toByte(const QString &text);
