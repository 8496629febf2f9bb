#pragma once

#include <QtGlobal>

/// Numbers of SAE J1939-21 and -81.
namespace J1939 {

inline constexpr quint32 highestPgn = 0x3FFFF; ///< 18 bits, with EDP in bit 17 and DP in bit 16
inline constexpr quint32 addressClaimed = 60928;

} // namespace J1939
