#include "cli/helpcommand.h"

#include "cli/commandline.h"
#include "cli/console.h"

QString HelpCommand::name() const
{
    return QStringLiteral("help");
}

QString HelpCommand::summary() const
{
    return QStringLiteral("shows how to use a command");
}

QString HelpCommand::description() const
{
    return QStringLiteral("Without a command it lists all commands.");
}

QList<CommandArgument> HelpCommand::arguments() const
{
    return {{QStringLiteral("COMMAND"), QStringLiteral("the command to tell about"), true}};
}

ExitCode HelpCommand::run(const CommandCall &call, Console &console) const
{
    if (call.arguments.isEmpty()) {
        console.result(CommandLine::overview());
        return ExitCode::Done;
    }
    const QString &asked = call.arguments.first();
    if (const Command *command = CommandLine::findCommand(asked)) {
        console.result(command->helpText());
        return ExitCode::Done;
    }
    console.error(QStringLiteral("unknown command \"%1\" (try \"%2 --help\")")
                      .arg(asked, Console::programName));
    return ExitCode::WrongUsage;
}
