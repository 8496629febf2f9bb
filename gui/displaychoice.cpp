#include "gui/displaychoice.h"

#include <QtGlobal>

namespace DisplayChoice {

namespace {

constexpr bool systemNeedsDisplay()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    return true;
#else
    return false;
#endif
}

bool namesPlatform(const QString &argument)
{
    return argument == QLatin1String("-platform") || argument == QLatin1String("--platform") ||
           argument.startsWith(QLatin1String("-platform=")) ||
           argument.startsWith(QLatin1String("--platform="));
}

} // namespace

Surroundings surroundings(int argc, char *argv[])
{
    Surroundings result;
    for (int i = 1; i < argc; ++i)
        result.arguments.append(QString::fromLocal8Bit(argv[i]));
    result.needsDisplay = systemNeedsDisplay();
    result.hasDisplay =
        !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    result.namedByUser = !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    return result;
}

bool wantsOffscreen(const Surroundings &surroundings)
{
    if (!surroundings.needsDisplay || surroundings.hasDisplay || surroundings.namedByUser)
        return false;
    if (!surroundings.arguments.contains(QLatin1String("-hidden")))
        return false;
    for (const QString &argument : surroundings.arguments) {
        if (namesPlatform(argument))
            return false;
    }
    return true;
}

void apply(int argc, char *argv[])
{
    if (wantsOffscreen(surroundings(argc, argv)))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

} // namespace DisplayChoice
