#pragma once

#include <QString>

/// Private files of the running process.
namespace WorkingCopy {

/// Reserves a new, empty file in the application's data folder (in the temporary folder if that
/// can't be written) and gives its path; empty if no file can be made anywhere.
[[nodiscard]] QString reserve();
/// Copies a file over a reserved one and makes it writable for the user. On failure false, with
/// the reason in `error`.
[[nodiscard]] bool copyFile(const QString &source, const QString &target, QString &error);

} // namespace WorkingCopy
