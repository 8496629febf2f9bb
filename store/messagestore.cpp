#include "store/messagestore.h"

#include "store/recordcolumns.h"
#include "store/rowvalues.h"
#include "store/signallayout.h"
#include "store/sqltext.h"

#include <algorithm>
#include <mutex>
#include <type_traits>

namespace {

template <typename Record>
QString tableName(quint8 line)
{
    return SqlText::lineTable(RecordColumns::Table<Record>::name, line);
}

template <typename Record>
QString columnList()
{
    static const QString list = RecordColumns::columnNames<Record>().join(u',');
    return list;
}

template <typename Record, typename Values>
void writeRecord(Values &list, StringTable &strings, const Record &record)
{
    RecordColumns::Writer values(list, strings);
    values.intern({&record.name, &record.desc});
    RecordColumns::visit(values, record);
}

} // namespace

// --- what was read ------------------------------------------------------------------------------

template <const auto &family>
void MessageStore<family>::Line::put(Row<Message> row)
{
    const MessageKey key = keyOf(row.data);
    const auto found = messages.find(key);
    if (found != messages.end() && found->id == row.id) {
        found->data = std::move(row.data);
        return;
    }
    hasTwins |= found != messages.end();
    const std::pair place(key, row.id);
    const auto byNumber = [](const auto &a, const auto &b) {
        return std::tie(a.first.number, a.second) < std::tie(b.first.number, b.second);
    };
    messageOrder.insert(std::upper_bound(messageOrder.begin(), messageOrder.end(), place, byNumber),
                        place);
    messages.insert(key, std::move(row));
}

template <const auto &family>
void MessageStore<family>::Line::put(Row<Signal> row)
{
    const SignalKey key = keyOf(row.data);
    QList<Place> &list = places[key.message];
    const Place place{family.order(row.data), row.id, key.number};
    const auto found = rows.find(key);
    if (found != rows.end() && found->id == row.id) {
        const quint32 former = family.order(found->data);
        found->data = std::move(row.data);
        if (former == place.order)
            return;
        list.removeIf([&](const Place &other) { return other.id == place.id; });
    } else {
        hasTwins |= found != rows.end();
        rows.insert(key, std::move(row));
    }
    list.insert(std::upper_bound(list.begin(), list.end(), place), place);
}

template <const auto &family>
void MessageStore<family>::Line::take(const QSet<MessageKey> &keys)
{
    messageOrder.removeIf([&](const auto &place) { return keys.contains(place.first); });
    for (const MessageKey &key : keys) {
        messages.remove(key);
        const QList<Place> list = places.take(key);
        for (const Place &place : list)
            rows.remove({key, place.number});
    }
}

template <const auto &family>
void MessageStore<family>::Line::take(const SignalKey &key)
{
    rows.remove(key);
    places[key.message].removeIf([&](const Place &place) { return place.number == key.number; });
}

template <const auto &family>
std::shared_ptr<typename MessageStore<family>::Line> MessageStore<family>::loaded(quint8 line)
{
    const std::shared_lock lock(m_mutex);
    return m_lines.value(line);
}

/// Null if the tables can't be read.
template <const auto &family>
std::shared_ptr<typename MessageStore<family>::Line> MessageStore<family>::load(quint8 line)
{
    std::shared_ptr<Line> result;
    // Nobody writes between the reading of the tables and their place in the cache.
    m_runner.exclusive([&] {
        result = loaded(line);
        if (result)
            return;
        const auto fresh = std::make_shared<Line>();
        if (!readTable<Message>(line, *fresh) || !readTable<Signal>(line, *fresh))
            return;
        result = fresh;
        const std::unique_lock lock(m_mutex);
        m_lines.insert(line, fresh);
    });
    return result;
}

/// What a write goes by: what was kept against other statements may be older than the tables.
template <const auto &family>
std::shared_ptr<typename MessageStore<family>::Line> MessageStore<family>::loadForWrite(quint8 line)
{
    if (const std::shared_ptr<Line> present = loaded(line); present && present->isPinned)
        drop(line);
    return load(line);
}

