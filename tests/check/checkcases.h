#pragma once

#include "testproject.h"

/// A fault in the clean project and what the run then says, and a change that comes near to the
/// fault and is none.
struct CheckCase
{
    const char *name;
    Change fault;
    QStringList messages; ///< exactly these, in this order
    int errors;
    Change nearMiss;
    QList<quint8> lines = {0};
};

[[nodiscard]] QList<CheckCase> projectCases();
[[nodiscard]] QList<CheckCase> lineCases();
[[nodiscard]] QList<CheckCase> objectCases();
[[nodiscard]] QList<CheckCase> pdoCases();
