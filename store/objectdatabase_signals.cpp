#include "store/objectdatabase_p.h"

#include <QDebug>

// Parameter groups and raw CAN messages are the same operations on two families: each is told once
// here, and the operations of the header only name the family.

namespace {

using Records::Direction;
using Records::MessageKey;
using Records::SignalKey;

MessageKey messageKey(quint32 number, quint8 direction)
{
    return {number, Direction(direction)};
}

SignalKey signalKey(quint32 message, quint8 direction, quint32 number)
{
    return {messageKey(message, direction), number};
}

/// A record with the keys that its caller gives beside it.
template <const auto &family, typename Message>
Message keyed(const Message &data, const MessageKey &key)
{
    Message message = data;
    message.*family.number = key.number;
    message.direction = quint8(key.direction);
    return message;
}

template <const auto &family, typename Signal>
Signal keyed(const Signal &data, const SignalKey &key)
{
    Signal signal = data;
    signal.*family.owner = key.message.number;
    signal.direction = quint8(key.message.direction);
    signal.*family.signalNumber = key.number;
    return signal;
}

template <const auto &family>
ObjectDataBase::ChangeSet changeOf(ObjectDataBase::ChangeKind kind, quint8 line,
                                   const MessageKey &key)
{
    ObjectDataBase::ChangeSet change{
        .kind = kind, .line = line, .direction = quint8(key.direction)};
    change.*family.messageField = key.number;
    return change;
}

template <const auto &family>
ObjectDataBase::ChangeSet changeOf(ObjectDataBase::ChangeKind kind, quint8 line,
                                   const SignalKey &key)
{
    ObjectDataBase::ChangeSet change = changeOf<family>(kind, line, key.message);
    change.*family.signalField = key.number;
    return change;
}

constexpr auto everyMessage = [](const auto &) { return true; };

} // namespace

/// The operations of one family, in the name of a store.
template <const auto &family>
class ObjectDataBase::State::Messages
{
public:
    using Room = MessageStore<family>;
    using Message = typename Room::Message;
    using Signal = typename Room::Signal;

    explicit Messages(State &state) : m_state(state) {}

    bool add(quint8 line, const MessageKey &key, const Message &data)
    {
        if (m_state.refusesWrites())
            return false;
        const bool done = room().write(line, keyed<family>(data, key));
        m_state.notify(changeOf<family>(family.messageAdded, line, key));
        return done;
    }
    bool add(quint8 line, const SignalKey &key, const Signal &data)
    {
        if (m_state.refusesWrites())
            return false;
        const bool done = room().write(line, keyed<family>(data, key));
        m_state.notify(changeOf<family>(family.signalAdded, line, key));
        return done;
    }
    bool addAll(quint8 line, const QList<Message> &messages, const QList<Signal> &signalList)
    {
        if (m_state.refusesWrites())
            return false;
        const bool done = room().writeAll(line, messages, signalList);
        m_state.notify({.kind = ObjectDataBase::ProjectReplaced});
        return done;
    }
    bool get(quint8 line, const MessageKey &key, Message &data)
    {
        return take(room().message(line, key), data);
    }
    bool get(quint8 line, const SignalKey &key, Signal &data)
    {
        return take(room().signal(line, key), data);
    }
    template <typename Condition>
    QList<quint32> numbers(quint8 line, quint8 direction, const Condition &condition)
    {
        QList<quint32> result;
        const QList<Message> all = room().messages(line);
        for (const Message &message : all) {
            if ((direction == 0 || message.direction == direction) && condition(message))
                result.append(message.*family.number);
        }
        return result;
    }
    void remove(quint8 line, const MessageKey &key)
    {
        if (m_state.refusesWrites())
            return;
        room().remove(line, key);
        m_state.notify(changeOf<family>(family.messageDeleted, line, key));
    }
    void remove(quint8 line, const SignalKey &key)
    {
        if (m_state.refusesWrites())
            return;
        room().remove(line, key);
        m_state.notify(changeOf<family>(ObjectDataBase::SPNOrDataElementDeleted, line, key));
    }
    void layOut(quint8 line, const MessageKey &key, bool force)
    {
        if (!m_state.refusesWrites() && room().layOut(line, key, force))
            m_state.notify(changeOf<family>(family.messageAdded, line, key));
    }

