#pragma once

#include "gui/helpviewerdialog.h"

#include <QList>
#include <QObject>

/// Opens the manual, and knows which of its pages fits which form.
///
/// F1 in a modal dialog reaches the manual too: while such a dialog is open no action of the main
/// window hears it.
class ManualHandler : public QObject
{
    Q_OBJECT

public:
    /// The manual's window belongs to `window`.
    explicit ManualHandler(QWidget *window);

    /// Where the pages are.
    [[nodiscard]] static QString folder();
    [[nodiscard]] static QList<HelpViewerDialog::Chapter> chapters();
    /// The page for a form, a dialog or a widget inside of one; empty if none fits.
    [[nodiscard]] static QString pageFor(const QObject *widget);

    void openManual();
    void openChangelog();
    /// Opens the page for what the user is at: where the keyboard is, else the form, else the
    /// manual's first page.
    void openForFront(const QWidget *form = nullptr);
    /// The manual's window; null as long as it was never opened.
    [[nodiscard]] HelpViewerDialog *viewer() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void show(const QString &file);

    QWidget *m_window;
};
