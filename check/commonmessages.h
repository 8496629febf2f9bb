#pragma once

#include "check/checkdefinition.h"

#include <span>

/// Messages on settings that all protocols of a project share, in the order of their table.
enum class CommonMessage : quint8 {
    UpdateCanopen37,
    UpdateMulti37,
    UpdateUds,
    UpdateCanopen36,
    UpdateMulti36,
    SdoBlockSize,
    TimerInterval,
    NmtMasterMultiProtocol,
    NumericSetting,
    LineTypeMissing,
    Count
};

[[nodiscard]] std::span<const CheckDefinition> commonMessages();
[[nodiscard]] const CheckDefinition &definitionOf(CommonMessage message);
