#include "odeditor/dictionarytree.h"

#include "canopen/helper.h"
#include "canopen/indextext.h"
#include "dictionary/segments.h"
#include "odeditor/deviceclasscolour.h"
#include "store/edition.h"

#include <QItemSelection>
#include <QScrollBar>
#include <QTreeWidget>

#include <algorithm>

namespace {

constexpr int rowRole = Qt::UserRole;
constexpr int filledRole = Qt::UserRole + 1; ///< the items of the subindices are there

/// One number that tells a row: level, index, subindex.
quint32 keyOf(const TreeRow &row)
{
    return quint32(row.level) << 24 | quint32(row.index) << 8 | row.subindex;
}

QTreeWidgetItem *makeItem(const TreeRow &row)
{
    auto *item = new QTreeWidgetItem;
    item->setData(0, rowRole, keyOf(row));
    if (row.level != TreeRow::Level::Segment)
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    return item;
}

/// The position of a number among the children, which are ascending.
int positionOf(const QTreeWidgetItem &parent, quint32 key)
{
    int low = 0;
    int high = parent.childCount();
    while (low < high) {
        const int middle = (low + high) / 2;
        if (parent.child(middle)->data(0, rowRole).toUInt() < key)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

QTreeWidgetItem *childWith(const QTreeWidgetItem &parent, quint32 key)
{
    QTreeWidgetItem *child = parent.child(positionOf(parent, key));
    return child != nullptr && child->data(0, rowRole).toUInt() == key ? child : nullptr;
}

bool hasObjects(const QList<quint16> &indices, ObjectRange range)
{
    const auto first = std::ranges::lower_bound(indices, range.low);
    return first != indices.end() && *first <= range.high;
}

} // namespace

DictionaryTree::DictionaryTree(QTreeWidget &view) : QObject(&view), m_view(view)
{
    connect(&view, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem *item) {
        if (rowOf(item).level == TreeRow::Level::Object)
            addSubIndices(*item);
    });
}

// --- Building -----------------------------------------------------------------------------------

void DictionaryTree::show(ObjectDataBase *store, quint8 line)
{
    if (m_store != nullptr)
        m_states.insert(m_line, state());
    m_store = store;
    m_line = line;
    build();
    restore(m_states.value(line));
}

void DictionaryTree::forget()
{
    m_states.clear();
    m_store = nullptr;
    build();
}

void DictionaryTree::reload()
{
    const State former = state();
    build();
    restore(former);
}

void DictionaryTree::build()
{
    m_view.setUpdatesEnabled(false);
    m_objects.clear();
    m_view.clear();
    const QList<quint16> indices = m_store != nullptr
                                       ? m_store->getIndices(m_line, ObjectRanges::device.low)
                                       : QList<quint16>();
    m_objects.reserve(indices.size());
    QList<QTreeWidgetItem *> segments;
    ObjectDataBase::INDEX_DATA_T data;
    for (const DictionarySegment &segment : dictionarySegments) {
        if (!segment.isAlwaysShown && !hasObjects(indices, segment.objects))
            continue;
        QTreeWidgetItem *top = makeItem(TreeRow::ofSegment(segment.objects.low));
        top->setText(0, QString::fromLatin1(segment.label));
        top->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
        segments.append(top);
        QList<QTreeWidgetItem *> children;
        const auto begin = std::ranges::lower_bound(indices, segment.objects.low);
        for (auto index = begin; index != indices.end() && *index <= segment.objects.high;
             ++index) {
            if (!m_store->getIndexData(m_line, *index, data))
                data = {};
            QTreeWidgetItem *item = makeItem(TreeRow::ofObject(*index));
            fill(*item, *index, data);
            m_objects.insert(*index, item);
            children.append(item);
        }
        top->addChildren(children);
    }
    m_view.addTopLevelItems(segments);
    if (!m_filter.isEmpty()) {
        for (QTreeWidgetItem *segment : std::as_const(segments))
            applyFilter(*segment);
    }
    m_view.setUpdatesEnabled(true);
}

void DictionaryTree::fill(QTreeWidgetItem &item, quint16 index,
                          const ObjectDataBase::INDEX_DATA_T &data) const
{
    const QString name = data.name.isEmpty()
                             ? QString(IndexText::unnamedObject)
                             : Helper::substituteVariables(data.name, index, 0, m_line);
    const QString text = Helper::onOneLine(IndexText::titled(index, name));
    if (item.text(0) != text)
        item.setText(0, text);
    if (item.childIndicatorPolicy() != QTreeWidgetItem::ShowIndicator &&
        !item.data(0, filledRole).toBool())
        item.setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    if (Edition::isEnergyBus())
        item.setBackground(0, DeviceClassColour::of(data.deviceclass));
}

QString DictionaryTree::subIndexText(quint16 index, quint8 subindex) const
{
    const QString stored = m_store->getSubIndexName(m_line, index, subindex);
    const QString name = stored.isEmpty()
                             ? QString(IndexText::unnamedSubIndex)
                             : Helper::substituteVariables(stored, index, subindex, m_line);
    return Helper::onOneLine(QStringLiteral("%1 - %2").arg(subindex).arg(name));
}

void DictionaryTree::addSubIndices(QTreeWidgetItem &object)
{
    if (object.data(0, filledRole).toBool())
        return;
    object.setData(0, filledRole, true);
    const quint16 index = rowOf(&object).index;
    QList<QTreeWidgetItem *> children;
    for (const quint8 subindex : m_store->getSubIndices(m_line, index)) {
        QTreeWidgetItem *item = makeItem(TreeRow::ofSubIndex(index, subindex));
        item->setText(0, subIndexText(index, subindex));
        children.append(item);
    }
    object.setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
    object.addChildren(children);
}

void DictionaryTree::prepareAll()
{
    if (m_store != nullptr && !m_store->isLineCached(m_line))
        m_store->cacheAllSubs(m_line);
}

/// The segment's item, made if the first object comes into it.
QTreeWidgetItem *DictionaryTree::segmentItem(quint16 index)
{
    const DictionarySegment *segment = segmentOf(index);
    if (segment == nullptr)
        return nullptr;
    const quint32 key = keyOf(TreeRow::ofSegment(segment->objects.low));
    int position = 0;
    while (position < m_view.topLevelItemCount() &&
           m_view.topLevelItem(position)->data(0, rowRole).toUInt() < key)
        ++position;
    QTreeWidgetItem *item = m_view.topLevelItem(position);
    if (item != nullptr && item->data(0, rowRole).toUInt() == key)
        return item;
    item = makeItem(TreeRow::ofSegment(segment->objects.low));
    item->setText(0, QString::fromLatin1(segment->label));
    m_view.insertTopLevelItem(position, item);
    return item;
}

// --- Changes ------------------------------------------------------------------------------------

QTreeWidgetItem *DictionaryTree::insertObject(quint16 index)
{
    QTreeWidgetItem *segment = segmentItem(index);
    if (segment == nullptr)
        return nullptr;
    const TreeRow row = TreeRow::ofObject(index);
    QTreeWidgetItem *item = makeItem(row);
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    segment->insertChild(positionOf(*segment, keyOf(row)), item);
    m_objects.insert(index, item);
    return item;
}

void DictionaryTree::updateObject(quint16 index)
{
    ObjectDataBase::INDEX_DATA_T data;
    if (m_store == nullptr || !m_store->getIndexData(m_line, index, data))
        return;
    QTreeWidgetItem *item = m_objects.value(index);
    if (item == nullptr)
        item = insertObject(index);
    if (item == nullptr)
        return;
    fill(*item, index, data);
    if (!m_filter.isEmpty())
        item->setHidden(!item->text(0).contains(m_filter, Qt::CaseInsensitive));
    // An object that was replaced has other subindices, whose own changes are not told.
    updateSubIndices(index);
}

void DictionaryTree::removeObject(quint16 index)
{
    QTreeWidgetItem *item = m_objects.take(index);
    if (item == nullptr)
        return;
    QTreeWidgetItem *segment = item->parent();
    segment->removeChild(item);
    delete item;
    const DictionarySegment *told = segmentOf(index);
    if (segment->childCount() == 0 && told != nullptr && !told->isAlwaysShown)
        delete segment;
}

void DictionaryTree::updateSubIndices(quint16 index)
{
    QTreeWidgetItem *object = m_objects.value(index);
    if (object == nullptr || !object->data(0, filledRole).toBool())
        return;
    const QList<quint8> present = m_store->getSubIndices(m_line, index);
    for (int at = object->childCount() - 1; at >= 0; --at) {
        if (!present.contains(rowOf(object->child(at)).subindex))
            delete object->takeChild(at);
    }
    for (const quint8 subindex : present)
        updateSubIndex(index, subindex);
}

void DictionaryTree::updateSubIndex(quint16 index, quint8 subindex)
{
    QTreeWidgetItem *object = m_objects.value(index);
    if (object == nullptr || !object->data(0, filledRole).toBool())
        return;
    const TreeRow row = TreeRow::ofSubIndex(index, subindex);
    QTreeWidgetItem *item = childWith(*object, keyOf(row));
    if (item == nullptr) {
        item = makeItem(row);
        object->insertChild(positionOf(*object, keyOf(row)), item);
    }
    if (const QString text = subIndexText(index, subindex); text != item->text(0))
        item->setText(0, text);
}

// --- State --------------------------------------------------------------------------------------

DictionaryTree::State DictionaryTree::state() const
{
    State state;
    state.isSet = m_view.topLevelItemCount() > 0;
    for (int i = 0; i < m_view.topLevelItemCount(); ++i) {
        const QTreeWidgetItem *segment = m_view.topLevelItem(i);
        if (segment->isExpanded())
            state.segments.insert(rowOf(segment).index);
        for (int child = 0; child < segment->childCount(); ++child) {
            const QTreeWidgetItem *object = segment->child(child);
            if (object->childCount() > 0 && object->isExpanded())
                state.objects.insert(rowOf(object).index);
        }
    }
    for (const QTreeWidgetItem *item : m_view.selectedItems())
        state.selected.append(rowOf(item));
    state.current = rowOf(m_view.currentItem());
    state.vertical = m_view.verticalScrollBar()->value();
    state.horizontal = m_view.horizontalScrollBar()->value();
    return state;
}

void DictionaryTree::restore(const State &state)
{
    for (int i = 0; i < m_view.topLevelItemCount(); ++i) {
        QTreeWidgetItem *segment = m_view.topLevelItem(i);
        segment->setExpanded(!state.isSet || state.segments.contains(rowOf(segment).index));
    }
    for (const quint16 index : state.objects) {
        if (QTreeWidgetItem *item = m_objects.value(index); item != nullptr) {
            addSubIndices(*item);
            item->setExpanded(true);
        }
    }
    restoreSelection(state);
    m_view.doItemsLayout();
    m_view.verticalScrollBar()->setValue(state.vertical);
    m_view.horizontalScrollBar()->setValue(state.horizontal);
}

void DictionaryTree::restoreSelection(const State &state)
{
    // Items hold no index of the model, so neighbours are joined to ranges here: thousands of
    // ranges of one row would be slow.
    QHash<QTreeWidgetItem *, QList<int>> rows;
    for (const TreeRow &row : state.selected) {
        QTreeWidgetItem *item = find(row);
        if (item == nullptr)
            continue;
        QTreeWidgetItem *parent =
            item->parent() != nullptr ? item->parent() : m_view.invisibleRootItem();
        rows[parent].append(parent->indexOfChild(item));
    }
    QItemSelection selection;
    for (auto at = rows.begin(); at != rows.end(); ++at) {
        const QModelIndex parent = m_view.indexFromItem(at.key());
        QList<int> &numbers = at.value();
        std::ranges::sort(numbers);
        for (qsizetype first = 0, last = 0; first < numbers.size(); first = last + 1) {
            last = first;
            while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1)
                ++last;
            selection.append({m_view.model()->index(numbers[first], 0, parent),
                              m_view.model()->index(numbers[last], 0, parent)});
        }
    }
    m_view.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (QTreeWidgetItem *item = find(state.current); item != nullptr) {
        m_view.selectionModel()->setCurrentIndex(m_view.indexFromItem(item),
                                                 QItemSelectionModel::NoUpdate);
    }
}

