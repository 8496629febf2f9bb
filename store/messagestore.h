#pragma once

#include "store/objectdatabase.h"
#include "store/records.h"
#include "store/statementrunner.h"
#include "store/stringtable.h"

#include <QHash>
#include <QList>
#include <QSet>

#include <memory>
#include <optional>
#include <shared_mutex>
#include <tuple>
#include <type_traits>
#include <utility>

/// What tells the two kinds of messages with signals apart: SAE J1939 parameter groups with their
/// SPNs, and raw CAN messages with their data elements.
template <typename MessageRecord, typename SignalRecord>
struct MessageFamily
{
    using Message = MessageRecord;
    using Signal = SignalRecord;
    using ChangeSet = ObjectDataBase::ChangeSet;

    quint32 Message::*number;
    quint32 Signal::*owner;
    quint32 Signal::*signalNumber;
    quint16 Signal::*position; ///< first bit in the message's data
    bool keepsSignalZero;      ///< the signal of number 0 is not moved by laying out
    /// What a message's signals are ordered by.
    quint32 (*order)(const Signal &);

    ObjectDataBase::ChangeKind messageAdded;
    ObjectDataBase::ChangeKind messageDeleted;
    ObjectDataBase::ChangeKind signalAdded;
    quint32 ChangeSet::*messageField;
    quint32 ChangeSet::*signalField;
};

inline constexpr MessageFamily<Records::PGN, Records::SPN> pgnFamily{
    .number = &Records::PGN::number,
    .owner = &Records::SPN::pgn,
    .signalNumber = &Records::SPN::spn,
    .position = &Records::SPN::bitPosition,
    .keepsSignalZero = true,
    .order = [](const Records::SPN &spn) { return quint32(spn.pos); },
    .messageAdded = ObjectDataBase::PGNAdded,
    .messageDeleted = ObjectDataBase::PGNDeleted,
    .signalAdded = ObjectDataBase::SPNAdded,
    .messageField = &ObjectDataBase::ChangeSet::pgn,
    .signalField = &ObjectDataBase::ChangeSet::spn};

inline constexpr MessageFamily<Records::CANID, Records::DataElement> canIdFamily{
    .number = &Records::CANID::id,
    .owner = &Records::DataElement::canId,
    .signalNumber = &Records::DataElement::number,
    .position = &Records::DataElement::bitPos,
    .keepsSignalZero = false,
    .order = [](const Records::DataElement &element) { return element.number; },
    .messageAdded = ObjectDataBase::CANIDAdded,
    .messageDeleted = ObjectDataBase::CANIDDeleted,
    .signalAdded = ObjectDataBase::DataElementAdded,
    .messageField = &ObjectDataBase::ChangeSet::canid,
    .signalField = &ObjectDataBase::ChangeSet::element};

/// The messages of one family with their signals, of all lines. Any thread.
///
/// The first question to a line reads both of its tables, with one statement each; all answers come
/// from there, and a write keeps them up to date. So a walk over a line, with writes or without,
/// costs what it touches, however large the tables are, which have no index.
///
/// Writing operations change nothing if a statement fails that could still leave everything as it
/// was; they don't ask whether writes are refused, and notify of nothing.
template <const auto &family>
class MessageStore
{
public:
    using Family = std::remove_cvref_t<decltype(family)>;
    using Message = typename Family::Message;
    using Signal = typename Family::Signal;
    using MessageKey = Records::MessageKey;
    using SignalKey = Records::SignalKey;

    MessageStore(StatementRunner &runner, StringTable &strings)
        : m_runner(runner), m_strings(strings)
    {
    }

    // --- reading ---
    [[nodiscard]] std::optional<Message> message(quint8 line, const MessageKey &key);
    /// Ascending by number, as the table has them among the same.
    [[nodiscard]] QList<Message> messages(quint8 line);
    [[nodiscard]] std::optional<Signal> signal(quint8 line, const SignalKey &key);
    /// In their order; the signals of a message need no message.
    [[nodiscard]] QList<Signal> signalsOf(quint8 line, const MessageKey &key);
    [[nodiscard]] QList<quint32> signalNumbers(quint8 line, const MessageKey &key);

