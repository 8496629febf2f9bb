#pragma once

#include <QList>
#include <QString>

/// The projects that the menu "Example Projects" offers.
namespace ExampleProjects {

struct Example
{
    QString label;
    QString path;
};

/// Those that come with this program, in a folder beside it.
[[nodiscard]] QList<Example> shipped();
/// Those of an installed protocol stack, in the order of its folders.
[[nodiscard]] QList<Example> ofStack(const QString &stackPath);

/// Copies a shipped example to `path`, and to its folder the other files that it comes with; those
/// that are there already stay. Gives the error, empty if there is none.
[[nodiscard]] QString copyTo(const QString &examplePath, const QString &path);

} // namespace ExampleProjects
