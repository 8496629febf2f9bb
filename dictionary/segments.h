#pragma once

#include "canopen/objectranges.h"

#include <array>

/// A segment of the object dictionary (CiA 301) as it is shown to the user.
struct DictionarySegment
{
    const char *label;
    ObjectRange objects;
    bool isAlwaysShown; ///< else only where objects lie in it
};

/// Ascending, all objects of a device.
inline constexpr std::array dictionarySegments = {
    DictionarySegment{"Communication Segment", ObjectRanges::communication, true},
    DictionarySegment{"Manufacturer Segment", ObjectRanges::manufacturer, true},
    DictionarySegment{"Device Profile Segment", ObjectRanges::profile, true},
    DictionarySegment{"Network Variable Segment", ObjectRanges::networkVariables, false},
    DictionarySegment{"CANopen Gateway Variable Segment", ObjectRanges::gatewayVariables, false},
    DictionarySegment{"Additional Segment", ObjectRanges::additional, false},
};

/// Null for a data type.
[[nodiscard]] constexpr const DictionarySegment *segmentOf(quint16 index)
{
    for (const DictionarySegment &segment : dictionarySegments) {
        if (segment.objects.contains(index))
            return &segment;
    }
    return nullptr;
}
