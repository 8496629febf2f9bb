#pragma once

#include "check/checkdefinition.h"

#include <QList>

/// The messages of all protocols, in the order of the documentation.
[[nodiscard]] const QList<CheckDefinition> &checkTable();