template <const auto &family>
template <typename Record>
bool MessageStore<family>::readTable(quint8 line, Line &result)
{
    const StringTable::Texts texts(m_strings);
    RecordColumns::TextPool pool;
    return m_runner.forEachRow(
        QLatin1String("select ") + columnList<Record>() + QLatin1String(",rowid from ") +
            tableName<Record>(line) + QLatin1String(" order by rowid"),
        [&](const ResultRow &row) {
            RecordColumns::Reader values(row, texts, &pool);
            Row<Record> read;
            RecordColumns::visit(values, read.data);
            read.id = values.rest();
            result.put(std::move(read));
        },
        Q_FUNC_INFO);
}

template <const auto &family>
template <typename Read>
auto MessageStore<family>::read(quint8 line, const Read &read)
{
    static const Line nothing;
    std::shared_ptr<Line> present = loaded(line);
    if (!present)
        present = load(line);
    const std::shared_lock lock(m_mutex);
    return read(present ? *present : nothing);
}

// --- reading ------------------------------------------------------------------------------------

template <const auto &family>
std::optional<typename MessageStore<family>::Message>
MessageStore<family>::message(quint8 line, const MessageKey &key)
{
    return read(line, [&](const Line &present) -> std::optional<Message> {
        const auto found = present.messages.constFind(key);
        return found == present.messages.cend() ? std::nullopt : std::optional(found->data);
    });
}

template <const auto &family>
QList<typename MessageStore<family>::Message> MessageStore<family>::messages(quint8 line)
{
    return read(line, [](const Line &present) {
        QList<Message> result;
        result.reserve(present.messageOrder.size());
        for (const auto &place : present.messageOrder)
            result.append(present.messages.constFind(place.first)->data);
        return result;
    });
}

template <const auto &family>
std::optional<typename MessageStore<family>::Signal>
MessageStore<family>::signal(quint8 line, const SignalKey &key)
{
    return read(line, [&](const Line &present) -> std::optional<Signal> {
        const auto found = present.rows.constFind(key);
        return found == present.rows.cend() ? std::nullopt : std::optional(found->data);
    });
}

template <const auto &family>
QList<typename MessageStore<family>::Signal> MessageStore<family>::signalsOf(quint8 line,
                                                                             const MessageKey &key)
{
    return read(line, [&](const Line &present) {
        QList<Signal> result;
        const auto places = present.places.constFind(key);
        if (places == present.places.cend())
            return result;
        result.reserve(places->size());
        for (const Place &place : *places)
            result.append(present.rows.constFind({key, place.number})->data);
        return result;
    });
}

template <const auto &family>
QList<quint32> MessageStore<family>::signalNumbers(quint8 line, const MessageKey &key)
{
    return read(line, [&](const Line &present) {
        QList<quint32> result;
        const auto places = present.places.constFind(key);
        if (places != present.places.cend()) {
            for (const Place &place : *places)
                result.append(place.number);
        }
        return result;
    });
}

// --- writing ------------------------------------------------------------------------------------

template <const auto &family>
template <typename Record>
QStringList MessageStore<family>::literals(const Record &record)
{
    RecordColumns::LiteralList list;
    writeRecord(list, m_strings, record);
    return list.literals();
}

template <const auto &family>
template <typename Record, typename Key>
QString MessageStore<family>::where(const Line &line, const Key &key, qint64 id) const
{
    if (!line.hasTwins)
        return QLatin1String(" where rowid = ") + QString::number(id);
    const auto terms = [](const QString &number, const MessageKey &message) {
        return number + QLatin1String(" = ") + QString::number(message.number) +
               QLatin1String(" and ifnull(direction,0) = ") +
               QString::number(quint8(message.direction));
    };
    static const QString name = RecordColumns::columnNames<Record>().constFirst();
    if constexpr (std::is_same_v<Key, MessageKey>) {
        return QLatin1String(" where ") + terms(name, key);
    } else {
        static const QString signalName = RecordColumns::columnNames<Record>().at(1);
        return QLatin1String(" where ") + terms(name, key.message) + QLatin1String(" and ") +
               signalName + QLatin1String(" = ") + QString::number(key.number);
    }
}

