#pragma once

#include <QList>
#include <QString>

/// How a command ends; the same numbers in every command, as build scripts key on them.
enum class ExitCode : int {
    Done = 0,
    CheckFailed = 1,
    WrongUsage = 2,
    FileFailed = 3,
    GenerationFailed = 4
};

struct ExitCodeMeaning
{
    ExitCode code;
    QString text;
};

/// Every exit code with what it means, ascending.
[[nodiscard]] const QList<ExitCodeMeaning> &exitCodeMeanings();
