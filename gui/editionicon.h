#pragma once

#include <QIcon>
#include <QString>

/// The icon of an edition of the program: a bus with its nodes, in the edition's colour, and at
/// large sizes its letters.
namespace EditionIcon {

[[nodiscard]] QIcon icon(const QString &applicationName);

} // namespace EditionIcon
