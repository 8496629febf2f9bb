#pragma once

#include <QObject>
#include <QPointer>

class ManualHandler;
class QMenu;
class QPushButton;
class QStatusBar;
class WindowContext;
class newUpdateChecker;

/// Manual, versions, the check for updates, and the viewer for generated files.
class HelpController : public QObject
{
    Q_OBJECT

public:
    /// Asks a configured server by itself, a little later. An update on offer has a button in the
    /// status bar.
    HelpController(WindowContext &context, QStatusBar &statusBar);

    /// Explains what the user is at; `page` is the page in front, or null.
    void explain(const QWidget *page);
    void openManual();
    void openChangelog();
    void showAbout();
    void checkForUpdates();
    /// Takes the answer of the check; one for another product is passed over.
    void handleAnswer(const QString &version, const QString &productCode, bool isNewer);
    /// Lists the generated files; those that are there can be opened.
    void fillFileViewer(QMenu &menu);

signals:
    void answered(const QString &version, const QString &productCode, bool isNewer);

private:
    void offerUpdate(const QString &version);
    void showFile(const QString &path);

    WindowContext &m_context;
    QStatusBar &m_statusBar;
    ManualHandler *m_manual;              ///< child of this
    newUpdateChecker *m_updateChecker;    ///< child of this
    QPointer<QPushButton> m_updateButton; ///< as long as an update is on offer
};
