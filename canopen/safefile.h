#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QFile;
class QFileDevice;

/// The one way to read what a user names. A name may lead to anything: a pipe that nobody writes
/// into, a device that never ends, a file larger than the memory. Only ordinary files are read, and
/// never more of them than the caller can use.
///
/// Links are followed. All texts are parts of a sentence, behind the name of the file and a colon;
/// the words of the system go to the debug log. Usable from any thread.
namespace SafeFile {

/// Why nothing is read of, or written over, what lies under a name; empty for an ordinary file and
/// where there is nothing.
[[nodiscard]] QString kindFault(const QString &path);
/// Why the last operation of a file failed, and the same for an error number of the system.
[[nodiscard]] QString reason(const QFileDevice &file);
[[nodiscard]] QString reason(int systemError);

/// Opens an ordinary file for reading, without waiting for anybody. On false the reason is in
/// `fault`. An open file may have no name any more.
[[nodiscard]] bool open(QFile &file, QString &fault);
/// The content of an ordinary file of at most `most` bytes; nothing, with the reason in `fault`,
/// where it can't be read completely.
[[nodiscard]] std::optional<QByteArray> read(const QString &path, qint64 most, QString &fault);

/// Waits until what was written has reached the disk.
[[nodiscard]] bool synchronise(QFileDevice &file);
/// The same for the names of a folder's files. Where the system has no such thing, true.
[[nodiscard]] bool synchroniseFolder(const QString &folder);

} // namespace SafeFile
