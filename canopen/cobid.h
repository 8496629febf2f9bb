#pragma once

#include <QString>

/// COB-IDs of PDOs as a project keeps them: a number, with "$NODEID+" in front where the node-ID
/// is added to it.
namespace CobId {

/// The text with bit 31 set, which disables a PDO (CiA 301): "$nodeid+0x180" becomes
/// "$nodeid+0x80000180". A text without a hexadecimal number stays as it is.
[[nodiscard]] QString disabled(const QString &text);

/// Whether the hexadecimal number in the text has bit 31 set.
[[nodiscard]] bool isDisabled(const QString &text);

} // namespace CobId
