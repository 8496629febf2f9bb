#pragma once

#include "store/objectdatabase.h"

#include <QList>

/// Makes lines with as many messages as a whole J1939 catalogue has: each message has seven signals
/// one behind the other, half of them received. The same size always gives the same line.
namespace SyntheticSignals {

inline constexpr int signalsOfMessage = 7;

[[nodiscard]] QList<ObjectDataBase::PGN> pgns(int count);
/// Those of the same number of PGNs, message by message.
[[nodiscard]] QList<ObjectDataBase::SPN> spns(int count);
[[nodiscard]] QList<ObjectDataBase::CANID> canIds(int count);
[[nodiscard]] QList<ObjectDataBase::DataElement> dataElements(int count);

/// Fills line 0 of a new store: type, PGNs and SPNs, CAN-IDs and data elements.
bool fill(ObjectDataBase &store, int count);

} // namespace SyntheticSignals