    /// Puts messages in place of the target's; `change` adapts each before.
    template <typename Change>
    bool copyFrom(State &source, quint8 sourceLine, quint8 targetLine, const QList<Message> &chosen,
                  const Change &change)
    {
        QList<Message> messages = chosen;
        QList<Signal> signalList;
        for (Message &message : messages) {
            QList<Signal> own =
                roomOf(source).signalsOf(sourceLine, MessageStore<family>::keyOf(message));
            change(message, own);
            signalList.append(own);
        }
        StoreBulkChange bulk(m_state.face);
        if (m_state.refusesWrites() || !room().replaceAll(targetLine, messages, signalList))
            return false;
        m_state.notify({.kind = ObjectDataBase::ProjectReplaced});
        if (messages.size() == 1)
            bulk.tellAs(changeOf<family>(family.messageAdded, targetLine,
                                         MessageStore<family>::keyOf(messages.constFirst())));
        return bulk.commit();
    }

private:
    template <typename Record>
    static bool take(const std::optional<Record> &found, Record &data)
    {
        if (found)
            data = *found;
        return found.has_value();
    }
    static Room &roomOf(State &state)
    {
        if constexpr (std::is_same_v<Message, Records::PGN>)
            return state.pgns;
        else
            return state.canIds;
    }
    Room &room() { return roomOf(m_state); }

    State &m_state;
};

// --- J1939 --------------------------------------------------------------------------------------

bool ObjectDataBase::addPGN(quint8 line, quint32 number, const PGN &data)
{
    return State::Pgns(*d).add(line, messageKey(number, data.direction), data);
}

bool ObjectDataBase::addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn,
                            const SPN &data)
{
    return State::Pgns(*d).add(line, signalKey(pgn, direction, spn), data);
}

bool ObjectDataBase::addPGNs(quint8 line, const QList<PGN> &pgns, const QList<SPN> &spns)
{
    return State::Pgns(*d).addAll(line, pgns, spns);
}

bool ObjectDataBase::pgnExists(quint8 line, quint32 number, quint8 direction)
{
    return d->pgns.message(line, messageKey(number, direction)).has_value();
}

bool ObjectDataBase::getPGN(quint8 line, quint32 number, quint8 direction, PGN &data)
{
    return State::Pgns(*d).get(line, messageKey(number, direction), data);
}

QList<ObjectDataBase::PGN> ObjectDataBase::getPGNs(quint8 line)
{
    return d->pgns.messages(line);
}

QString ObjectDataBase::getPGNName(quint8 line, quint32 number, quint8 direction)
{
    return d->pgns.message(line, messageKey(number, direction)).value_or(PGN()).name;
}

quint16 ObjectDataBase::getMappingCount(quint8 line, quint32 number, quint8 direction)
{
    return d->pgns.message(line, messageKey(number, direction)).value_or(PGN()).mappingCount;
}

QList<quint32> ObjectDataBase::getPGNList(quint8 line, quint8 direction, bool withoutSafe)
{
    return State::Pgns(*d).numbers(line, direction,
                                   [&](const PGN &pgn) { return !withoutSafe || pgn.isSafe == 0; });
}

QList<quint32> ObjectDataBase::getSPNList(quint8 line, quint32 pgn, quint8 direction)
{
    return d->pgns.signalNumbers(line, messageKey(pgn, direction));
}

QList<ObjectDataBase::SPN> ObjectDataBase::getSPNs(quint8 line, const MessageKey &pgn)
{
    return d->pgns.signalsOf(line, pgn);
}

bool ObjectDataBase::getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, SPN &data)
{
    return State::Pgns(*d).get(line, signalKey(pgn, direction, spn), data);
}

quint16 ObjectDataBase::getSPNDataType(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    return d->pgns.signal(line, signalKey(pgn, direction, spn)).value_or(SPN()).dataType;
}

