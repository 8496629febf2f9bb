#pragma once

#include <functional>

class QMenu;
class QString;

/// The menus that list projects: filled whenever they open, since files come and go.
namespace ProjectMenus {

using Open = std::function<void(const QString &path)>;

/// The last projects. Their actions carry the path as data, and are not connected.
void fillRecent(QMenu &menu);
/// The examples of the program, which call `openCopy`, and those of the protocol stack, whose
/// actions carry the path as data and are not connected.
void fillExamples(QMenu &menu, const Open &openCopy);

} // namespace ProjectMenus
