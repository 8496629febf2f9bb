#pragma once

#include <QString>

/// Whether texts of values, limits and sizes fit a CANopen data type (CiA 301). Stateless.
class ValueCheck
{
public:
    /// Empty if the text is a value of the type, else what is wrong with it. Integers are decimal
    /// or hexadecimal with "0x"; unsigned ones may be "$NODEID+0x180".
    [[nodiscard]] static QString problem(quint16 dataType, const QString &text);
    /// Whether a <= b; both must be values of the type without "$NODEID".
    [[nodiscard]] static bool inOrder(quint16 dataType, const QString &a, const QString &b);
    /// Strings and domains, whose length is the record's `size`.
    [[nodiscard]] static bool hasFreeLength(quint16 dataType);
};
