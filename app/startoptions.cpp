#include "app/startoptions.h"

namespace {

std::optional<QString> valueOf(const QStringList &arguments, const QString &option)
{
    const qsizetype at = arguments.indexOf(option);
    if (at < 0)
        return std::nullopt;
    return arguments.value(at + 1);
}

} // namespace

StartOptions StartOptions::parse(const QStringList &arguments)
{
    const QStringList given = arguments.mid(1);
    const auto has = [&](QLatin1String option) { return given.contains(option); };

    StartOptions options;
    options.hidden = has(QLatin1String("-hidden"));
    options.networkTool = has(QLatin1String("-tsk"));
    options.skipVersionNotes = has(QLatin1String("-now")) || options.networkTool;
    options.generate = has(QLatin1String("-g"));
    options.save = has(QLatin1String("-s"));
    options.importFile = valueOf(given, QStringLiteral("-i"));
    options.pgnProject = valueOf(given, QStringLiteral("-j"));
    options.pgnMode = valueOf(given, QStringLiteral("-o")).value_or(options.pgnMode);
    options.importHandlerFile = valueOf(given, QStringLiteral("--importfile"));
    options.modifierFile = valueOf(given, QStringLiteral("-dbmod"));

    const QString first = given.value(0);
    if (!given.isEmpty() && first != QLatin1String("-j1939") && !first.contains(u"--"))
        options.project = first;
    return options;
}
