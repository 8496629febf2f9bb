#pragma once

#include "canopen/cohelper.h"

#include <QList>

#include <algorithm>

/// What J1939 signals and data elements of raw CAN messages have in common.
namespace SignalLayout {

/// Bits that a signal takes. Strings have a size of their own.
inline int lengthBits(quint16 dataType, quint16 bitSize)
{
    switch (dataType) {
    case CAN::OCTET_STRING:
    case CAN::STRING_NUL:
    case CAN::STRING_ASTERISK:
        return bitSize;
    default:
        return COHelper::getDataLengthBits(dataType);
    }
}

/// Lays signals out one behind the other, if all of them start at bit 0 or if forced. A project of
/// before there were positions has them all at 0; positions that a user has edited stay. `Position`
/// is the member that holds the first bit. False if nothing was changed.
template <typename Signal>
bool layOut(QList<Signal> &list, quint16 Signal::*position, bool force)
{
    if (list.size() < 2)
        return false;
    const auto startsAtZero = [position](const Signal &signal) { return signal.*position == 0; };
    if (!force && !std::all_of(list.cbegin(), list.cend(), startsAtZero))
        return false;
    int next = 0;
    for (Signal &signal : list) {
        signal.*position = quint16(next);
        next += lengthBits(signal.dataType, signal.bitSize);
    }
    return true;
}

} // namespace SignalLayout
