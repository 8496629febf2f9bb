#pragma once

#include <QHash>
#include <QSet>
#include <QString>

#include <shared_mutex>
#include <vector>

class StatementRunner;

/// Interned display texts: the table `Strings` and its two maps in memory. Any thread.
class StringTable
{
public:
    static constexpr qint64 none = 0; ///< no text, even if a foreign row has this id

    explicit StringTable(StatementRunner &runner) : m_runner(runner) {}

    /// The id of the text, which gets a row if it has none; -1 on failure.
    [[nodiscard]] qint64 intern(const QString &text);
    /// The text of an id; empty for an id that no row has.
    [[nodiscard]] QString lookup(qint64 id);
    /// The ids of all rows that hold the text.
    [[nodiscard]] QList<qint64> idsOf(const QString &text);
    /// Reads the whole table into the maps.
    bool rebuild();
    /// For a table that was made empty.
    void reset();
    /// Deletes rows and drops them from the maps, so that their texts get new rows when they are
    /// used again.
    void remove(const QSet<qint64> &ids);

    /// The texts for a reader of many rows, who asks without a lock for each. While it lives, its
    /// thread must not intern.
    class Texts
    {
    public:
        explicit Texts(StringTable &table);
        [[nodiscard]] QString text(qint64 id) const;

    private:
        StringTable &m_table;
        std::shared_lock<std::shared_mutex> m_lock; ///< only while all texts are there
    };

private:
    /// Ids are given from 1 upwards, so nearly all texts stand in a plain list.
    class TextMap
    {
    public:
        void insert(qint64 id, const QString &text);
        [[nodiscard]] const QString *find(qint64 id) const;
        [[nodiscard]] QString take(qint64 id);
        void clear();

    private:
        std::vector<QString> m_near; ///< by id; null for one that isn't there
        QHash<qint64, QString> m_far;
    };

    StatementRunner &m_runner;
    std::shared_mutex m_mutex;
    QHash<QString, qint64> m_ids;
    TextMap m_texts;
    bool m_complete = false; ///< the maps hold every row
};
