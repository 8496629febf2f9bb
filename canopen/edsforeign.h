#pragma once

#include "canopen/edstext.h"

#include <QString>

/// Tells what a file is that is no EDS or DCF, so that a user sees at once which one was picked by
/// mistake.
namespace EdsForeign {

/// A sentence if the first bytes are those of another kind of file, else empty.
[[nodiscard]] QString byStart(QByteArrayView head);
/// A sentence if one of the sections belongs to another kind of file, else empty.
[[nodiscard]] QString bySections(const EdsText &text);
/// The sentence for a text that is nothing that is known.
[[nodiscard]] QString unknown();

} // namespace EdsForeign
