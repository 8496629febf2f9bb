#pragma once

#include <QString>

/// The user's files, which only a save touches.
///
/// A file is replaced as a whole: the new content is written beside it and has reached the disk
/// before it takes the name, so that a full disk or a killed program leave the former file. Its
/// permissions and, where the system allows it, its owner stay. A link is followed.
///
/// Where the folder takes no new files, the file is written in its place, but only when the room
/// for the new content is certain beforehand.
namespace ProjectFile {

enum class Backup {
    Make, ///< the former file stays beside the new one, with ".bak" behind its name
    Leave ///< a ".bak" that is there is not touched
};

[[nodiscard]] QString backupPath(const QString &path);
/// Why a file can't be saved to, behind its name and a colon; empty if it can.
[[nodiscard]] QString targetFault(const QString &path);
/// Gives a file the content of another one. On false the file and its backup are as they were,
/// unless `error` tells something else; it begins with the name of the file that it is about.
[[nodiscard]] bool replace(const QString &path, const QString &source, Backup backup,
                           QString &error);

} // namespace ProjectFile
