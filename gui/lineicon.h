#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

/// The icons of all windows: one family of simple line drawings on a grid of 24 by 24, in the
/// palette's text colour, so that they fit light and dark and every screen resolution.
namespace LineIcon {

/// The icon of that name; an empty icon for a name that is not in the family. A colour that
/// carries a meaning can take the place of the palette's.
[[nodiscard]] QIcon icon(const QString &name, const QColor &colour = QColor());
[[nodiscard]] QStringList names();

} // namespace LineIcon
