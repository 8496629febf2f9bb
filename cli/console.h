#pragma once

#include <QString>

/// The two streams of the program: results go to standard output, what went wrong to standard
/// error, so that a result can be piped on. Texts are UTF-8.
class Console
{
public:
    /// The name before each error, so that a build log tells who speaks.
    static constexpr QLatin1String programName{"quillforge-cli"};

    /// Puts a result out as it is.
    void result(const QString &text);
    void warning(const QString &sentence);
    void error(const QString &sentence);

    /// Everything put out so far has arrived; false if standard output does not take it, as on a
    /// full disk.
    [[nodiscard]] bool flush();
};
