#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Compares a folder of outputs with the expected one, byte for byte.
namespace FolderCompare {

/// The expected folders are to be written anew, for review in the diff.
[[nodiscard]] bool isUpdateWanted();
/// Empty if the file can't be read.
[[nodiscard]] QByteArray contentOf(const QString &path);
/// Paths below a folder, sorted.
[[nodiscard]] QStringList filesBelow(const QString &folder);
[[nodiscard]] bool copyTree(const QString &from, const QString &to);
/// Missing and extra files, and the first line that differs of each other file; empty if all is
/// the same.
[[nodiscard]] QString differences(const QString &expected, const QString &actual);

} // namespace FolderCompare
