#include "generation/postgenprogresshandler.h"

#include "generators/base/outputhandlerbase.h"

void PostGenProgressHandler::setLabelText(const QString &) {}

void PostGenProgressHandler::setCancelButtonText(const QString &) {}

void PostGenProgressHandler::show() {}

void PostGenProgressHandler::hide() {}

void PostGenProgressHandler::adjustSize() {}

void PostGenProgressHandler::raise() {}

void PostGenProgressHandler::showMessage(QObject *, const QString &, const QString &,
                                         const QString &)
{
}

void PostGenProgressHandler::cancelProcessTriggered()
{
    emit cancelProcess();
}

TextPostGenProgressHandler::TextPostGenProgressHandler(OutputHandlerBase &output, QObject *parent)
    : PostGenProgressHandler(parent), m_output(output)
{
}

void TextPostGenProgressHandler::showMessage(QObject *, const QString &, const QString &text,
                                             const QString &detail)
{
    const QString fault = detail.isEmpty() ? text : text + QLatin1Char(' ') + detail;
    m_output.outputMessage(QStringLiteral("<b>%1</b>").arg(fault.toHtmlEscaped()));
}