    // --- writing ---
    bool write(quint8 line, const Message &message);
    bool write(quint8 line, const Signal &signal);
    /// Many, with a prepared statement; of two with the same key the last one counts.
    bool writeAll(quint8 line, const QList<Message> &messages, const QList<Signal> &signalList);
    /// The message with its signals.
    bool remove(quint8 line, const MessageKey &key) { return remove(line, QSet{key}); }
    bool remove(quint8 line, const QSet<MessageKey> &keys);
    /// Messages with all of their signals give way to these.
    bool replaceAll(quint8 line, const QList<Message> &messages, const QList<Signal> &signalList);
    bool remove(quint8 line, const SignalKey &key);
    /// Lays the signals of a message out behind each other; true if any moved.
    bool layOut(quint8 line, const MessageKey &key, bool force);
    /// Lays out those of all messages that have never been.
    bool layOutLine(quint8 line);
    /// Writes to each message how many signals it has, where that is another number.
    bool repairMappingCounts(quint8 line);

    // --- the cache ---
    /// Keeps what is read of the line until the next write to it, even if statements go past this
    /// class.
    bool pin(quint8 line);
    /// What was read is read again.
    void drop(quint8 line);
    void clear();
    /// For statements of which nobody knows what they have changed.
    void dropUnpinned();

    [[nodiscard]] static MessageKey keyOf(const Message &message)
    {
        return {message.*family.number, Records::Direction(message.direction)};
    }
    [[nodiscard]] static SignalKey keyOf(const Signal &signal)
    {
        return {{signal.*family.owner, Records::Direction(signal.direction)},
                signal.*family.signalNumber};
    }

private:
    template <typename Record>
    struct Row
    {
        Record data;
        qint64 id = 0; ///< the database's number of the row
    };
    /// A signal's place in its message.
    struct Place
    {
        quint32 order = 0;
        qint64 id = 0;
        quint32 number = 0;

        bool operator<(const Place &other) const
        {
            return std::tie(order, id) < std::tie(other.order, other.id);
        }
    };
    struct Line
    {
        bool isPinned = false;
        /// Foreign files may hold rows with the same key, which are written and deleted together.
        bool hasTwins = false;
        QHash<MessageKey, Row<Message>> messages;
        QList<std::pair<MessageKey, qint64>> messageOrder; ///< by number and row
        QHash<SignalKey, Row<Signal>> rows;
        QHash<MessageKey, QList<Place>> places;

        void put(Row<Message> row);
        void put(Row<Signal> row);
        void take(const QSet<MessageKey> &keys);
        void take(const SignalKey &key);
    };

    template <typename Read>
    auto read(quint8 line, const Read &read);
    [[nodiscard]] std::shared_ptr<Line> loaded(quint8 line);
    [[nodiscard]] std::shared_ptr<Line> load(quint8 line);
    [[nodiscard]] std::shared_ptr<Line> loadForWrite(quint8 line);
    template <typename Record>
    bool readTable(quint8 line, Line &result);
    template <typename Record>
    bool writeRow(quint8 line, const Record &record);
    template <typename Record>
    bool insertRow(quint8 line, Line &present, const Record &record);
    template <typename Record>
    bool updateRow(quint8 line, Line &present, const Record &record, const Row<Record> &former);
    template <typename Record>
    static const auto &rowsOf(const Line &line);
    template <typename Record, typename Rows>
    bool writeMany(quint8 line, const QList<Record> &records, const Rows &known);
    template <typename Record>
    bool insertMany(quint8 line, const QList<Record> &records);
    template <typename Record>
    bool updateMany(quint8 line, const QList<Row<Record>> &rows);
    bool deleteRows(const QString &table, const QList<qint64> &ids);
    template <typename Record>
    [[nodiscard]] QStringList literals(const Record &record);
    template <typename Record, typename Key>
    [[nodiscard]] QString where(const Line &line, const Key &key, qint64 id) const;
    [[nodiscard]] bool moved(quint8 line, const MessageKey &key, bool force, QList<Signal> &result);

    StatementRunner &m_runner;
    StringTable &m_strings;
    std::shared_mutex m_mutex;
    QHash<quint8, std::shared_ptr<Line>> m_lines; ///< guarded by m_mutex, as what they hold
};

extern template class MessageStore<pgnFamily>;
extern template class MessageStore<canIdFamily>;
