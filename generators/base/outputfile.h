#pragma once

#include <QString>

#include <memory>

class QFileDevice;
class QIODevice;

/// One file of an output folder, opened with the platform's line ends and taken into use only when
/// it is whole: until `commit` succeeds a former file of that name stays as it was, so that a full
/// disk never costs a user section or leaves half a file behind. Something that is no plain file
/// (a device, a pipe) is written directly, and so is a file in a folder that takes no new files.
class OutputFile
{
public:
    explicit OutputFile(const QString &path);
    ~OutputFile();

    [[nodiscard]] bool open();
    /// Valid between `open` and `commit`.
    [[nodiscard]] QIODevice &device() const;
    /// Flushes, closes and puts the file in its place; false if anything of it could not be
    /// written.
    [[nodiscard]] bool commit();
    /// What went wrong, naming the file.
    [[nodiscard]] QString errorText() const { return m_errorText; }

    /// The whole way for a text that is ready: false, with `errorText` filled, on failure.
    static bool write(const QString &path, const QString &text, QString *errorText = nullptr);
    /// The file does not exist yet, or is a file with write permission. Permission bits count also
    /// for a user whom the system lets pass them.
    [[nodiscard]] static bool isWritable(const QString &path);

private:
    QString m_path;
    bool m_tookLess = false; ///< less was written than was given
    std::unique_ptr<QFileDevice> m_file;
    QString m_errorText;
};
