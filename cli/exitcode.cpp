#include "cli/exitcode.h"

const QList<ExitCodeMeaning> &exitCodeMeanings()
{
    static const QList<ExitCodeMeaning> meanings = {
        {ExitCode::Done, QStringLiteral("done")},
        {ExitCode::CheckFailed, QStringLiteral("the model check found errors")},
        {ExitCode::WrongUsage, QStringLiteral("wrong usage")},
        {ExitCode::FileFailed, QStringLiteral("a file can't be read or written")},
        {ExitCode::GenerationFailed, QStringLiteral("generation failed")},
    };
    return meanings;
}
