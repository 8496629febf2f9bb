#pragma once

#include "store/objectdatabase.h"

#include <QMap>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

/// Starts the program on real files in a folder of its own.
class CliProgram
{
public:
    struct Run
    {
        int exitCode = -1; ///< -1: it did not end by itself
        QByteArray output;
        QString errors;
    };
    using Change = std::function<void(ObjectDataBase &store)>;

    CliProgram();

    /// The words of a command line, relative to the folder.
    [[nodiscard]] Run run(const QStringList &words) const;

    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    [[nodiscard]] QByteArray read(const QString &name) const;
    void write(const QString &name, const QByteArray &content) const;
    /// The content of every file of a folder, those of its folders and hidden ones included.
    [[nodiscard]] QMap<QString, QByteArray> tree(const QString &name = QString()) const;

    /// Saves the example device with a change, by the edition of that name.
    void saveProject(const QString &name, const Change &change = {},
                     const QString &edition = QStringLiteral("CANopen Quillforge")) const;

    QTemporaryDir folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QString standardOutput; ///< a file to write to instead of `Run::output`
};
