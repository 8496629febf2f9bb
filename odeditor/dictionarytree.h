#pragma once

#include "store/objectdatabase.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>

class QTreeWidget;
class QTreeWidgetItem;

/// What a row of the tree stands for.
struct TreeRow
{
    enum class Level : quint8 { None, Segment, Object, SubIndex };

    Level level = Level::None;
    quint16 index = 0; ///< of a segment its first number
    quint8 subindex = 0;

    bool operator==(const TreeRow &) const = default;
    [[nodiscard]] static TreeRow ofSegment(quint16 low) { return {Level::Segment, low, 0}; }
    [[nodiscard]] static TreeRow ofObject(quint16 index) { return {Level::Object, index, 0}; }
    [[nodiscard]] static TreeRow ofSubIndex(quint16 index, quint8 subindex)
    {
        return {Level::SubIndex, index, subindex};
    }
};

/// The items of the tree of an object dictionary: segments, objects and subindices of one line.
///
/// Subindices get their items when their object is first expanded. Rows are known by the data of
/// their item, never by its text. Nothing is written. The tree must outlive this.
class DictionaryTree : public QObject
{
    Q_OBJECT

public:
    using Key = ObjectDataBase::SubIndexKey;

    /// What the user has made of the view; kept over rebuilds.
    struct State
    {
        bool isSet = false; ///< false: nothing of the line was shown yet
        QSet<quint16> segments;
        QSet<quint16> objects; ///< expanded ones
        QList<TreeRow> selected;
        TreeRow current;
        int vertical = 0;
        int horizontal = 0;
    };

    explicit DictionaryTree(QTreeWidget &view);

    /// Shows another line, in the state in which it was left before.
    void show(ObjectDataBase *store, quint8 line);
    /// Reads all of it again. Expansion, selection, scroll and filter stay.
    void reload();
    [[nodiscard]] bool isShowing(const ObjectDataBase *store, quint8 line) const
    {
        return m_store != nullptr && m_store == store && m_line == line;
    }
    /// Shows nothing, and forgets in which states lines were left: another store is coming.
    void forget();

    // What the store tells
    void updateObject(quint16 index);
    void removeObject(quint16 index);
    /// All subindices of an object.
    void updateSubIndices(quint16 index);
    void updateSubIndex(quint16 index, quint8 subindex);

    /// Objects whose text does not contain the filter are hidden; case makes no difference.
    void setFilter(const QString &filter);

    [[nodiscard]] static TreeRow rowOf(const QTreeWidgetItem *item);
    [[nodiscard]] TreeRow current() const;
    /// Objects that are selected and can be seen, ascending.
    [[nodiscard]] QList<quint16> selectedObjects() const;
    [[nodiscard]] QList<Key> selectedSubIndices() const;
    /// Null if there is none; makes the items of an object's subindices for one of them.
    [[nodiscard]] QTreeWidgetItem *find(const TreeRow &row);
    /// Selects these rows, with the first one that is there as the current one, and shows it.
    void select(const QList<TreeRow> &rows);
    /// What is to be current once these rows are gone: the row behind them, else before.
    [[nodiscard]] TreeRow neighbourOf(const QList<TreeRow> &rows);
    /// Reads all names at once, for an expansion of everything.
    void prepareAll();

private:
    [[nodiscard]] State state() const;
    void restore(const State &state);
    void restoreSelection(const State &state);
    void build();
    QTreeWidgetItem *segmentItem(quint16 index);
    QTreeWidgetItem *insertObject(quint16 index);
    void addSubIndices(QTreeWidgetItem &object);
    void fill(QTreeWidgetItem &item, quint16 index, const ObjectDataBase::INDEX_DATA_T &data) const;
    [[nodiscard]] QString subIndexText(quint16 index, quint8 subindex) const;
    void applyFilter(QTreeWidgetItem &segment);
    void expandMatches();
    [[nodiscard]] bool isSeen(const QTreeWidgetItem *item) const;

    QTreeWidget &m_view;
    ObjectDataBase *m_store = nullptr;
    quint8 m_line = 0;
    QHash<quint16, QTreeWidgetItem *> m_objects;
    QHash<quint8, State> m_states; ///< by line
    QString m_filter;
    QSet<quint16> m_beforeFilter; ///< segments that were expanded before there was a filter
};
