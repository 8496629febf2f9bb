#pragma once

#include <QHash>
#include <QSet>
#include <QString>

#include <shared_mutex>

class StatementRunner;

/// Interned display texts: the table `Strings` and its two maps in memory. Any thread.
class StringTable
{
public:
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

private:
    StatementRunner &m_runner;
    std::shared_mutex m_mutex;
    QHash<QString, qint64> m_ids;
    QHash<qint64, QString> m_texts;
    bool m_complete = false; ///< the maps hold every row
};
