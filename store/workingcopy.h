#pragma once

#include <QString>
#include <QStringList>

/// Private files of the running process, in the application's data folder or, where that can't be
/// written, in the folder for temporary files. A home that isn't there is not made.
///
/// Other processes see that the files are in use. What a process that was killed leaves behind is
/// deleted by a later one after seven days.
namespace WorkingCopy {

/// Whether to make a folder would make the home that it lies in.
[[nodiscard]] bool isInMissingHome(const QString &folder);
/// Where private files may lie, the better folder first.
[[nodiscard]] QStringList folders();
/// The first of them in which files can be made, made if need be; empty if there is none.
[[nodiscard]] QString folder();
/// Names the folders of which none can be written, as a sentence's part.
[[nodiscard]] QString noFolderText();

/// Reserves a new, empty file and gives its path; empty if no file can be made anywhere.
[[nodiscard]] QString reserve();
/// Reserves a file with the content of another one; empty, with the reason in `error`, if there is
/// room for it nowhere.
[[nodiscard]] QString reserveCopy(const QString &source, QString &error);
/// Deletes a reserved file.
void remove(const QString &path);

/// Makes a private folder in `folder()`, with this at the beginning of its name, and marks it as in
/// use; empty if it can't be made.
[[nodiscard]] QString reserveFolder(const QString &name);
void removeFolder(const QString &path);

/// Deletes the files and folders of processes that are gone. Called by the first reservation.
void deleteAbandoned();

/// Copies an ordinary file over another one, which it makes writable for the user. On failure
/// false, with the reason in `error`.
[[nodiscard]] bool copyFile(const QString &source, const QString &target, QString &error);

} // namespace WorkingCopy
