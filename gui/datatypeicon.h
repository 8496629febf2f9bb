#pragma once

#include <QIcon>

/// Small signs for the kinds of data types, in the palette's text colour.
namespace DataTypeIcon {

/// A framed letter for the type's kind; an empty frame for a type without a name.
[[nodiscard]] QIcon icon(quint16 dataType);

} // namespace DataTypeIcon
