#pragma once

#include "store/objectdatabase.h"

#include <QList>

#include <optional>

class EditTransaction;
struct DictionaryObject;

/// Numbers of objects and subindices that are still free.
namespace FreeNumbers {

/// CiA 301 keeps subindex 255 for the structure of the object.
inline constexpr quint8 highestSubindex = 254;

/// The first index above `index` without an object; 0 if there is none up to 0xFFFF. For an object
/// that is shared over the lines it is free on all of them.
[[nodiscard]] quint16 getNextFreeIndex(ObjectDataBase &store, quint8 line, quint16 index);
/// The same in the middle of an edit, free on each of `lines`.
[[nodiscard]] quint16 nextFreeIndex(EditTransaction &edit, const QList<quint8> &lines,
                                    quint16 index);

/// Behind the highest subindex; none behind 254.
[[nodiscard]] std::optional<quint8> nextSubindex(const DictionaryObject &object);
/// The first free one above `subindex`; none up to 254.
[[nodiscard]] std::optional<quint8> nextFreeSubindex(const DictionaryObject &object,
                                                     quint8 subindex);
/// What a new subindex may be, for the user to choose: the gaps, the one behind the highest, and
/// 128, where manufacturers put their own entries of a record, while it is further behind.
[[nodiscard]] QList<quint8> definedSubindices(const DictionaryObject &object);

} // namespace FreeNumbers
