#include "canopen/linetype.h"

#include <array>

namespace {

constexpr std::array lineTypes{
    LineType{LineType::CANopen, true, false, false, "CANopen"},
    LineType{LineType::J1939, false, true, false, "J1939"},
    LineType{LineType::RawCan, false, false, true, "raw CAN"},
    LineType{LineType::CANopenJ1939, true, true, false, "both"},
    LineType{LineType::CANopenRawCan, true, false, true, "CANopen + CAN"},
    LineType{LineType::J1939RawCan, false, true, true, "J1939 + CAN"},
};
constexpr LineType unknownType{LineType::Unknown, false, false, false, "not set"};

} // namespace

std::span<const LineType> LineType::all()
{
    return lineTypes;
}

const LineType &LineType::of(int number)
{
    for (const LineType &type : lineTypes) {
        if (type.number == number)
            return type;
    }
    return unknownType;
}

QString LineType::settingKey(quint8 line)
{
    return QStringLiteral("line%1type").arg(line);
}
