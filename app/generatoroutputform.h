#pragma once

#include "app/support/basemainform.h"

class QTextBrowser;

/// The page "Generator Output": what a run says, read-only.
class GeneratorOutputForm : public BaseMainForm
{
    Q_OBJECT

public:
    explicit GeneratorOutputForm(QWidget *parent = nullptr);

public slots:
    void updateData(ObjectDataBase::ChangeSet modification) override;
    void saveData() override;
    void handleExpertMode(bool expertModeActive) override;

    void clearLogging();
    /// Adds a message with the time before it. A line feed at its begin makes an empty line.
    void appendLogging(const QString &loggingString);
    /// Adds a piece of rich text as it stands.
    void appendHtml(const QString &html);
    /// Everything that stands in the pane, as plain text.
    [[nodiscard]] QString getLogging() const;

private:
    void append(const QString &html);

    QTextBrowser *m_logging;
};