template <const auto &family>
template <typename Record>
const auto &MessageStore<family>::rowsOf(const Line &line)
{
    if constexpr (std::is_same_v<Record, Message>)
        return line.messages;
    else
        return line.rows;
}

template <const auto &family>
template <typename Record>
bool MessageStore<family>::insertRow(quint8 line, Line &present, const Record &record)
{
    const qint64 id = m_runner.insert(
        QLatin1String("insert into ") + tableName<Record>(line) + QLatin1String(" (") +
            columnList<Record>() + QLatin1String(") values(") + literals(record).join(u',') + u')',
        Q_FUNC_INFO);
    if (id < 0)
        return false;
    const std::unique_lock lock(m_mutex);
    present.put(Row<Record>{record, id});
    return true;
}

template <const auto &family>
template <typename Record>
bool MessageStore<family>::updateRow(quint8 line, Line &present, const Record &record,
                                     const Row<Record> &former)
{
    const bool done =
        m_runner.exec(QLatin1String("update ") + tableName<Record>(line) + QLatin1String(" set ") +
                          RecordColumns::assignments<Record>(literals(record)) +
                          where<Record>(present, keyOf(record), former.id),
                      Q_FUNC_INFO);
    if (!done || present.hasTwins) {
        drop(line);
        return done;
    }
    Record merged = record;
    RecordColumns::keepUnwritten(merged, former.data);
    const std::unique_lock lock(m_mutex);
    present.put(Row<Record>{merged, former.id});
    return true;
}

template <const auto &family>
template <typename Record>
bool MessageStore<family>::writeRow(quint8 line, const Record &record)
{
    bool done = false;
    m_runner.exclusive([&] {
        const std::shared_ptr<Line> present = loadForWrite(line);
        if (!present)
            return;
        const auto &rows = rowsOf<Record>(std::as_const(*present));
        const auto found = rows.constFind(keyOf(record));
        done = found == rows.cend() ? insertRow(line, *present, record)
                                    : updateRow(line, *present, record, Row<Record>(*found));
        // What the database makes of such texts is read again.
        if (RecordColumns::hasOddText(record))
            drop(line);
    });
    return done;
}

template <const auto &family>
bool MessageStore<family>::write(quint8 line, const Message &message)
{
    return writeRow(line, message);
}

template <const auto &family>
bool MessageStore<family>::write(quint8 line, const Signal &signal)
{
    return writeRow(line, signal);
}

template <const auto &family>
template <typename Record>
bool MessageStore<family>::insertMany(quint8 line, const QList<Record> &records)
{
    if (records.isEmpty())
        return true;
    const QString into = QLatin1String("insert into ") + tableName<Record>(line) +
                         QLatin1String(" (") + columnList<Record>() + QLatin1String(") values(");
    if (m_runner.isDirect()) {
        const auto columns = RecordColumns::columnNames<Record>().size();
        const QByteArray places = QByteArray("?,").repeated(columns).chopped(1);
        return m_runner.execMany(
            into.toStdString() + places.toStdString() + ')', records.size(),
            [&](qsizetype i, BoundRow &row) { writeRecord(row, m_strings, records.at(i)); },
            Q_FUNC_INFO);
    }
    bool done = true;
    for (const Record &record : records)
        done &= m_runner.exec(into + literals(record).join(u',') + u')', Q_FUNC_INFO);
    return done;
}

template <const auto &family>
template <typename Record>
bool MessageStore<family>::updateMany(quint8 line, const QList<Row<Record>> &rows)
{
    if (rows.isEmpty())
        return true;
    const QString update =
        QLatin1String("update ") + tableName<Record>(line) + QLatin1String(" set ");
    const QString behind = QLatin1String(" where rowid = ");
    if (m_runner.isDirect()) {
        return m_runner.execMany(
            (update + RecordColumns::assignments<Record>({}) + behind + u'?').toStdString(),
            rows.size(),
            [&](qsizetype i, BoundRow &row) {
                const Row<Record> &given = rows.at(i);
                RecordColumns::Writer values(row, m_strings);
                values.intern({&given.data.name, &given.data.desc});
                RecordColumns::visitUpdated(values, given.data);
                row.id(given.id);
            },
            Q_FUNC_INFO);
    }
    bool done = true;
    for (const Row<Record> &row : rows)
        done &= m_runner.exec(update + RecordColumns::assignments<Record>(literals(row.data)) +
                                  behind + QString::number(row.id),
                              Q_FUNC_INFO);
    return done;
}

