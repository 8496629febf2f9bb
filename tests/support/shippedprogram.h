#pragma once

#include <QMap>
#include <QProcess>
#include <QTemporaryDir>

/// Starts a program that ships as a build server does, without a display and a user, in a folder
/// of its own with a home of its own. Its bytes depend on nothing but the project.
class ShippedProgram
{
public:
    struct Run
    {
        int exitCode = -1; ///< -1: it did not end by itself
        QByteArray output;
        QString errors;
    };

    explicit ShippedProgram(const QString &program);

    [[nodiscard]] Run run(const QStringList &arguments) const;
    void prepare(QProcess &process, const QStringList &arguments) const;

    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    [[nodiscard]] QByteArray read(const QString &name) const;
    void write(const QString &name, const QByteArray &content) const;
    /// The content of every file of a folder, those of its folders and hidden ones included.
    [[nodiscard]] QMap<QString, QByteArray> tree(const QString &name = QString()) const;

    static constexpr int timeLimit = 60000; ///< ms
    QString program;
    QTemporaryDir folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QString standardOutput; ///< a file to write to instead of `Run::output`
};
