#pragma once

#include "testproject.h"

/// A fault in the clean project and what the run then finds, and a change that comes near to the
/// fault and is none.
struct CheckCase
{
    const char *name;
    int errors;
    const char *said; ///< exactly this, as `TestProject::said` has it
    Change fault;
    Change nearMiss;
    QList<quint8> lines = {0};
};

[[nodiscard]] QList<CheckCase> projectCases();
[[nodiscard]] QList<CheckCase> lineCases();
[[nodiscard]] QList<CheckCase> objectCases();
[[nodiscard]] QList<CheckCase> pdoCases();
