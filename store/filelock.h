#pragma once

#include <QString>

#include <memory>

/// Tells the other processes that a file is in use, for as long as the value lives and its process
/// does, however that ends. Does not keep anybody from reading, writing or deleting the file.
///
/// Where the system itself refuses to delete a file that is open, as Windows does, nothing is
/// locked, and every file counts as free.
class FileLock
{
public:
    enum class Open { Existing, New };

    /// Null if another holds the file, or if it can't be opened or (`New`) made. A new file gets
    /// the permissions that files of the user have.
    [[nodiscard]] static std::unique_ptr<FileLock> take(const QString &path, Open open);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

private:
    explicit FileLock(int handle) : m_handle(handle) {}

    int m_handle;
};