// --- Filter -------------------------------------------------------------------------------------

void DictionaryTree::setFilter(const QString &filter)
{
    if (m_filter == filter)
        return;
    const bool begins = m_filter.isEmpty();
    m_filter = filter;
    if (begins)
        m_beforeFilter = state().segments;
    m_view.setUpdatesEnabled(false);
    for (int i = 0; i < m_view.topLevelItemCount(); ++i)
        applyFilter(*m_view.topLevelItem(i));
    expandMatches();
    m_view.setUpdatesEnabled(true);
}

void DictionaryTree::applyFilter(QTreeWidgetItem &segment)
{
    const QModelIndex parent = m_view.indexFromItem(&segment);
    for (int row = 0; row < segment.childCount(); ++row) {
        const QTreeWidgetItem *item = segment.child(row);
        const bool hides =
            !m_filter.isEmpty() && !item->text(0).contains(m_filter, Qt::CaseInsensitive);
        m_view.setRowHidden(row, parent, hides);
    }
}

/// A match in a collapsed segment would not be found; without a filter the segments are as before.
void DictionaryTree::expandMatches()
{
    for (int i = 0; i < m_view.topLevelItemCount(); ++i) {
        QTreeWidgetItem *segment = m_view.topLevelItem(i);
        segment->setExpanded(m_filter.isEmpty() ? m_beforeFilter.contains(rowOf(segment).index)
                                                : segment->childCount() > 0);
    }
}