template <const auto &family>
template <typename Record, typename Rows>
bool MessageStore<family>::writeMany(quint8 line, const QList<Record> &records, const Rows &known)
{
    QList<Record> fresh;
    QList<Row<Record>> changed;
    QHash<decltype(keyOf(records.constFirst())), qsizetype> places;
    for (const Record &record : records) {
        const auto key = keyOf(record);
        if (const auto row = known.constFind(key); row != known.cend()) {
            changed.append({record, row->id});
        } else if (const auto twice = places.constFind(key); twice != places.cend()) {
            fresh[*twice] = record;
        } else {
            places.insert(key, fresh.size());
            fresh.append(record);
        }
    }
    const bool inserted = insertMany(line, fresh);
    return updateMany(line, changed) && inserted;
}

template <const auto &family>
bool MessageStore<family>::writeAll(quint8 line, const QList<Message> &messages,
                                    const QList<Signal> &signalList)
{
    bool done = false;
    const bool committed = m_runner.transaction([&] {
        const std::shared_ptr<Line> present = loadForWrite(line);
        if (!present)
            return;
        if (present->hasTwins) {
            // Rows with the same key are written one by one, all of them.
            done = true;
            for (const Message &message : messages)
                done &= write(line, message);
            for (const Signal &signal : signalList)
                done &= write(line, signal);
            return;
        }
        done = writeMany(line, messages, present->messages);
        done &= writeMany(line, signalList, present->rows);
        drop(line);
    });
    return done && committed;
}

template <const auto &family>
bool MessageStore<family>::deleteRows(const QString &table, const QList<qint64> &ids)
{
    constexpr qsizetype mostOfStatement = 500;
    bool done = true;
    for (qsizetype from = 0; from < ids.size(); from += mostOfStatement) {
        QStringList numbers;
        for (const qint64 id : ids.mid(from, mostOfStatement))
            numbers.append(QString::number(id));
        done &= m_runner.exec(QLatin1String("delete from ") + table +
                                  QLatin1String(" where rowid in (") + numbers.join(u',') + u')',
                              Q_FUNC_INFO);
    }
    return done;
}

template <const auto &family>
bool MessageStore<family>::remove(quint8 line, const QSet<MessageKey> &keys)
{
    bool done = false;
    m_runner.exclusive([&] {
        const std::shared_ptr<Line> present = loadForWrite(line);
        if (!present)
            return;
        QList<qint64> messageIds;
        for (const auto &[key, id] : std::as_const(present->messageOrder)) {
            if (keys.contains(key))
                messageIds.append(id);
        }
        QList<qint64> signalIds;
        for (const MessageKey &key : keys) {
            const QList<Place> places = present->places.value(key);
            for (const Place &place : places)
                signalIds.append(place.id);
        }
        done = deleteRows(tableName<Signal>(line), signalIds) &&
               deleteRows(tableName<Message>(line), messageIds);
        if (!done) {
            drop(line);
            return;
        }
        const std::unique_lock lock(m_mutex);
        present->take(keys);
    });
    return done;
}

template <const auto &family>
bool MessageStore<family>::remove(quint8 line, const SignalKey &key)
{
    bool done = false;
    m_runner.exclusive([&] {
        const std::shared_ptr<Line> present = loadForWrite(line);
        if (!present)
            return;
        QList<qint64> ids;
        const QList<Place> places = present->places.value(key.message);
        for (const Place &place : places) {
            if (place.number == key.number)
                ids.append(place.id);
        }
        done = deleteRows(tableName<Signal>(line), ids);
        if (!done) {
            drop(line);
            return;
        }
        const std::unique_lock lock(m_mutex);
        present->take(key);
    });
    return done;
}

