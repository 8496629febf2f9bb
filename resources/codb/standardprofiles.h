#pragma once

#include <QLatin1String>

/// The profile databases that ship with the program, as resources below ":/codb/".
namespace StandardProfiles {

inline constexpr QLatin1String folder(":/codb/");
/// Communication profile (CiA 301) and additional functions (CiA 302).
inline constexpr QLatin1String communication(":/codb/v301.codb");
inline constexpr QLatin1String additional(":/codb/v302.codb");

/// Makes the resources readable; without this call a program that links them doesn't see them.
/// May be called more than once.
void makeAvailable();

} // namespace StandardProfiles
