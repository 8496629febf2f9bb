#include "app/helpcontroller.h"

#include "app/startoptions.h"
#include "app/windowcontext.h"
#include "gui/aboutdialog.h"
#include "gui/fileviewerdialog.h"
#include "gui/guihelper.h"
#include "gui/lineicon.h"
#include "gui/manualhandler.h"
#include "gui/newupdatechecker.h"
#include "session/projectsession.h"

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>

#include <array>

namespace {

const QString ownProductCode = QStringLiteral("04417");
constexpr int noteMilliseconds = 8000;
constexpr int firstCheckMilliseconds = 3000;

/// Outputs that the viewer is offered for, in the order of the menu.
constexpr std::array viewedFiles{
    "gen_objdict.c",     "gen_define.h", "gen_indication.h", "gen_pgn.c",
    "gen_extern_decl.h", "gen_srdo.c",   "gen_mp.c",         "gen_vobjdict.c",
    "gen_indices.h",     "gen_sdg.c",    "gen_rawcan.c",     "rawcan_doc.txt",
};

} // namespace

HelpController::HelpController(WindowContext &context, QStatusBar &statusBar)
    : m_context(context), m_statusBar(statusBar), m_manual(new ManualHandler(context.widget())),
      m_updateChecker(new newUpdateChecker(this))
{
    connect(m_updateChecker, &newUpdateChecker::newVersion, this, &HelpController::answered);
    connect(m_updateChecker, &newUpdateChecker::notConfigured, this, [this] {
        m_context.showStatus(tr("No server for updates is configured."), noteMilliseconds);
    });
    connect(m_updateChecker, &newUpdateChecker::failed, this, [this](const QString &reason) {
        m_context.showStatus(tr("Check for updates failed: %1.").arg(reason), noteMilliseconds);
    });
    // Who has configured a server wants to be told.
    if (!context.options().hidden && !newUpdateChecker::server().isEmpty())
        QTimer::singleShot(firstCheckMilliseconds, this, &HelpController::checkForUpdates);
}

// --- Help ---------------------------------------------------------------------------------------

void HelpController::explain(const QWidget *page)
{
    m_manual->openForFront(page);
}

void HelpController::openManual()
{
    m_manual->openManual();
}

void HelpController::openChangelog()
{
    m_manual->openChangelog();
}

void HelpController::showAbout()
{
    AboutDialog dialog(m_context.widget());
    GuiHelper::execDialog(dialog);
}

// --- Updates ------------------------------------------------------------------------------------

void HelpController::checkForUpdates()
{
    m_updateChecker->checkForUpdates(ownProductCode, QCoreApplication::applicationVersion());
}

void HelpController::handleAnswer(const QString &version, const QString &productCode, bool isNewer)
{
    if (productCode != ownProductCode)
        return;
    delete m_updateButton;
    if (isNewer) {
        offerUpdate(version);
        return;
    }
    m_context.showStatus(
        tr("Version %1 is the newest one.").arg(QCoreApplication::applicationVersion()),
        noteMilliseconds);
}

void HelpController::offerUpdate(const QString &version)
{
    m_updateButton = new QPushButton(tr("Update available"), &m_statusBar);
    m_updateButton->setObjectName(QStringLiteral("btnUpdate"));
    m_updateButton->setIcon(LineIcon::icon(QStringLiteral("update")));
    m_updateButton->setFlat(true);
    m_updateButton->setToolTip(tr("Version %1 is available").arg(version));
    connect(m_updateButton, &QPushButton::clicked, this, [this, version] {
        GuiHelper::showMessageBox(
            m_context.widget(), GuiHelper::boxTitle(), tr("Version %1 is available.").arg(version),
            tr("This is version %1.").arg(QCoreApplication::applicationVersion()));
    });
    m_statusBar.addPermanentWidget(m_updateButton);
    m_updateButton->show();
}

// --- Generated files ----------------------------------------------------------------------------

void HelpController::fillFileViewer(QMenu &menu)
{
    menu.clear();
    const QString folderPath = m_context.session().folder();
    const QDir folder(folderPath);
    for (const char *name : viewedFiles) {
        const QString file = QString::fromLatin1(name);
        QAction *action = menu.addAction(file);
        const bool isThere = !folderPath.isEmpty() && folder.exists(file);
        action->setEnabled(isThere);
        QString tip = tr("Shows %1 as it was generated").arg(file);
        if (folderPath.isEmpty())
            tip = tr("The project has no folder yet; save it, then generate the files");
        else if (!isThere)
            tip = tr("%1 is not in the folder of the project").arg(file);
        action->setStatusTip(tip);
        action->setToolTip(tip);
        connect(action, &QAction::triggered, this,
                [this, path = folder.absoluteFilePath(file)] { showFile(path); });
    }
}

void HelpController::showFile(const QString &path)
{
    QWidget *window = m_context.widget();
    FileViewerDialog *viewer = nullptr;
    for (auto *open : window->findChildren<FileViewerDialog *>(Qt::FindDirectChildrenOnly)) {
        if (open->path() == path)
            viewer = open;
    }
    if (viewer == nullptr) {
        viewer = new FileViewerDialog(window);
        viewer->setAttribute(Qt::WA_DeleteOnClose);
        viewer->openFile(path);
    }
    viewer->show();
    viewer->raise();
    viewer->activateWindow();
}
