#pragma once

#include <QString>

class StatementRunner;

/// What the store wants to know of a database before it trusts it. Each gives the part of a
/// sentence behind the name of the file, or nothing if all is well; details go to the debug log.
namespace ProjectGuard {

/// The largest file that is opened as a project, in either form.
constexpr qint64 mostBytesOfFile = qint64(1) << 30;

/// Whether every table is one that only holds what was put into it. A view, a trigger or a column
/// that is computed can do anything, and go on for ever. Comes before any other statement.
[[nodiscard]] QString structureFault(StatementRunner &runner);
/// Whether lines and texts are within the limits of a project; needs the table of lines.
[[nodiscard]] QString contentFault(StatementRunner &runner);
/// Whether all pages, indexes included, can be read and fit together.
[[nodiscard]] QString integrityFault(StatementRunner &runner);

/// Whether a database file that some connection is open on is whole as the disk has it, and carries
/// this content hash.
[[nodiscard]] QString fileFault(const QString &path, const QString &contentHash);

[[nodiscard]] QString damagedText();

} // namespace ProjectGuard
