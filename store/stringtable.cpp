#include "store/stringtable.h"

#include "store/resultrow.h"
#include "store/sqltext.h"
#include "store/statementrunner.h"

#include <mutex>

qint64 StringTable::intern(const QString &text)
{
    {
        const std::shared_lock lock(m_mutex);
        if (const auto found = m_ids.constFind(text); found != m_ids.constEnd())
            return *found;
    }
    qint64 id = -1;
    // Held from the look to the insert, so that two threads can't make two rows of one text.
    m_runner.exclusive([&] {
        bool complete = false;
        {
            const std::shared_lock lock(m_mutex);
            id = m_ids.value(text, -1);
            complete = m_complete;
        }
        if (id > 0)
            return;
        const QString quoted = SqlText::quoted(text);
        id = m_runner.insert(QLatin1String("insert into Strings values(NULL,") + quoted + u')',
                             Q_FUNC_INFO);
        // With every row in the maps a new row is the only one of its text. Otherwise an older
        // row may exist and wins.
        if (id > 0 && !complete) {
            const QVariant first = m_runner.value(
                QLatin1String("select id from Strings where id != 0 and string = ") + quoted);
            id = first.isValid() ? first.toLongLong() : -1;
        }
        if (id > 0) {
            const std::unique_lock lock(m_mutex);
            m_ids.insert(text, id);
            m_texts.insert(id, text);
        }
    });
    return id;
}

QString StringTable::lookup(qint64 id)
{
    if (id == none)
        return {};
    {
        const std::shared_lock lock(m_mutex);
        if (const QString *found = m_texts.find(id))
            return *found;
        if (m_complete)
            return {};
    }
    const QVariant text = m_runner.value(QLatin1String("select string from Strings where id = ") +
                                         QString::number(id));
    if (!text.isValid())
        return {};
    const std::unique_lock lock(m_mutex);
    m_texts.insert(id, text.toString());
    return text.toString();
}

QList<qint64> StringTable::idsOf(const QString &text)
{
    QList<qint64> ids;
    m_runner.forEachRow(QLatin1String("select id from Strings where id != 0 and string = ") +
                            SqlText::quoted(text),
                        [&](const ResultRow &row) { ids.append(row.value(0).toLongLong()); });
    return ids;
}

bool StringTable::rebuild()
{
    bool done = false;
    m_runner.exclusive([&] {
        const std::unique_lock lock(m_mutex);
        m_ids.clear();
        m_texts.clear();
        done =
            m_runner.forEachRow(QStringLiteral("select * from Strings"), [&](const ResultRow &row) {
                const qint64 id = row.integer(0);
                if (id == none)
                    return;
                const QString text = row.text(1);
                m_texts.insert(id, text);
                if (!m_ids.contains(text))
                    m_ids.insert(text, id);
            });
        m_complete = done;
    });
    return done;
}

void StringTable::reset()
{
    const std::unique_lock lock(m_mutex);
    m_ids.clear();
    m_texts.clear();
    m_complete = true;
}

void StringTable::remove(const QSet<qint64> &ids)
{
    m_runner.transaction([&] {
        for (const qint64 id : ids)
            m_runner.exec(QLatin1String("delete from Strings where id = ") + QString::number(id),
                          Q_FUNC_INFO);
        const std::unique_lock lock(m_mutex);
        for (const qint64 id : ids) {
            const QString text = m_texts.take(id);
            if (m_ids.value(text, -1) == id)
                m_ids.remove(text);
        }
    });
}

StringTable::Texts::Texts(StringTable &table) : m_table(table), m_lock(table.m_mutex)
{
    if (!m_table.m_complete)
        m_lock.unlock();
}

QString StringTable::Texts::text(qint64 id) const
{
    if (!m_lock)
        return m_table.lookup(id);
    const QString *found = m_table.m_texts.find(id);
    return found == nullptr ? QString() : *found;
}

void StringTable::TextMap::insert(qint64 id, const QString &text)
{
    constexpr qint64 widestGap = 4096;
    if (id < 0 || id > qint64(m_near.size()) + widestGap) {
        m_far.insert(id, text);
        return;
    }
    if (size_t(id) >= m_near.size())
        m_near.resize(size_t(id) + 1);
    m_near[size_t(id)] = text.isNull() ? QStringLiteral("") : text;
}

const QString *StringTable::TextMap::find(qint64 id) const
{
    if (id >= 0 && size_t(id) < m_near.size() && !m_near[size_t(id)].isNull())
        return &m_near[size_t(id)];
    const auto found = m_far.constFind(id);
    return found == m_far.constEnd() ? nullptr : &*found;
}

QString StringTable::TextMap::take(qint64 id)
{
    const QString *found = find(id);
    const QString text = found == nullptr ? QString() : *found;
    if (id >= 0 && size_t(id) < m_near.size())
        m_near[size_t(id)] = QString();
    m_far.remove(id);
    return text;
}

void StringTable::TextMap::clear()
{
    m_near.clear();
    m_far.clear();
}