QString ObjectDataBase::getSPNName(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    return d->pgns.signal(line, signalKey(pgn, direction, spn)).value_or(SPN()).name;
}

void ObjectDataBase::deletePGN(quint8 line, quint32 number, quint8 direction)
{
    State::Pgns(*d).remove(line, messageKey(number, direction));
}

void ObjectDataBase::deleteSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction)
{
    State::Pgns(*d).remove(line, signalKey(pgn, direction, spn));
}

void ObjectDataBase::realignSPNs(quint8 line, quint8 direction, quint32 pgn, bool force)
{
    State::Pgns(*d).layOut(line, messageKey(pgn, direction), force);
}

bool ObjectDataBase::copyPGN(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                             quint8 targetLine, quint32 number, quint8 direction,
                             quint8 targetDirection, int implementation)
{
    PGN pgn;
    if (!source.getPGN(sourceLine, number, direction, pgn))
        return false;
    const auto adapt = [&](PGN &message, QList<SPN> &spns) {
        message.direction = targetDirection;
        for (SPN &spn : spns) {
            spn.direction = targetDirection;
            if (implementation == CANopen::ManagedVariable || implementation == CANopen::Variable)
                spn.implementation = quint8(implementation);
        }
    };
    const bool copied =
        State::Pgns(*target.d).copyFrom(*source.d, sourceLine, targetLine, {pgn}, adapt);
    if (!copied)
        qDebug() << "adPGN() failed: " << number;
    return copied;
}

bool ObjectDataBase::copyPGNs(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                              quint8 targetLine, quint32 highest)
{
    QList<PGN> pgns = source.getPGNs(sourceLine);
    pgns.removeIf([highest](const PGN &pgn) { return pgn.number > highest; });
    return pgns.isEmpty() || State::Pgns(*target.d).copyFrom(*source.d, sourceLine, targetLine,
                                                             pgns, [](PGN &, QList<SPN> &) {});
}

bool ObjectDataBase::loadSPNCache(quint8 line)
{
    return d->pgns.pin(line);
}

void ObjectDataBase::clearSPNCache()
{
    d->pgns.clear();
}

void ObjectDataBase::repairMappingCounts(quint8 line)
{
    if (!d->refusesWrites())
        d->pgns.repairMappingCounts(line);
}

void ObjectDataBase::foldPageKeys(quint8 line)
{
    constexpr int pageShift = 16;
    if (d->refusesWrites())
        return;
    QList<PGN> folded;
    QList<SPN> moved;
    QSet<MessageKey> former;
    QSet<MessageKey> taken;
    const QList<PGN> pgns = getPGNs(line);
    for (const PGN &pgn : pgns)
        taken.insert(messageKey(pgn.number, pgn.direction));
    for (const PGN &pgn : pgns) {
        const bool hasDirection = pgn.direction == receive || pgn.direction == transmit;
        if (pgn.edpDpKey == 0 || !hasDirection)
            continue;
        PGN whole = pgn;
        whole.number += quint32(pgn.edpDpKey) << pageShift;
        whole.edpDpKey = 0;
        const MessageKey key = messageKey(whole.number, pgn.direction);
        if (taken.contains(key)) {
            qDebug() << "line" << line << "has PGN" << whole.number << "already, so" << pgn.number
                     << "keeps its page bits" << pgn.edpDpKey;
            continue;
        }
        const MessageKey own = messageKey(pgn.number, pgn.direction);
        taken.insert(key);
        former.insert(own);
        folded.append(whole);
        QList<SPN> spns = getSPNs(line, own);
        for (SPN &spn : spns)
            spn.pgn = whole.number;
        moved.append(spns);
    }
    if (folded.isEmpty())
        return;
    StoreBulkChange bulk(*this);
    if (!d->pgns.remove(line, former) || !d->pgns.writeAll(line, folded, moved))
        return;
    d->notify({.kind = ProjectReplaced});
    if (!bulk.commit())
        qDebug() << Q_FUNC_INFO << "line" << line << "keeps its page bits" << d->runner.lastError();
}

