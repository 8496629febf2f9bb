#include "cli/console.h"

#include <cstdio>

namespace {

void write(std::FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
}

} // namespace

void Console::result(const QString &text)
{
    write(stdout, text);
}

void Console::warning(const QString &sentence)
{
    write(stderr, QStringLiteral("%1: warning: %2\n").arg(programName, sentence));
}

void Console::error(const QString &sentence)
{
    write(stderr, QStringLiteral("%1: error: %2\n").arg(programName, sentence));
}

bool Console::flush()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}
