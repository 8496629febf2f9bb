#include "cli/command.h"

#include "cli/console.h"

#include <QCommandLineParser>

#include <algorithm>

namespace {

constexpr int leftColumn = 22;

QString dashed(const QString &name)
{
    return (name.size() == 1 ? QLatin1String("-") : QLatin1String("--")) + name;
}

QString valueText(const CommandOption &option)
{
    if (option.valueName.isEmpty())
        return {};
    return u' ' + (option.choices.isEmpty() ? option.valueName : option.choices.join(u'|'));
}

QString usageLine(const Command &command)
{
    QString line = Console::programName + u' ' + command.name();
    for (const CommandArgument &argument : command.arguments())
        line +=
            argument.isOptional ? QStringLiteral(" [%1]").arg(argument.name) : u' ' + argument.name;
    for (const CommandOption &option : command.options())
        line += QStringLiteral(" [%1%2]").arg(dashed(option.names.first()), valueText(option));
    return line;
}

/// Nothing if the number of arguments is right.
QString argumentFault(const Command &command, const QStringList &given)
{
    const QList<CommandArgument> known = command.arguments();
    if (given.size() > known.size())
        return QStringLiteral("unexpected argument \"%1\"").arg(given.at(known.size()));
    for (qsizetype i = 0; i < known.size(); ++i) {
        if (i >= given.size() && !known.at(i).isOptional)
            return QStringLiteral("%1 is missing").arg(known.at(i).name);
        if (i < given.size() && given.at(i).isEmpty())
            return QStringLiteral("%1 is empty").arg(known.at(i).name);
    }
    return {};
}

QString valueFault(const CommandOption &option, const QString &value)
{
    const QString name = dashed(option.names.first());
    if (value.isEmpty())
        return QStringLiteral("the value of %1 is empty").arg(name);
    if (option.choices.isEmpty() || option.choices.contains(value))
        return {};
    return QStringLiteral("%1 takes %2, not \"%3\"")
        .arg(name, option.choices.join(QLatin1String(" or ")), value);
}

} // namespace

const QList<CommandOption> &commonOptions()
{
    static const QList<CommandOption> options = {
        {{QStringLiteral("help"), QStringLiteral("h")}, {}, QStringLiteral("show this help")},
        {{QStringLiteral("verbose")},
         {},
         QStringLiteral("write the program's own trace to standard error")},
    };
    return options;
}

std::optional<CommandCall> Command::parse(const QStringList &words, QString &error) const
{
    const QList<CommandOption> known = options() + commonOptions();
    QCommandLineParser parser;
    for (const CommandOption &option : known)
        parser.addOption(QCommandLineOption(option.names, QString(), option.valueName));
    if (!parser.parse(QStringList{name()} + words)) {
        error = parser.errorText();
        if (error.endsWith(u'.'))
            error.chop(1);
        return std::nullopt;
    }
    CommandCall call{.arguments = parser.positionalArguments(), .values = {}, .flags = {}};
    for (const CommandOption &option : known) {
        const QString &key = option.names.first();
        const bool given = parser.isSet(key);
        if (given)
            call.flags.append(key);
        if (option.valueName.isEmpty())
            continue;
        const QString value = given ? parser.value(key) : option.defaultValue;
        call.values.insert(key, value);
        if (given && error.isEmpty())
            error = valueFault(option, value);
    }
    if (call.isSet(QStringLiteral("help"))) {
        error.clear();
        return call;
    }
    if (error.isEmpty())
        error = argumentFault(*this, call.arguments);
    if (!error.isEmpty())
        return std::nullopt;
    return call;
}

QString helpLine(const QString &left, const QString &right)
{
    // What is too wide for its column keeps two blanks before the text.
    return QStringLiteral("  %1%2\n")
        .arg(left.leftJustified(std::max<qsizetype>(leftColumn, left.size() + 2)), right);
}

QString optionLines(const QList<CommandOption> &options)
{
    QString text;
    for (const CommandOption &option : options) {
        QStringList names;
        for (const QString &name : option.names)
            names.append(dashed(name));
        // The short name first, as everywhere.
        std::sort(names.begin(), names.end(),
                  [](const QString &a, const QString &b) { return a.size() < b.size(); });
        const QString value = valueText(option);
        QString description = option.description;
        if (!option.defaultValue.isEmpty())
            description += QStringLiteral(" (default: %1)").arg(option.defaultValue);
        text += helpLine(names.join(QLatin1String(", ")) + value, description);
    }
    return text;
}

QString exitCodeLines()
{
    QString text;
    for (const ExitCodeMeaning &meaning : exitCodeMeanings())
        text += helpLine(QString::number(static_cast<int>(meaning.code)), meaning.text);
    return text;
}

QString Command::helpText() const
{
    QString text =
        QStringLiteral("%1 %2: %3\n\nUsage:\n  %4\n\n%5\n")
            .arg(Console::programName, name(), summary(), usageLine(*this), description());
    if (!arguments().isEmpty()) {
        text += QLatin1String("\nArguments:\n");
        for (const CommandArgument &argument : arguments())
            text += helpLine(argument.name, argument.description);
    }
    return text + QLatin1String("\nOptions:\n") + optionLines(options() + commonOptions()) +
           QLatin1String("\nExit codes:\n") + exitCodeLines();
}