// --- raw CAN ------------------------------------------------------------------------------------

bool ObjectDataBase::addCANID(quint8 line, quint32 id, const CANID &data)
{
    return State::CanIds(*d).add(line, messageKey(id, data.direction), data);
}

bool ObjectDataBase::addDataElement(quint8 line, quint32 canId, quint8 direction, quint32 number,
                                    const DataElement &data)
{
    return State::CanIds(*d).add(line, signalKey(canId, direction, number), data);
}

bool ObjectDataBase::addCANIDs(quint8 line, const QList<CANID> &messages,
                               const QList<DataElement> &elements)
{
    return State::CanIds(*d).addAll(line, messages, elements);
}

bool ObjectDataBase::canIdExists(quint8 line, quint32 id, quint8 direction)
{
    return d->canIds.message(line, messageKey(id, direction)).has_value();
}

bool ObjectDataBase::getCANID(quint8 line, quint32 id, quint8 direction, CANID &data)
{
    return State::CanIds(*d).get(line, messageKey(id, direction), data);
}

QList<ObjectDataBase::CANID> ObjectDataBase::getCANIDs(quint8 line)
{
    return d->canIds.messages(line);
}

QString ObjectDataBase::getCANIDName(quint8 line, quint32 id, quint8 direction)
{
    return d->canIds.message(line, messageKey(id, direction)).value_or(CANID()).name;
}

QList<quint32> ObjectDataBase::getCANIDList(quint8 line, quint8 direction)
{
    return State::CanIds(*d).numbers(line, direction, everyMessage);
}

bool ObjectDataBase::getDataElement(quint8 line, quint32 canId, quint8 direction, quint32 number,
                                    DataElement &data)
{
    return State::CanIds(*d).get(line, signalKey(canId, direction, number), data);
}

QString ObjectDataBase::getDataElementName(quint8 line, quint32 canId, quint8 direction,
                                           quint32 number)
{
    return d->canIds.signal(line, signalKey(canId, direction, number)).value_or(DataElement()).name;
}

QList<quint32> ObjectDataBase::getDataElementList(quint8 line, quint32 canId, quint8 direction)
{
    return d->canIds.signalNumbers(line, messageKey(canId, direction));
}

QList<ObjectDataBase::DataElement> ObjectDataBase::getDataElements(quint8 line,
                                                                   const MessageKey &canId)
{
    return d->canIds.signalsOf(line, canId);
}

void ObjectDataBase::deleteCANID(quint8 line, quint32 id, quint8 direction)
{
    State::CanIds(*d).remove(line, messageKey(id, direction));
}

void ObjectDataBase::deleteDataElement(quint8 line, quint32 canId, quint32 number, quint8 direction)
{
    State::CanIds(*d).remove(line, signalKey(canId, direction, number));
}

bool ObjectDataBase::copyCANID(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                               quint8 targetLine, quint32 id, quint8 direction,
                               quint8 targetDirection)
{
    CANID message;
    if (!source.getCANID(sourceLine, id, direction, message))
        return false;
    const auto adapt = [&](CANID &copy, QList<DataElement> &elements) {
        copy.direction = targetDirection;
        for (DataElement &element : elements)
            element.direction = targetDirection;
    };
    const bool copied =
        State::CanIds(*target.d).copyFrom(*source.d, sourceLine, targetLine, {message}, adapt);
    if (!copied)
        qDebug() << "addCANID() failed: " << id;
    return copied;
}

bool ObjectDataBase::copyCANIDs(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                                quint8 targetLine)
{
    const QList<CANID> messages = source.getCANIDs(sourceLine);
    return messages.isEmpty() ||
           State::CanIds(*target.d).copyFrom(*source.d, sourceLine, targetLine, messages,
                                             [](CANID &, QList<DataElement> &) {});
}

void ObjectDataBase::realignDataElements(quint8 line, quint8 direction, quint32 canId)
{
    State::CanIds(*d).layOut(line, messageKey(canId, direction), false);
}
