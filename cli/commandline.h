#pragma once

#include "cli/exitcode.h"

#include <QList>
#include <QString>
#include <QStringList>

class Command;
class Console;

/// The command line as a whole: which commands there are, and what holds before one is chosen.
namespace CommandLine {

/// All commands in the order of the help page. They live as long as the program.
[[nodiscard]] const QList<const Command *> &commands();
/// Null if there is none of that name.
[[nodiscard]] const Command *findCommand(const QString &name);
/// The page that lists all commands.
[[nodiscard]] QString overview();
/// Runs what the words, without the program's name, ask for.
[[nodiscard]] ExitCode run(const QStringList &words, Console &console);

} // namespace CommandLine
