#pragma once

#include "generators/define/definefacts.h"

/// How many communication objects (CAN messages that the stack must know) the services of a line
/// use.
namespace DefineCobs {

[[nodiscard]] quint32 count(const DefineFacts &facts, const DefineFacts::Line &line,
                            const ProjectSettings &settings);

} // namespace DefineCobs
