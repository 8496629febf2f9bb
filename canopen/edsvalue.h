#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

/// Numbers and values as EDS and DCF files (CiA 306) write them. Stateless; any thread.
namespace EdsValue {

/// A number of a key with a fixed meaning: decimal, hexadecimal behind "0x", octal behind "0"; a
/// comment behind ';' is passed over. Nothing for anything else and beyond 32 bits. A number with
/// a leading zero that can't be octal is decimal.
[[nodiscard]] std::optional<quint32> number(QByteArrayView text);

/// What was found about a value.
enum class Finding {
    Plain,          ///< nothing to be said
    TwosComplement, ///< the bits of a negative number; rewritten as that number
    LeadingZero,    ///< decimal with leading zeros that can't be octal; these were taken away
    Comment,        ///< a comment behind the value; it was taken away
    TruthValue,     ///< "true" or "false"; rewritten as 1 or 0
    RealBits,       ///< the IEEE 754 bits of a REAL in hexadecimal, kept as written
    NodeIdForm,     ///< node-ID expression that can't be brought into the common form
    OutOfRange,     ///< a number that the data type doesn't have
    NoNumber        ///< can't be read as a value of the data type
};

struct Value
{
    QString text;
    Finding finding = Finding::Plain;
};

/// A default value, limit or parameter value of the data type in the form that the rest of the
/// system reads. Node-ID expressions get the one form "$NODEID+number"; of strings, domains and
/// times the text stays as it is.
[[nodiscard]] Value value(quint16 dataType, const QString &text);

} // namespace EdsValue
