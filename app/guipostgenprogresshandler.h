#pragma once

#include "generation/postgenprogresshandler.h"

#include <QPointer>

class QProgressDialog;

/// Shows the last part of a run in the progress dialog of that run. Without a dialog, as in hidden
/// mode, only faults are shown.
class GUIPostGenProgressHandler : public PostGenProgressHandler
{
    Q_OBJECT

public:
    using PostGenProgressHandler::PostGenProgressHandler;

    /// The dialog of the next run, not owned; it may be deleted at any time.
    void setDialog(QProgressDialog *dialog);

    void setLabelText(const QString &text) override;
    void setCancelButtonText(const QString &text) override;
    void show() override;
    void hide() override;
    void adjustSize() override;
    void raise() override;
    /// `parent` counts if it is a widget; otherwise the box belongs to the dialog.
    void showMessage(QObject *parent, const QString &title, const QString &text,
                     const QString &detail) override;

private:
    QPointer<QProgressDialog> m_dialog;
};
