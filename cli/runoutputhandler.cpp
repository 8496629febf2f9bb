#include "cli/runoutputhandler.h"

#include <QRegularExpression>

void RunOutputHandler::outputMessage(const QVariant &text)
{
    PlainTextOutputHandler::outputMessage(text);
    // The forms of the driver's own messages; none of the model check begins like them.
    static const QRegularExpression notWritable(
        QStringLiteral("^The .* (?:is|are) not writable\\.?$"),
        QRegularExpression::DotMatchesEverythingOption);
    const QString message = plainText(text.toString()).trimmed();
    const QLatin1String mark("ERROR - ");
    if (message.startsWith(mark + QLatin1String("Generation of ")))
        m_failed.append(message.mid(mark.size()));
    else if (notWritable.match(message).hasMatch())
        m_notWritable.append(message);
}
