#pragma once

#include "compare/projectdifference.h"

#include <QColor>
#include <QIcon>
#include <QPalette>

/// The colours of the states of compared items. Each state is told in words, too.
namespace DiffColours {

/// The colour that stands for a state.
[[nodiscard]] QColor of(DiffState state);
/// A shade of it in which text can be read on the palette's lists (4.5 to 1 or better); the
/// palette's own text colour for what is equal.
[[nodiscard]] QColor ofText(DiffState state, const QPalette &palette);
/// A framed patch of the colour; an empty icon for what is equal.
[[nodiscard]] QIcon patch(DiffState state, const QPalette &palette);

} // namespace DiffColours
