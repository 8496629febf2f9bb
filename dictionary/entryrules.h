#pragma once

#include "store/objectdatabase.h"

#include <QString>

#include <optional>

/// What the values of a subindex mean for one another.
namespace EntryRules {

using Record = ObjectDataBase::SUBINDEX_DATA_T;

/// VISIBLE_STRING, OCTET_STRING, UNICODE_STRING or UTF-8.
[[nodiscard]] bool isString(quint16 dataType);
/// Its length stands in the record.
[[nodiscard]] bool hasSize(quint16 dataType);
/// Limits can be checked: not of strings and domains, nor of the integers that the stack compares
/// no limits of.
[[nodiscard]] bool hasLimitCheck(quint16 dataType);

/// The stack keeps the value, so the kind of implementation is fixed (CiA 301's communication
/// objects).
[[nodiscard]] bool isManagedByStack(quint16 index, quint8 subindex);

/// Gives the record another data type, with what follows: limits, limit check and size are those of
/// the new type. TIME and REAL types keep the limits that are there.
void setDataType(Record &record, quint16 dataType);
/// Switched on over empty limits, the check gets the natural ones of the type.
void setLimitCheck(Record &record, bool on);

/// "v_81931" for 0x2001 and subindex 1: of domains and strings without a name.
[[nodiscard]] QString variableName(quint16 index, quint8 subindex);
/// A record that goes to another place, with the variable's name that was made for its former one.
[[nodiscard]] Record atPlace(Record record, ObjectDataBase::SubIndexKey from,
                             ObjectDataBase::SubIndexKey to);
/// The text with its last number raised by one, leading zeros kept: "CH09" gives "CH10". A text
/// without a number stays.
[[nodiscard]] QString raised(const QString &text);

/// Bytes of a string or domain's value as the generators write it.
[[nodiscard]] qsizetype byteCount(quint16 dataType, const QString &text);

/// "0x10" for "16" and "16" for "0x10", in 64 bits; none for negative numbers and what is no
/// number.
[[nodiscard]] std::optional<QString> convertHexDec(const QString &text);

} // namespace EntryRules
