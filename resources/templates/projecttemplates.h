#pragma once

#include <QLatin1String>

/// The templates of new projects that are inside the program.
namespace ProjectTemplates {

inline constexpr QLatin1String j1939(":/databases/data/mtj1939.data");

/// Makes the resources readable; without this call a program that links them doesn't see them.
/// May be called more than once.
void makeAvailable();

} // namespace ProjectTemplates
