#include "dictionary/edittransaction.h"

#include "dictionary/subzero.h"
#include "store/storeguards.h"

#include <QCoreApplication>

#include <algorithm>
#include <set>

namespace {

using Entries = std::vector<DictionaryEntry>;

constexpr std::size_t indexCount = 0x10000;

const DictionaryEntry *entryOf(const std::optional<DictionaryObject> &object, quint8 subindex)
{
    return object ? object->find(subindex) : nullptr;
}

/// A store's row keeps its metadata when it is written without: what has lost them is made anew.
bool losesMetaData(const std::optional<DictionaryObject> &from, const DictionaryObject &to)
{
    return from && !from->data.metadata.isEmpty() && to.data.metadata.isEmpty();
}

} // namespace

/// What leads from one state to another.
struct EditTransaction::Writes
{
    QList<Key> removedObjects;
    QList<Key> renewedObjects; ///< removed and written whole
    QList<std::pair<Key, quint8>> removedEntries;
    QList<ObjectDataBase::IndexEntry> objects;
    QList<ObjectDataBase::SubEntry> entries;

    [[nodiscard]] qsizetype size() const
    {
        return removedObjects.size() + renewedObjects.size() + removedEntries.size() +
               objects.size() + entries.size();
    }
    /// The object that all of them are about; nothing if there are several.
    [[nodiscard]] std::optional<Key> soleObject() const
    {
        std::set<Key> keys(removedObjects.begin(), removedObjects.end());
        keys.insert(renewedObjects.begin(), renewedObjects.end());
        for (const auto &[key, subindex] : removedEntries)
            keys.insert(key);
        for (const ObjectDataBase::IndexEntry &object : objects)
            keys.insert({object.line, object.index});
        for (const ObjectDataBase::SubEntry &entry : entries)
            keys.insert({entry.line, entry.index});
        return keys.size() == 1 ? std::optional(*keys.begin()) : std::nullopt;
    }
    /// Few are written one by one, so that what they tell says what has changed.
    [[nodiscard]] bool isFew() const
    {
        constexpr qsizetype most = 64;
        return size() <= most;
    }
};

QList<quint8> otherLines(ObjectDataBase &store, quint8 line)
{
    QList<quint8> lines = store.getLines();
    lines.removeIf(
        [line](quint8 other) { return other == line || other >= ObjectDataBase::comparisonLine; });
    std::ranges::sort(lines);
    return lines;
}

EditTransaction::Change &EditTransaction::load(quint8 line, quint16 index)
{
    const auto [place, isNew] = m_changes.try_emplace({line, index});
    if (isNew && m_store.indexExists(line, index)) {
        place->second.before = readDictionaryObject(m_store, line, index);
        place->second.after = place->second.before;
        m_isWhole &= place->second.before->isWhole();
    }
    return place->second;
}

std::vector<bool> &EditTransaction::present(quint8 line)
{
    const auto known = m_present.find(line);
    if (known != m_present.end())
        return *known;
    std::vector<bool> indices(indexCount, false);
    for (const quint16 index : m_store.getIndices(line))
        indices[index] = true;
    for (const auto &[key, change] : m_changes) {
        if (key.first == line)
            indices[key.second] = change.after.has_value();
    }
    return *m_present.insert(line, std::move(indices));
}

const DictionaryObject *EditTransaction::find(quint8 line, quint16 index)
{
    return change(line, index);
}

DictionaryObject *EditTransaction::change(quint8 line, quint16 index)
{
    Change &change = load(line, index);
    return change.after ? &*change.after : nullptr;
}

DictionaryObject &EditTransaction::put(quint8 line, const DictionaryObject &object)
{
    Change &change = load(line, object.index);
    change.isReplaced = change.before.has_value();
    m_isWhole &= object.isWhole();
    change.after = object;
    present(line)[object.index] = true;
    return *change.after;
}

void EditTransaction::remove(quint8 line, quint16 index)
{
    load(line, index).after.reset();
    present(line)[index] = false;
}

bool EditTransaction::exists(quint8 line, quint16 index)
{
    return present(line)[index];
}

void EditTransaction::readAhead(quint8 line, qsizetype objects)
{
    constexpr qsizetype many = 32;
    if (objects >= many && !m_store.isLineCached(line))
        m_store.cacheAllSubs(line);
}

void EditTransaction::spreadShared(quint8 line)
{
    const QList<quint8> lines = otherLines(m_store, line);
    if (lines.isEmpty())
        return;
    // Spreading adds changes of other lines, which move none that are there.
    for (auto &[key, change] : m_changes) {
        if (key.first == line && key.second >= ObjectRanges::manufacturer.low)
            spreadObject(key.second, change, lines);
    }
}

void EditTransaction::spreadObject(quint16 index, const Change &change, const QList<quint8> &lines)
{
    const bool wasShared = change.before && change.before->isShared();
    const bool isShared = change.after && change.after->isShared();
    if (!isShared && (!wasShared || change.isReplaced))
        return;
    for (const quint8 other : lines) {
        if (!change.after) {
            remove(other, index);
            continue;
        }
        const bool hasNewRecord = !change.before || change.before->data != change.after->data;
        DictionaryObject *object = this->change(other, index);
        if (isShared && hasNewRecord && object != nullptr)
            object->data = change.after->data;
        spreadEntries(index, change, other);
    }
}

