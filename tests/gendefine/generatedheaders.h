#pragma once

#include "tests/generatedc/testproject.h"

#include "generators/base/abstractgenerator.h"

#include <QFile>
#include <QMap>
#include <QStringList>
#include <QTemporaryDir>

/// A folder in which generators run over a project, one after the other.
class GeneratedHeaders
{
public:
    explicit GeneratedHeaders(TestProject &project) : m_project(project) {}

    /// Runs the generator on this thread; what it writes by its name is the result.
    QString run(AbstractGenerator &generator)
    {
        generator.setStore(&m_project.store());
        generator.setOutputFolder(m_folder.path());
        generator.setProjectName(QStringLiteral("pump"));
        generator.doJob();
        m_errorText = generator.errorString();
        return read(generator.fileName());
    }

    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] QString folder() const { return m_folder.path(); }
    [[nodiscard]] QString errorText() const { return m_errorText; }

    [[nodiscard]] QString read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void write(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(content);
    }

    /// The macros of a header with their values as they stand there. A name that is defined twice
    /// gives "twice".
    [[nodiscard]] static QMap<QString, QString> defines(const QString &header)
    {
        QMap<QString, QString> result;
        const QStringList lines = header.split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            if (!line.startsWith(QLatin1String("#define ")))
                continue;
            const QString rest = line.mid(8).trimmed();
            qsizetype end = 0;
            while (end < rest.size() && !rest.at(end).isSpace())
                ++end;
            const QString name = rest.first(end);
            result.insert(name, result.contains(name) ? QStringLiteral("twice")
                                                      : rest.mid(end).trimmed());
        }
        return result;
    }

private:
    TestProject &m_project;
    QTemporaryDir m_folder;
    QString m_errorText;
};
