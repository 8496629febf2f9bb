#pragma once

#include "canopen/canopentypes.h"
#include "dictionary/editcontext.h"
#include "dictionary/objectwalk.h"

/// The objects and subindices that a user starts from.
namespace NewEntries {

/// "New object": a variable with its value, an array or record with its count and one subindex.
[[nodiscard]] DictionaryObject object(quint16 index, CANopen::ObjectCode objectCode);
/// The count of an array or record.
[[nodiscard]] DictionaryEntry count(quint8 highest);
/// A variable or a subindex of its own: UNSIGNED8, "rw", Managed Variable, 0, default limits.
[[nodiscard]] DictionaryEntry entry(quint8 subindex, const QString &name);

/// What a further subindex of an object becomes: that of the same number in the library, else the
/// last one with the number in its name raised; in an array with the data type of the array.
[[nodiscard]] DictionaryEntry further(const EditContext &context, const DictionaryObject &object,
                                      quint8 subindex);
/// "Subindex 1"
[[nodiscard]] QString defaultName(quint8 subindex);

} // namespace NewEntries
