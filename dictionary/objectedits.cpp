#include "dictionary/objectedits.h"

#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "dictionary/dictionaryclipboard.h"
#include "dictionary/edittransaction.h"
#include "dictionary/entryrules.h"
#include "dictionary/freenumbers.h"
#include "dictionary/newentries.h"
#include "dictionary/subzero.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

using Existing = ObjectEdits::Existing;

QString tr(const char *text)
{
    return QCoreApplication::translate("ObjectEdits", text);
}

EditResult noFreeIndex(quint16 index)
{
    return EditResult::refused(tr("There is no free index behind %1.").arg(IndexText::hex(index)));
}

EditResult notThere(quint16 index)
{
    return EditResult::refused(tr("There is no object %1.").arg(IndexText::hex(index)));
}

EditResult alreadyThere(quint16 index)
{
    return EditResult::refused(tr("Object %1 already exists.").arg(IndexText::hex(index)));
}

/// A copy of the object for another number.
DictionaryObject copyFor(const DictionaryObject &object, quint16 index)
{
    DictionaryObject copy = object;
    copy.index = index;
    for (DictionaryEntry &entry : copy.entries)
        entry.data = EntryRules::atPlace(std::move(entry.data), {object.index, entry.subindex},
                                         {index, entry.subindex});
    return copy;
}

QList<quint8> linesOf(const EditContext &context, const DictionaryObject &object)
{
    QList<quint8> lines = {context.line};
    if (object.isShared())
        lines += otherLines(context.store, context.line);
    return lines;
}

/// The next free index for a copy; 0 and the reason if the user may use none.
quint16 freeTarget(const EditContext &context, EditTransaction &edit,
                   const DictionaryObject &object, quint16 behind, EditResult &result)
{
    const quint16 index = FreeNumbers::nextFreeIndex(edit, linesOf(context, object), behind);
    const ObjectRange targets = context.rights.targets();
    if (index == 0)
        result = noFreeIndex(behind);
    else if (index > targets.high)
        result =
            EditResult::refused(tr("There is no free index behind %1 up to %2; those above "
                                   "need the expert mode.")
                                    .arg(IndexText::hex(behind), IndexText::hex(targets.high)));
    return result ? index : quint16(0);
}

EditResult commit(const EditContext &context, EditTransaction &edit)
{
    edit.spreadShared(context.line);
    return edit.commit();
}

} // namespace

EditResult ObjectEdits::add(const EditContext &context, quint32 index,
                            CANopen::ObjectCode objectCode, Existing existing)
{
    if (EditResult allowed = context.rights.addByHand(index); !allowed)
        return allowed;
    const auto number = static_cast<quint16>(index);
    EditTransaction edit(context.store);
    if (existing == Existing::Refuse && edit.exists(context.line, number))
        return alreadyThere(number);
    edit.put(context.line, NewEntries::object(number, objectCode));
    return commit(context, edit);
}

QList<std::pair<quint16, QString>> ObjectEdits::imported(const EditContext &context)
{
    QList<std::pair<quint16, QString>> objects;
    if (context.library == nullptr)
        return objects;
    constexpr quint8 line = ObjectDataBase::stagingLine;
    ObjectDataBase::INDEX_DATA_T data;
    for (const quint16 index : context.library->getIndices(line, ObjectRanges::device.low)) {
        if (context.library->getIndexData(line, index, data))
            objects.append({index, data.name});
    }
    return objects;
}

EditResult ObjectEdits::addImported(const EditContext &context, const QList<quint16> &indices,
                                    Existing existing)
{
    constexpr quint8 staging = ObjectDataBase::stagingLine;
    EditTransaction edit(context.store);
    for (const quint16 index : indices) {
        if (EditResult allowed = context.rights.restructure(index); !allowed)
            return allowed;
        if (context.library == nullptr || !context.library->indexExists(staging, index))
            return EditResult::refused(
                tr("Object %1 is no imported object.").arg(IndexText::hex(index)));
        if (existing == Existing::Refuse && edit.exists(context.line, index))
            return alreadyThere(index);
        SubZero::keep(
            edit.put(context.line, readDictionaryObject(*context.library, staging, index)));
    }
    return commit(context, edit);
}

qsizetype ObjectEdits::removedCount(const EditContext &context, const QList<quint16> &indices)
{
    const QList<quint8> others = otherLines(context.store, context.line);
    EditTransaction look(context.store);
    look.readAhead(context.line, indices.size());
    qsizetype count = 0;
    for (const quint16 index : indices) {
        const DictionaryObject *object = look.find(context.line, index);
        if (object == nullptr)
            continue;
        ++count;
        if (object->isShared())
            count += std::ranges::count_if(
                others, [&](quint8 line) { return context.store.indexExists(line, index); });
    }
    return count;
}

