#include "cli/commandline.h"

#include "cli/checkcommand.h"
#include "cli/console.h"
#include "cli/convertcommand.h"
#include "cli/generatecommand.h"
#include "cli/helpcommand.h"
#include "cli/infocommand.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <algorithm>

namespace CommandLine {

namespace {

const QString verboseWord = QStringLiteral("--verbose");

ExitCode refuse(Console &console, const QString &reason, const QString &helpWords)
{
    console.error(reason + QStringLiteral(" (try \"%1 %2\")").arg(Console::programName, helpWords));
    return ExitCode::WrongUsage;
}

void showTrace()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=true"));
}

ExitCode runCommand(const Command &command, const QStringList &words, Console &console)
{
    QString error;
    const std::optional<CommandCall> call = command.parse(words, error);
    if (!call)
        return refuse(console, command.name() + QLatin1String(": ") + error,
                      QLatin1String("help ") + command.name());
    if (call->isSet(QStringLiteral("help"))) {
        console.result(command.helpText());
        return ExitCode::Done;
    }
    if (call->isSet(QStringLiteral("verbose")))
        showTrace();
    return command.run(*call, console);
}

QString versionText()
{
    return QStringLiteral("%1 %2\n").arg(Console::programName,
                                         QCoreApplication::applicationVersion());
}

ExitCode runWords(QStringList words, Console &console)
{
    while (!words.isEmpty() && words.first() == verboseWord) {
        showTrace();
        words.removeFirst();
    }
    const QString helpOption = QStringLiteral("--help");
    if (words.isEmpty())
        return refuse(console, QStringLiteral("a command is missing"), helpOption);
    const QString first = words.takeFirst();
    const bool isHelp = first == helpOption || first == QLatin1String("-h");
    const bool isVersion = first == QLatin1String("--version");
    if ((isHelp || isVersion) && !words.isEmpty() && words != QStringList{verboseWord})
        return refuse(console, QStringLiteral("unexpected argument \"%1\"").arg(words.first()),
                      helpOption);
    if (isHelp || isVersion) {
        console.result(isHelp ? overview() : versionText());
        return ExitCode::Done;
    }
    if (const Command *command = findCommand(first))
        return runCommand(*command, words, console);
    const QLatin1String kind(first.startsWith(u'-') ? "option" : "command");
    return refuse(console, QStringLiteral("unknown %1 \"%2\"").arg(kind, first), helpOption);
}

} // namespace

const QList<const Command *> &commands()
{
    static const GenerateCommand generate;
    static const CheckCommand check;
    static const InfoCommand info;
    static const ConvertCommand convert;
    static const HelpCommand help;
    static const QList<const Command *> list = {&generate, &check, &info, &convert, &help};
    return list;
}

const Command *findCommand(const QString &name)
{
    const auto found =
        std::find_if(commands().begin(), commands().end(),
                     [&](const Command *command) { return command->name() == name; });
    return found != commands().end() ? *found : nullptr;
}

QString overview()
{
    const QString program = Console::programName;
    QString text = QStringLiteral("%1 %2: checks projects and generates their files without a "
                                  "window\n\nUsage:\n"
                                  "  %1 COMMAND ARGUMENT... [OPTION...]\n"
                                  "  %1 --version\n"
                                  "  %1 --help\n\nCommands:\n")
                       .arg(program, QCoreApplication::applicationVersion());
    for (const Command *command : commands())
        text += helpLine(command->name(), command->summary());
    text += QLatin1String("\nOptions of every command:\n") + optionLines(commonOptions());
    text += QLatin1String("\nExit codes of every command:\n") + exitCodeLines();
    return text +
           QStringLiteral("\n\"%1 help COMMAND\" tells more about a command.\n").arg(program);
}

ExitCode run(const QStringList &words, Console &console)
{
    const ExitCode code = runWords(words, console);
    if (console.flush())
        return code;
    // A result that did not arrive is none, whatever it was.
    console.error(QStringLiteral("standard output can't be written"));
    return code == ExitCode::Done ? ExitCode::FileFailed : code;
}

} // namespace CommandLine
