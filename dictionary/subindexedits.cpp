#include "dictionary/subindexedits.h"

#include "canopen/indextext.h"
#include "dictionary/edittransaction.h"
#include "dictionary/entryrules.h"
#include "dictionary/freenumbers.h"
#include "dictionary/mappinglinks.h"
#include "dictionary/newentries.h"
#include "dictionary/subzero.h"

#include <QCoreApplication>

#include <algorithm>
#include <set>

namespace {

using Key = SubIndexEdits::Key;

QString tr(const char *text)
{
    return QCoreApplication::translate("SubIndexEdits", text);
}

EditResult notThere(quint16 index)
{
    return EditResult::refused(tr("There is no object %1.").arg(IndexText::hex(index)));
}

EditResult notThere(Key key)
{
    return EditResult::refused(
        tr("There is no subindex %1 of %2.").arg(key.second).arg(IndexText::hex(key.first)));
}

EditResult alreadyThere(Key key)
{
    return EditResult::refused(
        tr("Subindex %1 of %2 is not free.").arg(key.second).arg(IndexText::hex(key.first)));
}

EditResult behindLast()
{
    return EditResult::refused(tr("There is no subindex behind 254."));
}

/// The object, if the user may change its subindices and it may have them; else null and the
/// reason.
DictionaryObject *compound(const EditContext &context, EditTransaction &edit, quint8 line,
                           quint16 index, EditResult &result)
{
    result = context.rights.restructure(index);
    if (!result)
        return nullptr;
    DictionaryObject *object = edit.change(line, index);
    if (object == nullptr)
        result = notThere(index);
    else if (!object->isCompound())
        result = EditResult::refused(tr("%1 is a variable, which has no further subindices. Its "
                                        "object type can be changed to ARRAY or RECORD.")
                                         .arg(IndexText::hex(index)));
    return result ? object : nullptr;
}

EditResult commit(const EditContext &context, EditTransaction &edit)
{
    edit.spreadShared(context.line);
    return edit.commit();
}

/// The object whose subindices from `first` up may get numbers that differ by `step`; else null and
/// the reason.
DictionaryObject *shiftable(const EditContext &context, EditTransaction &edit, Key first, int step,
                            EditResult &result)
{
    DictionaryObject *object = compound(context, edit, context.line, first.first, result);
    if (object == nullptr)
        return nullptr;
    const int lowest = first.second + step;
    if (first.second == 0 || object->find(first.second) == nullptr)
        result = notThere(first);
    else if (object->highest() + step > FreeNumbers::highestSubindex)
        result = behindLast();
    else if (step < 0 && (lowest < 1 || object->find(quint8(lowest)) != nullptr))
        result = EditResult::refused(tr("The subindex before is not free."));
    for (const DictionaryEntry &entry : object->entries) {
        if (result && entry.subindex >= first.second && context.rights.isReadOnly(entry.data))
            result =
                context.rights.edit(object->index, entry.subindex, entry.data, SubIndexField::Name);
    }
    return result ? object : nullptr;
}

EditResult shift(const EditContext &context, Key first, int step)
{
    EditTransaction edit(context.store);
    EditResult result = EditResult::done();
    DictionaryObject *object = shiftable(context, edit, first, step, result);
    if (object == nullptr)
        return result;
    QList<MappingFollower::Move> moves;
    for (DictionaryEntry &entry : object->entries) {
        if (entry.subindex < first.second)
            continue;
        const Key from{object->index, entry.subindex};
        const Key to{object->index, quint8(entry.subindex + step)};
        entry.data = EntryRules::atPlace(std::move(entry.data), from, to);
        entry.subindex = to.second;
        moves.append({from, to, object->isShared(entry)});
    }
    SubZero::keep(*object);
    MappingFollower(edit, context.line).follow(moves);
    return commit(context, edit);
}

EditResult mayShift(const EditContext &context, Key first, int step)
{
    EditTransaction look(context.store);
    EditResult result = EditResult::done();
    if (shiftable(context, look, first, step, result) == nullptr)
        return result;
    return EditResult::done();
}

} // namespace

EditResult SubIndexEdits::addNext(const EditContext &context, quint16 index, quint8 *made)
{
    const DictionaryObject object = readDictionaryObject(context.store, context.line, index);
    const quint8 next = FreeNumbers::nextSubindex(object).value_or(0);
    if (next == 0 && !object.entries.empty())
        return behindLast();
    EditResult result = add(context, index, std::max<quint8>(next, 1));
    if (result && made != nullptr)
        *made = std::max<quint8>(next, 1);
    return result;
}

EditResult SubIndexEdits::add(const EditContext &context, quint16 index, quint8 subindex)
{
    EditTransaction edit(context.store);
    EditResult result = EditResult::done();
    DictionaryObject *object = compound(context, edit, context.line, index, result);
    if (object == nullptr)
        return result;
    if (subindex > FreeNumbers::highestSubindex)
        return behindLast();
    if (object->find(subindex) != nullptr)
        return alreadyThere({index, subindex});
    const DictionaryEntry entry = NewEntries::further(context, *object, subindex);
    if (object->find(0) == nullptr)
        object->insert(NewEntries::count(subindex));
    if (subindex > 0)
        object->insert(entry);
    SubZero::keep(*object);
    return commit(context, edit);
}

