#pragma once

#include "canopen/linetype.h"

#include <QString>

class ObjectDataBase;

/// What a project begins with.
namespace ProjectTemplate {

/// Replaces what the store holds by a new project of the running edition, from its template beside
/// or inside of the program. Line 0 gets the protocols of `lineType`; without a type it is what the
/// edition makes of it. Gives the reason why there is no template; the project is an empty one
/// then.
QString fill(ObjectDataBase &store, int lineType = LineType::Unknown);

/// Notes that the project has the structure of this version, as every project that was made or
/// opened here has.
void noteStructure(ObjectDataBase &store);

} // namespace ProjectTemplate
