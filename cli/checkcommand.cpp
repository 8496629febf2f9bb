#include "cli/checkcommand.h"

#include "check/modelchecker.h"
#include "cli/checkreport.h"
#include "cli/console.h"
#include "cli/projectaccess.h"
#include "generation/generatormainhandler.h"
#include "generation/plaintextoutputhandler.h"
#include "store/objectdatabase.h"

#include <QFileInfo>

namespace {

const QString formatKey = QStringLiteral("format");

struct Format
{
    QString name;
    QByteArray (*make)(const CheckReport &report);
};

const QList<Format> &formats()
{
    static const QList<Format> list = {{QStringLiteral("text"), CheckReports::text},
                                       {QStringLiteral("json"), CheckReports::json},
                                       {QStringLiteral("sarif"), CheckReports::sarif}};
    return list;
}

} // namespace

QString CheckCommand::name() const
{
    return QStringLiteral("check");
}

QString CheckCommand::summary() const
{
    return QStringLiteral("checks a project and lists what was found");
}

QString CheckCommand::description() const
{
    return QStringLiteral(
        "Runs the same model check that stands before a generation. The project file is\n"
        "not changed: what the check corrects by itself is only listed. json and sarif\n"
        "also hold the warnings that the project suppresses, marked as such. A note tells\n"
        "of a project that something else has changed since it was saved.");
}

QList<CommandArgument> CheckCommand::arguments() const
{
    return {{QStringLiteral("PROJECT"), QStringLiteral("the project, a .vxmp or .vxmt file")}};
}

QList<CommandOption> CheckCommand::options() const
{
    QStringList names;
    for (const Format &format : formats())
        names.append(format.name);
    return {{{formatKey},
             QStringLiteral("FORMAT"),
             QStringLiteral("the form of the list; sarif is SARIF 2.1.0"),
             names,
             names.first()}};
}

ExitCode CheckCommand::run(const CommandCall &call, Console &console) const
{
    const QString path = call.arguments.first();
    PlainTextOutputHandler unheard(nullptr);
    GeneratorMainHandler handler(unheard);
    const QString fault = ProjectAccess::open(handler, path);
    if (!fault.isEmpty()) {
        console.error(fault);
        return ExitCode::FileFailed;
    }
    CheckReport report{.projectPath = QFileInfo(path).absoluteFilePath(),
                       .errorCount = handler.checkModel(),
                       .isExternallyModified = handler.store()->wasExternallyModified(),
                       .findings = {}};
    report.findings = handler.modelChecker()->findings();
    for (const Format &format : formats()) {
        if (format.name == call.value(formatKey))
            console.result(QString::fromUtf8(format.make(report)));
    }
    return report.errorCount > 0 ? ExitCode::CheckFailed : ExitCode::Done;
}
