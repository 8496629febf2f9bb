#pragma once

#include "generators/base/outputhandlerbase.h"

#include <QPointer>

class GeneratorOutputForm;

/// Puts the messages of a run into the page "Generator Output".
class GUIOutputHandler : public OutputHandlerBase
{
    Q_OBJECT

public:
    /// The form is not owned.
    explicit GUIOutputHandler(GeneratorOutputForm *form, QObject *parent = nullptr);

    void outputMessage(const QVariant &text) override;
    void outputHtml(const QVariant &html) override;
    [[nodiscard]] QString loggingText() const override;

private:
    QPointer<GeneratorOutputForm> m_form;
};

/// Hands every message to two handlers; what has been put out is asked of the first.
class PairedOutputHandler : public OutputHandlerBase
{
    Q_OBJECT

public:
    /// Neither handler is owned.
    PairedOutputHandler(OutputHandlerBase &first, OutputHandlerBase &second,
                        QObject *parent = nullptr);

    void outputMessage(const QVariant &text) override;
    void outputHtml(const QVariant &html) override;
    [[nodiscard]] QString loggingText() const override;

private:
    OutputHandlerBase &m_first;
    OutputHandlerBase &m_second;
};
