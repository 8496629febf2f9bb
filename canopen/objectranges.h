#pragma once

#include <QtGlobal>

/// Ranges of object numbers; both ends belong to a range.
struct ObjectRange
{
    quint16 low = 0;
    quint16 high = 0;

    [[nodiscard]] constexpr bool contains(int index) const { return index >= low && index <= high; }
    [[nodiscard]] constexpr int size() const { return high - low + 1; }
};

namespace ObjectRanges {

inline constexpr ObjectRange all{0x0000, 0xFFFF};
/// All objects of a device; those below are data types (CiA 301).
inline constexpr ObjectRange device{0x1000, 0xFFFF};

// The segments of CiA 301
inline constexpr ObjectRange communication{0x1000, 0x1FFF};
inline constexpr ObjectRange manufacturer{0x2000, 0x5FFF};
inline constexpr ObjectRange profile{0x6000, 0x9FFF};
/// Network variables (CiA 405).
inline constexpr ObjectRange networkVariables{0xA000, 0xAFFF};
inline constexpr ObjectRange gatewayVariables{0xB000, 0xBFFF};
inline constexpr ObjectRange additional{0xC000, 0xFFFF};

// Services of CiA 301
inline constexpr ObjectRange sdoServers{0x1200, 0x127F};
inline constexpr ObjectRange sdoClients{0x1280, 0x12FF};
inline constexpr ObjectRange receivePdos{0x1400, 0x15FF};
inline constexpr ObjectRange receiveMappings{0x1600, 0x17FF};
inline constexpr ObjectRange transmitPdos{0x1800, 0x19FF};
inline constexpr ObjectRange transmitMappings{0x1A00, 0x1BFF};

// Safety-relevant data objects (EN 50325-5)
inline constexpr ObjectRange srdos{0x1301, 0x1340};
inline constexpr ObjectRange srdoMappings{0x1381, 0x13C0};

// Multiplexed PDOs (CiA 301)
inline constexpr ObjectRange mpdoScanners{0x1FA0, 0x1FCF};
inline constexpr ObjectRange mpdoDispatchers{0x1FD0, 0x1FFF};

/// From a PDO's communication object to its mapping object.
inline constexpr quint16 pdoMappingDistance = 0x200;
/// From an SRDO's communication object to its mapping object.
inline constexpr quint16 srdoMappingDistance = 0x80;

[[nodiscard]] constexpr bool isSdo(int index)
{
    return index >= sdoServers.low && index <= sdoClients.high;
}

[[nodiscard]] constexpr bool isPdoCommunication(int index)
{
    return receivePdos.contains(index) || transmitPdos.contains(index);
}

[[nodiscard]] constexpr bool isPdoMapping(int index)
{
    return receiveMappings.contains(index) || transmitMappings.contains(index);
}

/// Holds mapping entries: of a PDO or an SRDO.
[[nodiscard]] constexpr bool isMapping(int index)
{
    return isPdoMapping(index) || srdoMappings.contains(index);
}

} // namespace ObjectRanges

/// An entry of a mapping object (CiA 301): index, subindex and length in bits in one number.
struct MappingEntry
{
    quint16 index = 0;
    quint8 subindex = 0;
    quint8 bits = 0;

    [[nodiscard]] static constexpr MappingEntry fromNumber(quint64 number)
    {
        return {static_cast<quint16>(number >> 16), static_cast<quint8>(number >> 8),
                static_cast<quint8>(number)};
    }
    [[nodiscard]] constexpr quint32 toNumber() const
    {
        return quint32(index) << 16 | quint32(subindex) << 8 | bits;
    }
};