template <const auto &family>
bool MessageStore<family>::replaceAll(quint8 line, const QList<Message> &messages,
                                      const QList<Signal> &signalList)
{
    bool done = false;
    const bool committed = m_runner.transaction([&] {
        QSet<MessageKey> keys;
        for (const Message &message : messages)
            keys.insert(keyOf(message));
        done = remove(line, keys) && writeAll(line, messages, signalList);
    });
    return done && committed;
}

/// The signals of a message whose place changes by laying out.
template <const auto &family>
bool MessageStore<family>::moved(quint8 line, const MessageKey &key, bool force,
                                 QList<Signal> &result)
{
    const QList<Signal> former = signalsOf(line, key);
    QList<Signal> list = former;
    if (!SignalLayout::layOut(list, family.position, force))
        return false;
    const qsizetype before = result.size();
    for (qsizetype i = 0; i < list.size(); ++i) {
        const bool changed = list.at(i).*family.position != former.at(i).*family.position;
        const bool isKept = family.keepsSignalZero && list.at(i).*family.signalNumber == 0;
        if (changed && !isKept)
            result.append(list.at(i));
    }
    return result.size() != before;
}

template <const auto &family>
bool MessageStore<family>::layOut(quint8 line, const MessageKey &key, bool force)
{
    bool done = false;
    m_runner.exclusive([&] {
        QList<Signal> list;
        done = moved(line, key, force, list) && writeAll(line, {}, list);
    });
    return done;
}

template <const auto &family>
bool MessageStore<family>::layOutLine(quint8 line)
{
    bool done = true;
    m_runner.exclusive([&] {
        QList<Signal> list;
        const QList<Message> all = messages(line);
        for (const Message &message : all)
            (void)moved(line, keyOf(message), false, list);
        done = list.isEmpty() || writeAll(line, {}, list);
    });
    return done;
}

template <const auto &family>
bool MessageStore<family>::repairMappingCounts(quint8 line)
{
    static const QString number = RecordColumns::columnNames<Message>().constFirst();
    static const QString owner = RecordColumns::columnNames<Signal>().constFirst();
    const QString table = tableName<Message>(line);
    bool done = true;
    m_runner.exclusive([&] {
        QList<std::pair<qint64, qint64>> counts;
        // A count that is not there is wrong, too, though it reads as 0.
        done = m_runner.forEachRow(
            QStringLiteral("select m.rowid, count(s.rowid) from %1 m left join %2 s on s.%3 = m.%4 "
                           "and s.direction = m.direction group by m.rowid having "
                           "ifnull(m.mappingcount,-1) != count(s.rowid)")
                .arg(table, tableName<Signal>(line), owner, number),
            [&](const ResultRow &row) {
                counts.append({row.integer(0), row.integer(1)});
            },
            Q_FUNC_INFO);
        for (const auto &[row, count] : std::as_const(counts))
            done &= m_runner.exec(QStringLiteral("update %1 SET mappingcount = %2 where rowid = %3")
                                      .arg(table)
                                      .arg(count)
                                      .arg(row),
                                  Q_FUNC_INFO);
        if (!counts.isEmpty())
            drop(line);
    });
    return done;
}

// --- the cache ----------------------------------------------------------------------------------

template <const auto &family>
bool MessageStore<family>::pin(quint8 line)
{
    drop(line);
    const std::shared_ptr<Line> present = load(line);
    if (!present)
        return false;
    const std::unique_lock lock(m_mutex);
    present->isPinned = true;
    return true;
}

template <const auto &family>
void MessageStore<family>::drop(quint8 line)
{
    const std::unique_lock lock(m_mutex);
    m_lines.remove(line);
}

template <const auto &family>
void MessageStore<family>::clear()
{
    const std::unique_lock lock(m_mutex);
    m_lines.clear();
}

template <const auto &family>
void MessageStore<family>::dropUnpinned()
{
    const std::unique_lock lock(m_mutex);
    m_lines.removeIf([](const auto &entry) { return !entry.value()->isPinned; });
}

template class MessageStore<pgnFamily>;
template class MessageStore<canIdFamily>;
