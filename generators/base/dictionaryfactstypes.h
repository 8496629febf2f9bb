#pragma once

#include "canopen/numbertext.h"

#include <QByteArray>
#include <QString>

#include <cstddef>

/// Data types that share a table of the generated dictionary. The numeric groups come first.
enum class TableGroup : quint8 {
    U8,
    U16,
    U24,
    U32,
    U40,
    U48,
    U64,
    I8,
    I16,
    I24,
    I32,
    R32,
    VisString,
    Utf8String,
    OctetString,
    Domain,
    None ///< the stack has no table for the type
};

inline constexpr std::size_t numericGroupCount = std::size_t(TableGroup::R32) + 1;
inline constexpr std::size_t tableGroupCount = std::size_t(TableGroup::None);

/// A table group in the words of the generated C.
struct TableGroupInfo
{
    TableGroup group;
    const char *tag;   ///< as in `od_u8`
    const char *cType; ///< element type
};

/// A data type of CiA 301 (and of the bit-sized types from 100 up) as the dictionary sees it.
struct DictionaryType
{
    TableGroup group;
    const char *tag; ///< behind the dialect's type prefix, as in CORE_DTYPE_U8
    bool isNumeric;  ///< carries CO_ATTR_NUM
};

namespace DictionaryTypes {

[[nodiscard]] DictionaryType of(quint16 dataType);
[[nodiscard]] const TableGroupInfo &info(TableGroup group);
[[nodiscard]] constexpr bool isNumeric(TableGroup group)
{
    return group <= TableGroup::R32;
}
[[nodiscard]] constexpr bool isString(TableGroup group)
{
    return group == TableGroup::VisString || group == TableGroup::Utf8String;
}
[[nodiscard]] constexpr bool isSigned(TableGroup group)
{
    return group >= TableGroup::I8 && group <= TableGroup::I32;
}

/// A text without its "$NODEID" summand, in any case and with or without blanks.
[[nodiscard]] QString withoutNodeId(const QString &text);
/// The text adds the node-id, as "$NODEID+0x180".
[[nodiscard]] bool hasNodeId(const QString &text);

/// A value in the 64 bits in which the tables keep it: two's complement, the bit pattern of
/// REAL32 and REAL64. A number beyond 64 bits becomes the nearest one; false, and 0, for a text
/// that is no number of the type. The number may be beyond its type, it is kept as it is told.
bool parse(quint16 dataType, const QString &text, NumberText::Base base, quint64 &value);

/// The bytes of a string default. VISIBLE_STRING gives one byte a character where the text allows
/// it (ISO 8859-1), UTF8_STRING gives UTF-8, UNICODE_STRING 16 bit units, low byte first; an
/// OCTET_STRING of hexadecimal pairs ("01 a0 ff",
/// "0x01 0xa0") gives the bytes they name and any other text its own.
[[nodiscard]] QByteArray stringBytes(quint16 dataType, const QString &text);

/// The C initialiser of a table entry, as "(UNSIGNED8)5u" or "U24_SET(0x..,..)".
[[nodiscard]] QByteArray literal(TableGroup group, quint64 value);

} // namespace DictionaryTypes
