#include "app/outputclass.h"

#include "generation/plaintextoutputhandler.h"

#include <QRegularExpression>

#include <array>

namespace {

struct Begin
{
    QLatin1String words;
    OutputClass::Kind kind;
};

// The blanks and colons behind them differ from message to message.
constexpr std::array begins{
    Begin{QLatin1String("Error:"), OutputClass::Kind::Error},
    Begin{QLatin1String("ERROR -"), OutputClass::Kind::Error},
    Begin{QLatin1String("ABORT - The "), OutputClass::Kind::Error},
    Begin{QLatin1String("Warning:"), OutputClass::Kind::Warning},
    Begin{QLatin1String("Warning "), OutputClass::Kind::Warning},
    Begin{QLatin1String("Hint:"), OutputClass::Kind::Note},
    Begin{QLatin1String("Info:"), OutputClass::Kind::Note},
    Begin{QLatin1String("Corrected:"), OutputClass::Kind::Note},
    Begin{QLatin1String("Note:"), OutputClass::Kind::Note},
};

bool tellsUnwritableFile(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^The (?:\\w+ )?files? .+ (?:is|are) not writable\\.?$"));
    return pattern.match(text).hasMatch();
}

} // namespace

OutputClass::Kind OutputClass::of(const QString &message)
{
    const QString text = PlainTextOutputHandler::plainText(message).trimmed();
    for (const Begin &begin : begins) {
        if (text.startsWith(begin.words))
            return begin.kind;
    }
    return tellsUnwritableFile(text) ? Kind::Error : Kind::Progress;
}
