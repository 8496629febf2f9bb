#pragma once

#include <QStringList>

/// Decides, before there is an application object, whether this run needs a display.
///
/// A hidden run on a build server has none, and the windowing plug-in would end the program. Such
/// a run is put on the offscreen platform. A platform that the user names (the environment
/// variable `QT_QPA_PLATFORM` or the argument `-platform`) always wins.
namespace DisplayChoice {

/// What the decision looks at.
struct Surroundings
{
    QStringList arguments;    ///< without the program name
    bool needsDisplay = true; ///< the system shows windows through a display server
    bool hasDisplay = false;  ///< a display server was named to this process
    bool namedByUser = false; ///< `QT_QPA_PLATFORM` is set
};

/// The surroundings of this process.
[[nodiscard]] Surroundings surroundings(int argc, char *argv[]);
[[nodiscard]] bool wantsOffscreen(const Surroundings &surroundings);
/// Sets `QT_QPA_PLATFORM` for this process if it is wanted. To be called before the application
/// object is made.
void apply(int argc, char *argv[]);

} // namespace DisplayChoice
