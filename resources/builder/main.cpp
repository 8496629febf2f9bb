#include "resources/builder/datawriter.h"
#include "resources/builder/sourcereader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>

namespace {

enum ExitCode { Done = 0, BadSource = 1, BadUsage = 2, BadOutput = 3 };

int fail(ExitCode code, const QString &text)
{
    std::fprintf(stderr, "%s\n", qPrintable(text));
    return code;
}

} // namespace

/// quillforge-databuilder SOURCE OUTPUT: makes a project file from a source text.
int main(int argc, char *argv[])
{
    // The store keeps its working copy in the user's data folder. A build may run without one, so
    // it gets a folder of its own; this must stand before the first use of the standard paths.
    const QTemporaryDir home(QDir::temp().filePath(QStringLiteral("databuilder")));
    if (!home.isValid())
        return fail(BadOutput, QStringLiteral("no temporary folder: %1").arg(home.errorString()));
    for (const char *variable : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"})
        qputenv(variable, QFile::encodeName(home.path()));

    QCoreApplication application(argc, argv);
    // These texts become the tool keys of the file, as if the tool itself had made it.
    QCoreApplication::setApplicationName(QStringLiteral("CANopen Quillforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLFORGE_VERSION));
    QCoreApplication::setOrganizationName(QStringLiteral("tolvex"));

    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return fail(BadUsage, QStringLiteral("usage: quillforge-databuilder SOURCE OUTPUT"));
    const QString output = QFileInfo(arguments.at(2)).absoluteFilePath();
    const SourceResult result = SourceReader::readFile(arguments.at(1));
    if (!result.errors.isEmpty())
        return fail(BadSource, result.errors.join(u'\n'));
    if (!QDir().mkpath(QFileInfo(output).absolutePath()))
        return fail(BadOutput, QStringLiteral("can't create the folder of %1").arg(output));
    const QString problem = DataWriter::writeFile(result.project, output);
    return problem.isEmpty() ? Done : fail(BadOutput, problem);
}
