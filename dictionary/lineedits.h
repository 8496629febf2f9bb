#pragma once

#include "dictionary/editcontext.h"

/// Commands over all subindices of all objects of a line.
namespace LineEdits {

enum class Command {
    SetHasDefault,
    ClearHasDefault,
    SetLimitCheck,
    ClearLimitCheck,
    SetDefaultInEds, ///< 'as defaultvalue'
    ClearDefaultInEds,
    MakeManagedVariables
};

/// Sets the attribute where the user may, one step of undo. Subindices that have no use for it are
/// left out: the limit check of strings and odd-sized integers, Managed Variable for strings,
/// domains and what the stack keeps. `changed` takes the number of subindices. Expert mode only.
EditResult run(const EditContext &context, Command command, qsizetype *changed = nullptr);

} // namespace LineEdits
