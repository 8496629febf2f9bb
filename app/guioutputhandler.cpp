#include "app/guioutputhandler.h"

#include "app/generatoroutputform.h"

GUIOutputHandler::GUIOutputHandler(GeneratorOutputForm *form, QObject *parent)
    : OutputHandlerBase(parent), m_form(form)
{
}

void GUIOutputHandler::outputMessage(const QVariant &text)
{
    if (m_form != nullptr)
        m_form->appendLogging(text.toString());
}

void GUIOutputHandler::outputHtml(const QVariant &html)
{
    if (m_form != nullptr)
        m_form->appendHtml(html.toString());
}

QString GUIOutputHandler::loggingText() const
{
    return m_form != nullptr ? m_form->getLogging() : QString();
}

PairedOutputHandler::PairedOutputHandler(OutputHandlerBase &first, OutputHandlerBase &second,
                                         QObject *parent)
    : OutputHandlerBase(parent), m_first(first), m_second(second)
{
}

void PairedOutputHandler::outputMessage(const QVariant &text)
{
    m_first.outputMessage(text);
    m_second.outputMessage(text);
}

void PairedOutputHandler::outputHtml(const QVariant &html)
{
    m_first.outputHtml(html);
    m_second.outputHtml(html);
}

QString PairedOutputHandler::loggingText() const
{
    return m_first.loggingText();
}
