#pragma once

#include "store/objectdatabase.h"

#include <QList>

#include <functional>

/// The messages of a line with their signals, in the order in which every output has them: receive
/// before transmit, numbers ascending, signals by their rows. What can't be read is left out.
///
/// One statement or cache a line, whatever the number of messages. Any thread.
namespace SignalWalk {

/// A parameter group of SAE J1939.
struct Pgn
{
    ObjectDataBase::PGN group;
    QList<ObjectDataBase::SPN> spns;

    /// The stack brings the address claim (SAE J1939-81) itself, whatever a project says of it.
    [[nodiscard]] bool isAddressClaim() const;
};

/// A raw CAN message.
struct CanId
{
    static constexpr quint32 extendedBit = 0x20000000; ///< of the stored identifier
    static constexpr quint32 identifierMask = 0x1FFFFFFF;

    ObjectDataBase::CANID message;
    QList<ObjectDataBase::DataElement> elements;

    [[nodiscard]] bool isExtended() const { return (message.id & extendedBit) != 0; }
    /// As it stands on the bus (ISO 11898).
    [[nodiscard]] quint32 identifier() const { return message.id & identifierMask; }
};

/// Asked before each message; true ends the walk.
using Stop = std::function<bool()>;

/// False if the walk was ended.
bool pgns(ObjectDataBase &store, quint8 line, const std::function<void(const Pgn &)> &visit,
          const Stop &stop = {});
bool canIds(ObjectDataBase &store, quint8 line, const std::function<void(const CanId &)> &visit,
            const Stop &stop = {});

} // namespace SignalWalk