qsizetype SubIndexEdits::removedCount(const EditContext &context, const QList<Key> &subindices)
{
    const QList<quint8> others = otherLines(context.store, context.line);
    qsizetype count = 0;
    ObjectDataBase::SUBINDEX_DATA_T data;
    for (const auto &[index, subindex] : subindices) {
        if (!context.store.getSubIndexData(context.line, index, subindex, data))
            continue;
        ++count;
        if (index < ObjectRanges::manufacturer.low || !data.sharedlines)
            continue;
        count += std::ranges::count_if(others, [&, number = subindex, object = index](quint8 line) {
            return context.store.subIndexExists(line, object, number);
        });
    }
    return count;
}

EditResult SubIndexEdits::remove(const EditContext &context, const QList<Key> &subindices)
{
    EditTransaction edit(context.store);
    std::set<quint16> touched;
    for (const auto &[index, subindex] : subindices) {
        if (EditResult allowed = context.rights.restructure(index); !allowed)
            return allowed;
        DictionaryObject *object = edit.change(context.line, index);
        const DictionaryEntry *entry = object != nullptr ? object->find(subindex) : nullptr;
        if (entry == nullptr)
            return notThere(Key(index, subindex));
        if (context.rights.isReadOnly(entry->data))
            return context.rights.edit(index, subindex, entry->data, SubIndexField::Name);
        object->erase(subindex);
        touched.insert(index);
    }
    for (const quint16 index : touched) {
        DictionaryObject *object = edit.change(context.line, index);
        if (object->find(0) == nullptr)
            return EditResult::refused(
                tr("Subindex 0 of %1 goes with its object only.").arg(IndexText::hex(index)));
        SubZero::keep(*object);
    }
    return commit(context, edit);
}

EditResult SubIndexEdits::duplicate(const EditContext &context, const QList<Key> &subindices,
                                    QList<Key> *made)
{
    EditTransaction edit(context.store);
    QList<Key> targets;
    for (const Key &key : subindices) {
        EditResult result = EditResult::done();
        DictionaryObject *object = compound(context, edit, context.line, key.first, result);
        if (object == nullptr)
            return result;
        const DictionaryEntry *entry = object->find(key.second);
        if (entry == nullptr)
            return notThere(key);
        const auto next = FreeNumbers::nextFreeSubindex(*object, key.second);
        if (!next)
            return EditResult::refused(tr("There is no free subindex behind %1.").arg(key.second));
        DictionaryEntry copy = *entry;
        copy.subindex = *next;
        copy.data = EntryRules::atPlace(std::move(copy.data), key, {key.first, *next});
        object->insert(std::move(copy));
        SubZero::keep(*object);
        targets.append({key.first, *next});
    }
    EditResult result = commit(context, edit);
    if (result && made != nullptr)
        *made = targets;
    return result;
}

EditResult SubIndexEdits::increment(const EditContext &context, Key first)
{
    return shift(context, first, 1);
}

EditResult SubIndexEdits::decrement(const EditContext &context, Key first)
{
    return shift(context, first, -1);
}

EditResult SubIndexEdits::mayIncrement(const EditContext &context, Key first)
{
    return mayShift(context, first, 1);
}

EditResult SubIndexEdits::mayDecrement(const EditContext &context, Key first)
{
    return mayShift(context, first, -1);
}

EditResult SubIndexEdits::move(const EditContext &context, Key from, quint8 targetLine, Key to)
{
    EditTransaction edit(context.store);
    EditResult result = EditResult::done();
    DictionaryObject *source = compound(context, edit, context.line, from.first, result);
    DictionaryObject *target =
        result ? compound(context, edit, targetLine, to.first, result) : nullptr;
    if (target == nullptr)
        return result;
    const DictionaryEntry *entry = source->find(from.second);
    if (entry == nullptr || from.second == 0)
        return notThere(from);
    if (to.second == 0 || to.second > FreeNumbers::highestSubindex ||
        target->find(to.second) != nullptr)
        return alreadyThere(to);
    if (context.rights.isReadOnly(entry->data))
        return context.rights.edit(from.first, from.second, entry->data, SubIndexField::Name);
    const bool isShared = source->isShared(*entry);
    DictionaryEntry moved = *entry;
    moved.subindex = to.second;
    moved.data = EntryRules::atPlace(std::move(moved.data), from, to);
    source->erase(from.second);
    target->insert(std::move(moved));
    SubZero::keep(*source);
    SubZero::keep(*target);
    if (targetLine == context.line)
        MappingFollower(edit, context.line).follow({{from, to, isShared}});
    return commit(context, edit);
}
