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
/// The lines of a project in ascending order, without the scratch lines, which are never saved.
[[nodiscard]] QList<quint8> lines(ObjectDataBase &store);
/// Gives the current project what the other one has. A line that the other project lacks is
/// deleted; only the highest one can be. On false nothing was changed.
[[nodiscard]] bool takeOver(ObjectDataBase &current, ObjectDataBase &other,
                            const SettingDifference &difference);

} // namespace SettingsComparison
