#pragma once

#include <QString>
#include <QtGlobal>

struct DictionaryObject;

/// Subindex 0 of arrays and records, which tells the highest subindex (CiA 301).
namespace SubZero {

/// Whether it must mirror the highest subindex. It needn't where the device counts itself: errors
/// that have occurred, the entries of a dynamic mapping, and the marks of multiplexed PDOs.
/// `access` and `value` are those of subindex 0.
[[nodiscard]] bool isRuleApplicable(quint16 index, const QString &access, const QString &value);

/// The value in the 8 bits of the device, automatic base; 0 for a text that is no number.
[[nodiscard]] quint8 count(const QString &value);

/// Brings subindex 0 of an array or record in step with its highest subindex. Where the rule does
/// not apply, a count above the highest subindex is lowered, but no mark. A text whose value is
/// right stays as it is written. Variables and objects without subindex 0 are left alone.
void keep(DictionaryObject &object);

} // namespace SubZero
