#include "canopen/valuetext.h"

#include "canopen/canopentypes.h"
#include "canopen/numbertext.h"

namespace {

enum class Reading { Unsigned, Signed, Float, None };

/// UNSIGNED56, the wide signed types and REAL64 pass with any text, as the gate has always let
/// them.
Reading readingOf(quint16 dataType)
{
    switch (dataType) {
    case CAN::BOOLEAN:
    case CAN::UNSIGNED8:
    case CAN::UNSIGNED16:
    case CAN::UNSIGNED32:
    case CAN::UNSIGNED24:
    case CAN::UNSIGNED40:
    case CAN::UNSIGNED48:
    case CAN::UNSIGNED64:
    case CAN::BITS2:
    case CAN::BITS3:
    case CAN::BITS4:
    case CAN::BITS5:
    case CAN::BITS6:
    case CAN::BITS7:
        return Reading::Unsigned;
    case CAN::INTEGER8:
    case CAN::INTEGER16:
    case CAN::INTEGER32:
    case CAN::INTEGER24:
        return Reading::Signed;
    case CAN::REAL32:
        return Reading::Float;
    default:
        return Reading::None;
    }
}

/// Group 1: the node-ID in front, group 2: the number.
} // namespace

bool isValueConvertible(quint16 dataType, const QString &text)
{
    if (text.isEmpty())
        return true;
    bool ok = true;
    switch (readingOf(dataType)) {
    case Reading::Unsigned:
        if (!text.contains(QLatin1String("$NODEID")))
            ok = NumberText::toUnsigned(text).has_value();
        break;
    case Reading::Signed: {
        const auto number = NumberText::toSigned(text);
        ok = number && *number == static_cast<qint32>(*number);
        break;
    }
    case Reading::Float:
        text.toFloat(&ok);
        break;
    case Reading::None:
        break;
    }
    return ok;
}

quint64 toNumber(const QString &text)
{
    return NumberText::toUnsigned(text).value_or(0);
}

quint8 toByte(const QString &text)
{
    return static_cast<quint8>(toNumber(text));
}
