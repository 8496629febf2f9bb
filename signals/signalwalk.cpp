#include "signals/signalwalk.h"

#include "canopen/j1939numbers.h"

#include <QScopeGuard>

namespace {

constexpr quint8 directions[] = {ObjectDataBase::receive, ObjectDataBase::transmit};

} // namespace

bool SignalWalk::Pgn::isAddressClaim() const
{
    return group.number == J1939::addressClaimed;
}

bool SignalWalk::pgns(ObjectDataBase &store, quint8 line,
                      const std::function<void(const Pgn &)> &visit, const Stop &stop)
{
    store.loadSPNCache(line);
    const auto release = qScopeGuard([&] { store.clearSPNCache(); });
    for (const quint8 direction : directions) {
        for (const quint32 number : store.getPGNList(line, direction)) {
            if (stop && stop())
                return false;
            Pgn pgn;
            if (!store.getPGN(line, number, direction, pgn.group))
                continue;
            for (const quint32 spnNumber : store.getSPNList(line, number, direction)) {
                ObjectDataBase::SPN spn;
                if (store.getSPN(line, number, direction, spnNumber, spn))
                    pgn.spns.append(spn);
            }
            visit(pgn);
        }
    }
    return true;
}

bool SignalWalk::canIds(ObjectDataBase &store, quint8 line,
                        const std::function<void(const CanId &)> &visit, const Stop &stop)
{
    for (const quint8 direction : directions) {
        for (const quint32 id : store.getCANIDList(line, direction)) {
            if (stop && stop())
                return false;
            CanId message;
            if (!store.getCANID(line, id, direction, message.message))
                continue;
            for (const quint32 number : store.getDataElementList(line, id, direction)) {
                ObjectDataBase::DataElement element;
                if (store.getDataElement(line, id, direction, number, element))
                    message.elements.append(element);
            }
            visit(message);
        }
    }
    return true;
}
