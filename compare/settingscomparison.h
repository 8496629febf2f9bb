#pragma once

#include "compare/projectdifference.h"

#include <QList>

/// What two projects hold beside objects and messages: the tables of settings, what is kept of
/// each line, and the lines themselves. All of it is read through the stores and changes neither.
namespace SettingsComparison {

/// The settings that differ: the keys of both sides in alphabetical order, table by table. Passes
/// over the keys that saving a file writes by itself, and over what belongs to a line that only
/// one side has.
[[nodiscard]] QList<SettingDifference> compare(ObjectDataBase &current, ObjectDataBase &other);

} // namespace SettingsComparison
