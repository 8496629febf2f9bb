#include "cli/generatecommand.h"

#include "cli/checkreport.h"
#include "cli/console.h"
#include "cli/projectaccess.h"
#include "generation/generatormainhandler.h"
#include "generation/plaintextoutputhandler.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString outputKey = QStringLiteral("o");
const QString ignoreKey = QStringLiteral("ignore-errors");
const QString srdoKey = QStringLiteral("srdo");

/// Makes the folder if it is missing; false if there is none afterwards.
bool ensureFolder(const QString &path)
{
    return QFileInfo(path).isDir() || QDir().mkpath(path);
}

QString stopReason(GeneratorMainHandler::GeneratorResult result,
                   const GeneratorMainHandler &handler)
{
    switch (result) {
    case GeneratorMainHandler::CheckFailed:
        return QStringLiteral("the model check found errors, nothing was generated");
    case GeneratorMainHandler::FolderNotWritable:
        return QStringLiteral("the output folder \"%1\" can't be written")
            .arg(QDir::toNativeSeparators(handler.outputFolder()));
    case GeneratorMainHandler::SrdoFailed:
        return QStringLiteral("the generation of gen_srdo.c failed");
    case GeneratorMainHandler::Completed:
        break;
    }
    return {};
}

ExitCode codeOf(GeneratorMainHandler::GeneratorResult result)
{
    switch (result) {
    case GeneratorMainHandler::CheckFailed:
        return ExitCode::CheckFailed;
    case GeneratorMainHandler::FolderNotWritable:
        return ExitCode::FileFailed;
    case GeneratorMainHandler::SrdoFailed:
        return ExitCode::GenerationFailed;
    case GeneratorMainHandler::Completed:
        break;
    }
    return ExitCode::Done;
}

/// A run that went to its end, judged by the outputs that it did not bring about.
ExitCode judgeOutputs(const QList<OutputFault> &faults, Console &console)
{
    ExitCode code = ExitCode::Done;
    for (const OutputFault &fault : faults) {
        console.error(PlainTextOutputHandler::plainText(fault.text));
        if (fault.kind == OutputFault::Failed)
            code = ExitCode::GenerationFailed;
        else if (code == ExitCode::Done)
            code = ExitCode::FileFailed;
    }
    return code;
}

} // namespace

QString GenerateCommand::name() const
{
    return QStringLiteral("generate");
}

QString GenerateCommand::summary() const
{
    return QStringLiteral("checks a project and generates its files");
}

QString GenerateCommand::description() const
{
    return QStringLiteral(
        "The messages of the run go to standard output as they come. Errors of the model\n"
        "check stop the run before the first file, unless they are to be ignored. With\n"
        "-o nothing is written beside the project; a missing folder is made. A file that\n"
        "can't be written, or that this version can't make, does not stop the run but\n"
        "shows in the exit code. The code is for the stack generation V4, whatever the\n"
        "project is set to. A note tells of a project that something else has changed\n"
        "since it was saved.");
}

QList<CommandArgument> GenerateCommand::arguments() const
{
    return {{QStringLiteral("PROJECT"), QStringLiteral("the project, a .vxmp or .vxmt file")}};
}

QList<CommandOption> GenerateCommand::options() const
{
    return {
        {{outputKey, QStringLiteral("output")},
         QStringLiteral("DIR"),
         QStringLiteral("generate into this folder, not into that of the project")},
        {{ignoreKey}, {}, QStringLiteral("generate in spite of errors of the model check")},
        {{srdoKey},
         QStringLiteral("ANSWER"),
         QStringLiteral("whether to generate gen_srdo.c if the project holds SRDOs"),
         {QStringLiteral("yes"), QStringLiteral("no")},
         QStringLiteral("yes")},
    };
}

ExitCode GenerateCommand::run(const CommandCall &call, Console &console) const
{
    PlainTextOutputHandler output;
    GeneratorMainHandler handler(output);
    const QString fault = ProjectAccess::open(handler, call.arguments.first());
    if (!fault.isEmpty()) {
        console.error(fault);
        return ExitCode::FileFailed;
    }
    if (call.isSet(outputKey)) {
        const QString folder = QDir::cleanPath(QFileInfo(call.value(outputKey)).absoluteFilePath());
        if (!ensureFolder(folder)) {
            console.error(QStringLiteral("the output folder \"%1\" can't be made")
                              .arg(QDir::toNativeSeparators(folder)));
            return ExitCode::FileFailed;
        }
        handler.setOutputFolder(folder);
    }
    if (handler.store()->wasExternallyModified())
        output.outputMessage(externalChangeNote);
    const ProjectSettings settings(*handler.store());
    handler.setVirtualObjects(settings.decimal("special_virtual_objects") != 0);
    handler.setGenerateSrdo(call.value(srdoKey) == QLatin1String("yes"));
    handler.setQuiet(true);

    const auto result = handler.generate(call.isSet(ignoreKey));
    if (result == GeneratorMainHandler::Completed)
        return judgeOutputs(handler.outputFaults(), console);
    console.error(stopReason(result, handler));
    return codeOf(result);
}