// --- Rows ---------------------------------------------------------------------------------------

TreeRow DictionaryTree::rowOf(const QTreeWidgetItem *item)
{
    if (item == nullptr)
        return {};
    const uint key = item->data(0, rowRole).toUInt();
    return {TreeRow::Level(key >> 24), quint16(key >> 8), quint8(key)};
}

TreeRow DictionaryTree::current() const
{
    return rowOf(m_view.currentItem());
}

bool DictionaryTree::isSeen(const QTreeWidgetItem *item) const
{
    for (; item->parent() != nullptr; item = item->parent()) {
        if (item->isHidden() || !item->parent()->isExpanded())
            return false;
    }
    return true;
}

QList<quint16> DictionaryTree::selectedObjects() const
{
    QList<quint16> indices;
    for (const QTreeWidgetItem *item : m_view.selectedItems()) {
        const TreeRow row = rowOf(item);
        if (row.level == TreeRow::Level::Object && isSeen(item))
            indices.append(row.index);
    }
    std::ranges::sort(indices);
    return indices;
}

QList<DictionaryTree::Key> DictionaryTree::selectedSubIndices() const
{
    QList<Key> keys;
    for (const QTreeWidgetItem *item : m_view.selectedItems()) {
        const TreeRow row = rowOf(item);
        if (row.level == TreeRow::Level::SubIndex && isSeen(item))
            keys.append({row.index, row.subindex});
    }
    std::ranges::sort(keys);
    return keys;
}