EditResult ObjectEdits::remove(const EditContext &context, const QList<quint16> &indices)
{
    EditTransaction edit(context.store);
    edit.readAhead(context.line, indices.size());
    for (const quint16 index : indices) {
        if (EditResult allowed = context.rights.restructure(index); !allowed)
            return allowed;
        if (edit.find(context.line, index) == nullptr)
            return notThere(index);
        edit.remove(context.line, index);
    }
    return commit(context, edit);
}

QList<quint16> ObjectEdits::objectsIn(const EditContext &context, ObjectRange range)
{
    return context.store.getIndices(context.line, range.low, range.high);
}

QList<quint16> ObjectEdits::pdoObjects(const EditContext &context)
{
    QList<quint16> indices =
        objectsIn(context, {ObjectRanges::receivePdos.low, ObjectRanges::transmitMappings.high});
    indices.removeIf([](quint16 index) {
        return !ObjectRanges::isPdoCommunication(index) && !ObjectRanges::isPdoMapping(index);
    });
    return indices;
}

EditResult ObjectEdits::duplicate(const EditContext &context, const QList<quint16> &indices,
                                  QList<quint16> *made)
{
    EditTransaction edit(context.store);
    edit.readAhead(context.line, indices.size());
    QList<quint16> targets;
    for (const quint16 index : indices) {
        const DictionaryObject *found = edit.find(context.line, index);
        if (found == nullptr)
            return notThere(index);
        const DictionaryObject object = *found;
        EditResult result = context.rights.restructure(index);
        const quint16 target = result ? freeTarget(context, edit, object, index, result) : 0;
        if (target == 0)
            return result;
        for (const quint8 line : linesOf(context, object)) {
            // Each line's own, as only some of its subindices may be shared.
            const DictionaryObject *own = edit.find(line, index);
            edit.put(line, copyFor(own != nullptr ? *own : object, target));
        }
        targets.append(target);
    }
    EditResult result = commit(context, edit);
    if (result && made != nullptr)
        *made = targets;
    return result;
}

EditResult ObjectEdits::paste(const EditContext &context, const DictionaryClipboard &clipboard,
                              quint16 index, QList<quint16> *made)
{
    if (clipboard.isEmpty())
        return EditResult::refused(tr("No object was copied."));
    if (EditResult allowed = context.rights.restructure(index); !allowed)
        return allowed;
    EditTransaction edit(context.store);
    QList<quint16> targets;
    for (const DictionaryObject &object : clipboard.objects()) {
        EditResult result = EditResult::done();
        const quint16 behind = targets.isEmpty() ? index : targets.last();
        const quint16 target = freeTarget(context, edit, object, behind, result);
        if (target == 0)
            return result;
        edit.put(context.line, copyFor(object, target));
        targets.append(target);
    }
    EditResult result = commit(context, edit);
    if (result && made != nullptr)
        *made = targets;
    return result;
}

EditResult ObjectEdits::pasteAt(const EditContext &context, const DictionaryClipboard &clipboard,
                                quint16 index, const QString &name)
{
    if (clipboard.isEmpty())
        return EditResult::refused(tr("No object was copied."));
    if (index + clipboard.distanceOfLast() > ObjectRanges::device.high)
        return noFreeIndex(index);
    EditTransaction edit(context.store);
    edit.readAhead(context.line, qsizetype(clipboard.objects().size()));
    const quint16 first = clipboard.objects().front().index;
    for (const DictionaryObject &object : clipboard.objects()) {
        const auto target = static_cast<quint16>(index + object.index - first);
        if (EditResult allowed = context.rights.restructure(target); !allowed)
            return allowed;
        DictionaryObject &put = edit.put(context.line, copyFor(object, target));
        if (object.index == first && !name.isEmpty())
            put.data.name = name;
    }
    return commit(context, edit);
}

EditResult ObjectEdits::cut(const EditContext &context, const QList<quint16> &indices,
                            DictionaryClipboard &clipboard)
{
    DictionaryClipboard copied;
    if (!copied.copy(context.store, context.line, indices))
        return EditResult::refused(tr("No object is selected."));
    EditResult result = remove(context, indices);
    if (result)
        clipboard = std::move(copied);
    return result;
}
