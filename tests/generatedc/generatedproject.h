#pragma once

#include "tests/generatedc/testproject.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class AbstractGenerator;
class QProcess;

/// A project's generated dictionary in a folder of its own, with what it takes to compile it and
/// to look at it through the stand-in stack.
class GeneratedProject
{
public:
    GeneratedProject(const ProjectCase &projectCase, bool isV4);

    /// Writes gen_objdict.c, gen_vobjdict.c where there is something for it, and the headers that
    /// they include.
    void generate();
    /// Only the dictionary, as a J1939 device serves it.
    void generateServerOnly();
    /// Puts a file beside the generated ones.
    void addFile(const QString &file) const { write(file, QString()); }
    /// Where the files are.
    [[nodiscard]] QString folder() const { return m_folder.path(); }
    [[nodiscard]] QString errorText() const { return m_errorText; }
    [[nodiscard]] TestProject &project() { return m_project; }
    [[nodiscard]] QString text(const QString &file) const;

    /// Puts another gen_objdict.c in place of the generated one.
    void replaceSource(const QString &text) const { write("gen_objdict.c", text); }

    /// Compiles every C file with warnings as errors; the compiler's output, empty if all is well.
    [[nodiscard]] QString compile(const QString &compiler);
    /// The same for the dictionary alone.
    [[nodiscard]] QString compileDictionary(const QString &compiler) const;
    /// Links dictionary and stack and gives what the program prints.
    [[nodiscard]] QString run(QString &output);

private:
    void run(AbstractGenerator &generator);
    void write(const QString &file, const QString &text) const;
    [[nodiscard]] QStringList arguments(bool isVirtual) const;
    [[nodiscard]] QString path(const QString &file) const { return m_folder.filePath(file); }
    [[nodiscard]] static std::unique_ptr<QProcess> start(const QString &program,
                                                         const QStringList &arguments);
    /// What the program writes as errors; empty if it ends well.
    [[nodiscard]] static QString finish(QProcess &process, QString *output = nullptr);
    [[nodiscard]] static QString execute(const QString &program, const QStringList &arguments,
                                         QString *output = nullptr);

    const ProjectCase &m_case;
    bool m_isV4;
    TestProject m_project;
    QTemporaryDir m_folder;
    QString m_errorText;
    bool m_isLineForm = false;
    bool m_hasVirtual = false;
};
