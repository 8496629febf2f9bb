#pragma once

#include "canopen/canopentypes.h"
#include "dictionary/editcontext.h"

#include <QList>
#include <QString>

class DictionaryClipboard;

/// Edits of whole objects. Each is done whole or refused with a reason, and is one step of undo.
///
/// Objects from 0x2000 up with a shared subindex ('Shared in all lines') are the same on all lines
/// of the project: what is made, removed or duplicated here is so there too.
namespace ObjectEdits {

/// What is in the way of a new object.
enum class Existing { Refuse, Replace };

/// A new object with the values that a user starts from: a variable of UNSIGNED8, an array or
/// record with one subindex behind its count. Asked of `EditRights::addByHand`.
EditResult add(const EditContext &context, quint32 index, CANopen::ObjectCode objectCode,
               Existing existing = Existing::Refuse);

/// What the library has to offer, as (index, name).
[[nodiscard]] QList<std::pair<quint16, QString>> imported(const EditContext &context);
/// Copies objects of the library.
EditResult addImported(const EditContext &context, const QList<quint16> &indices,
                       Existing existing = Existing::Refuse);

/// How many objects `remove` would delete, copies on other lines counted.
[[nodiscard]] qsizetype removedCount(const EditContext &context, const QList<quint16> &indices);
EditResult remove(const EditContext &context, const QList<quint16> &indices);
/// The objects of the line in a range, for `remove`.
[[nodiscard]] QList<quint16> objectsIn(const EditContext &context, ObjectRange range);
/// Communication and mapping objects of all PDOs, for `remove`.
[[nodiscard]] QList<quint16> pdoObjects(const EditContext &context);

/// Each to the next free index behind it. `made` takes the new indices.
EditResult duplicate(const EditContext &context, const QList<quint16> &indices,
                     QList<quint16> *made = nullptr);

/// Each object to the next free index behind `index` and the one before it. Outside expert mode
/// only behind an object of the manufacturer's segment.
EditResult paste(const EditContext &context, const DictionaryClipboard &clipboard, quint16 index,
                 QList<quint16> *made = nullptr);
/// The first object to `index` under the name, unless that is empty, the others at their distance.
/// Objects that are in the way are replaced.
EditResult pasteAt(const EditContext &context, const DictionaryClipboard &clipboard, quint16 index,
                   const QString &name);

/// `DictionaryClipboard::copy` and `remove`; a refused cut leaves the clipboard alone.
EditResult cut(const EditContext &context, const QList<quint16> &indices,
               DictionaryClipboard &clipboard);

} // namespace ObjectEdits
