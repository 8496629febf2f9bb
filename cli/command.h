#pragma once

#include "cli/exitcode.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class Console;

/// A word of the command line that has to be there, or may be.
struct CommandArgument
{
    QString name; ///< as help shows it, in capitals
    QString description;
    bool isOptional = false;
};

/// An option of the command line.
struct CommandOption
{
    QStringList names; ///< without dashes; the first one is the key of its value
    QString valueName; ///< empty for an option without a value
    QString description;
    QStringList choices = {}; ///< the only values that it takes; empty for any but the empty one
    QString defaultValue = {};
};

/// What the user has asked of a command; complete and with valid values.
struct CommandCall
{
    QStringList arguments;
    QHash<QString, QString> values; ///< of options with a value, by first name
    QStringList flags;              ///< first names of the options given

    [[nodiscard]] bool isSet(const QString &option) const { return flags.contains(option); }
    [[nodiscard]] QString value(const QString &option) const { return values.value(option); }
};

/// One command of the program. It declares what it takes; reading the command line, help and
/// complaints about usage are the same for all.
class Command
{
public:
    virtual ~Command() = default;

    [[nodiscard]] virtual QString name() const = 0;
    /// One line for the list of commands.
    [[nodiscard]] virtual QString summary() const = 0;
    /// What help tells beyond the summary, in lines of at most 80 characters.
    [[nodiscard]] virtual QString description() const = 0;
    [[nodiscard]] virtual QList<CommandArgument> arguments() const { return {}; }
    [[nodiscard]] virtual QList<CommandOption> options() const { return {}; }
    virtual ExitCode run(const CommandCall &call, Console &console) const = 0;

    /// Reads the words behind the command's name. Nothing, with the reason in `error`, if they are
    /// not what the command takes. A call for help needs no arguments.
    [[nodiscard]] std::optional<CommandCall> parse(const QStringList &words, QString &error) const;
    /// The page of `help COMMAND`.
    [[nodiscard]] QString helpText() const;
};

/// The options that every command has.
[[nodiscard]] const QList<CommandOption> &commonOptions();
/// The options as lines of a help page.
[[nodiscard]] QString optionLines(const QList<CommandOption> &options);
/// The exit codes as lines of a help page.
[[nodiscard]] QString exitCodeLines();
/// Two columns of a help page.
[[nodiscard]] QString helpLine(const QString &left, const QString &right);