QTreeWidgetItem *DictionaryTree::find(const TreeRow &row)
{
    switch (row.level) {
    case TreeRow::Level::None:
        break;
    case TreeRow::Level::Segment:
        for (int i = 0; i < m_view.topLevelItemCount(); ++i) {
            if (rowOf(m_view.topLevelItem(i)) == row)
                return m_view.topLevelItem(i);
        }
        break;
    case TreeRow::Level::Object:
        return m_objects.value(row.index);
    case TreeRow::Level::SubIndex:
        if (QTreeWidgetItem *object = m_objects.value(row.index); object != nullptr) {
            addSubIndices(*object);
            return childWith(*object, keyOf(row));
        }
        break;
    }
    return nullptr;
}

void DictionaryTree::select(const QList<TreeRow> &rows)
{
    State state;
    for (const TreeRow &row : rows) {
        QTreeWidgetItem *item = find(row);
        if (item == nullptr)
            continue;
        if (state.selected.isEmpty())
            state.current = row;
        state.selected.append(row);
        for (QTreeWidgetItem *above = item->parent(); above != nullptr; above = above->parent())
            above->setExpanded(true);
    }
    restoreSelection(state);
    if (QTreeWidgetItem *item = find(state.current); item != nullptr)
        m_view.scrollToItem(item);
}

TreeRow DictionaryTree::neighbourOf(const QList<TreeRow> &rows)
{
    const auto isGoing = [&rows](const QTreeWidgetItem *item) {
        return rows.contains(rowOf(item));
    };
    QTreeWidgetItem *first = rows.isEmpty() ? nullptr : find(rows.constFirst());
    if (first == nullptr)
        return {};
    const QTreeWidgetItem *parent = first->parent();
    const QTreeWidgetItem *last = find(rows.constLast());
    if (last == nullptr || last->parent() != parent)
        last = first;
    for (QTreeWidgetItem *next = m_view.itemBelow(last); next != nullptr;
         next = m_view.itemBelow(next)) {
        if (next->parent() == parent && !isGoing(next))
            return rowOf(next);
        if (next->parent() != parent && rowOf(next).level != TreeRow::Level::SubIndex)
            break;
    }
    for (QTreeWidgetItem *next = m_view.itemAbove(first); next != nullptr && next != parent;
         next = m_view.itemAbove(next)) {
        if (next->parent() == parent && !isGoing(next))
            return rowOf(next);
    }
    return rowOf(parent);
}
