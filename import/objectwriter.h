#pragma once

#include "store/objectdatabase.h"

#include <QHash>
#include <QList>
#include <QSet>

/// Collects the objects of a file and writes them into a line in a few large steps, so that a file
/// is either taken or leaves the store alone. One thread, that of the import.
class ObjectWriter
{
public:
    /// The store must outlive this.
    ObjectWriter(ObjectDataBase &store, quint8 line) : m_store(store), m_line(line) {}

    /// A later object or subindex with the same number takes the place of the earlier one.
    void addObject(quint16 index, const ObjectDataBase::INDEX_DATA_T &data);
    void addEntry(quint16 index, quint8 subindex, ObjectDataBase::SUBINDEX_DATA_T data);
    /// The collected object; null if there is none.
    [[nodiscard]] ObjectDataBase::INDEX_DATA_T *object(quint16 index);
    /// The collected subindices in the order of the file; of a number that stands twice the last
    /// counts.
    [[nodiscard]] QList<ObjectDataBase::SubEntry> &entries() { return m_entries; }
    [[nodiscard]] qsizetype entryCount() const { return m_entries.size(); }

    /// Writes everything, drops what was collected and the line's outdated caches. False if the
    /// store refused a part.
    bool write();
    /// Subindices that the last `write` took away, since their records have become variables.
    [[nodiscard]] int droppedCount() const { return m_droppedCount; }

    /// What an entry needs beyond its file, so that the generators can place it: strings and
    /// domains get a kind of implementation that they may have, a variable's name and a size.
    static void makeGeneratable(ObjectDataBase::SUBINDEX_DATA_T &data, quint16 index,
                                quint8 subindex);

private:
    void dropOutdatedEntries();
    void flagDomains();

    ObjectDataBase &m_store;
    quint8 m_line;
    QList<quint16> m_order;
    QHash<quint16, ObjectDataBase::INDEX_DATA_T> m_objects;
    QList<ObjectDataBase::SubEntry> m_entries;
    int m_droppedCount = 0;
};
