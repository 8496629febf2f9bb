#pragma once

#include "check/checkdefinition.h"

#include <span>

/// Messages on the settings of UDS (ISO 14229), in the order of their table.
enum class UdsMessage : quint8 { Roles, StaticUnused, StaticNoName, StaticDuplicate, Count };

[[nodiscard]] std::span<const CheckDefinition> udsMessages();
[[nodiscard]] const CheckDefinition &definitionOf(UdsMessage message);