void EditTransaction::spreadEntries(quint16 index, const Change &change, quint8 line)
{
    bool isChanged = false;
    for (const DictionaryEntry &entry : change.after->entries)
        isChanged |= spreadEntry(entry, change, line);
    DictionaryObject *object = this->change(line, index);
    if (object == nullptr)
        return;
    if (change.before) {
        for (const DictionaryEntry &entry : change.before->entries) {
            const bool isGone = change.after->find(entry.subindex) == nullptr;
            if (entry.data.sharedlines && isGone && object->find(entry.subindex) != nullptr) {
                object->erase(entry.subindex);
                isChanged = true;
            }
        }
    }
    if (isChanged)
        SubZero::keep(*object);
}

bool EditTransaction::spreadEntry(const DictionaryEntry &entry, const Change &change, quint8 line)
{
    const DictionaryEntry *former = entryOf(change.before, entry.subindex);
    if (!entry.data.sharedlines || (former != nullptr && former->data == entry.data))
        return false;
    const quint16 index = change.after->index;
    DictionaryObject *object = this->change(line, index);
    if (object == nullptr) {
        const DictionaryObject *first = find(0, index);
        object = &put(line, first != nullptr ? *first : *change.after);
    }
    object->insert(entry);
    return true;
}

void EditTransaction::markChanged()
{
    for (auto &[key, change] : m_changes) {
        if (!change.after)
            continue;
        for (DictionaryEntry &entry : change.after->entries) {
            const DictionaryEntry *former = entryOf(change.before, entry.subindex);
            if (former == nullptr || former->data != entry.data)
                entry.data.changedbyuser = true;
        }
    }
}

EditTransaction::Writes EditTransaction::collect() const
{
    Writes writes;
    for (const auto &[key, change] : m_changes) {
        const auto &from = change.before;
        const auto &to = change.after;
        const auto &[line, index] = key;
        if (!to) {
            if (from)
                writes.removedObjects.append(key);
            continue;
        }
        const bool isRenewed = losesMetaData(from, *to);
        if (isRenewed)
            writes.renewedObjects.append(key);
        if (!from || isRenewed || from->data != to->data)
            writes.objects.append({line, index, to->data});
        for (const DictionaryEntry &entry : to->entries) {
            const DictionaryEntry *former = entryOf(from, entry.subindex);
            if (isRenewed || former == nullptr || former->data != entry.data)
                writes.entries.append({line, index, entry.subindex, entry.data});
        }
        if (!from || isRenewed)
            continue;
        for (const DictionaryEntry &entry : from->entries) {
            if (to->find(entry.subindex) == nullptr)
                writes.removedEntries.append({key, entry.subindex});
        }
    }
    return writes;
}

bool EditTransaction::write(const Writes &writes)
{
    bool done = true;
    for (const auto &[line, index] : writes.removedObjects)
        done &= m_store.deleteIndex(line, index);
    for (const auto &[line, index] : writes.renewedObjects)
        done &= m_store.deleteIndex(line, index, true);
    for (const auto &[key, subindex] : writes.removedEntries)
        done &= m_store.deleteSubIndex(key.first, key.second, subindex);
    if (writes.isFew()) {
        for (const ObjectDataBase::IndexEntry &object : writes.objects)
            done &= m_store.addIndex(object.line, object.index, object.data);
        for (const ObjectDataBase::SubEntry &entry : writes.entries)
            done &= m_store.addSubIndex(entry.line, entry.index, entry.subindex, entry.data);
        return done;
    }
    done &= m_store.addSubIndices(writes.entries); // goes past the caches
    done &= m_store.addIndices(writes.objects);
    std::set<quint8> lines;
    for (const ObjectDataBase::SubEntry &entry : writes.entries)
        lines.insert(entry.line);
    for (const quint8 line : lines)
        m_store.clearSubCache(line);
    return done;
}

EditResult EditTransaction::commit()
{
    markChanged();
    const Writes writes = collect();
    if (writes.size() == 0)
        return EditResult::done();
    if (!m_isWhole)
        return EditResult::refused(QCoreApplication::translate(
            "DictionaryEdit", "Not all objects could be read; nothing was changed."));
    if (m_store.writesBlocked() || m_store.isGenerating())
        return EditResult::refused(QCoreApplication::translate(
            "DictionaryEdit", "The project can't be changed while something else works on it."));
    StoreBulkChange bulk(m_store);
    const std::optional<Key> object = writes.soleObject();
    const bool isKept = object && m_changes.at(*object).after;
    // Told as several unlike changes, one object would have everybody read the whole line.
    if (isKept && writes.size() > 1)
        bulk.tellAs(
            {.kind = ObjectDataBase::IndexAdded, .index = object->second, .line = object->first});
    else if (!writes.isFew())
        bulk.tellAs({.kind = ObjectDataBase::ProjectReplaced});
    if (write(writes) && bulk.commit())
        return EditResult::done();
    return EditResult::refused(
        QCoreApplication::translate("DictionaryEdit", "The change could not be written. %1")
            .arg(m_store.lastErrorText())
            .trimmed());
}
