#pragma once

#include "dictionary/editcontext.h"

#include <QList>

/// Edits of the subindices of arrays and records. Each is done whole or refused with a reason, and
/// keeps subindex 0 in step. Mapping entries of the line follow what is moved within it.
namespace SubIndexEdits {

using Key = ObjectDataBase::SubIndexKey; ///< (object index, subindex)

/// Behind the highest subindex.
EditResult addNext(const EditContext &context, quint16 index, quint8 *made = nullptr);
/// At a free number, see `FreeNumbers::definedSubindices`.
EditResult add(const EditContext &context, quint16 index, quint8 subindex);
/// How many subindices `remove` would delete, copies on other lines counted.
[[nodiscard]] qsizetype removedCount(const EditContext &context, const QList<Key> &subindices);
EditResult remove(const EditContext &context, const QList<Key> &subindices);
/// Each to the next free subindex behind it. `made` takes the new ones.
EditResult duplicate(const EditContext &context, const QList<Key> &subindices,
                     QList<Key> *made = nullptr);

/// "Increment sub index": the subindices from this one up get the next number, which leaves a gap
/// before them.
EditResult increment(const EditContext &context, Key first);
/// "Decrement sub index": the same into the gap before them.
EditResult decrement(const EditContext &context, Key first);

/// What would refuse them, for menus.
EditResult mayIncrement(const EditContext &context, Key first);
EditResult mayDecrement(const EditContext &context, Key first);

/// To a free subindex of an object, on this line or another.
EditResult move(const EditContext &context, Key from, quint8 targetLine, Key to);

} // namespace SubIndexEdits
