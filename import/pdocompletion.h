#pragma once

#include "store/objectdatabase.h"

/// Adds the PDO objects that a device description counts but doesn't describe (CiA 306, CiA 301):
/// disabled PDOs with an empty dynamic mapping, which pass the model check.
class PdoCompletion
{
public:
    /// The store must outlive this. Objects outside the range aren't made.
    PdoCompletion(ObjectDataBase &store, quint8 line, quint32 low, quint32 high)
        : m_store(store), m_line(line), m_low(low), m_high(high)
    {
    }

    /// The communication parameters that every PDO of the device has: bit 0 is subindex 1. 0, as
    /// of a device that doesn't say, leaves the usual ones.
    void setCommunicationEntries(quint32 mask) { m_mask = mask & 0x3F; }
    /// Completes up to these counts. False if the store refused a part.
    bool complete(quint32 receivePdos, quint32 transmitPdos);
    /// The last completion made mappings, which are dynamic.
    [[nodiscard]] bool hasMadeMapping() const { return m_hasMadeMapping; }

private:
    enum class Direction { Receive, Transmit };

    bool completeCommunication(Direction direction, quint32 limit);
    bool completeMapping(quint16 first, quint32 limit);
    bool addCommunication(Direction direction, quint16 index, int number);
    bool addMapping(quint16 index);
    bool add(quint16 index, const QString &name, quint16 structure,
             const QList<std::pair<quint8, ObjectDataBase::SUBINDEX_DATA_T>> &entries);
    [[nodiscard]] bool isMissing(quint32 index) const;

    ObjectDataBase &m_store;
    quint8 m_line;
    quint32 m_low;
    quint32 m_high;
    quint32 m_mask = 0;
    bool m_hasMadeMapping = false;
};
