#include "app/vxmmainwindow.h"

#include "app/editcontroller.h"
#include "gui/aboutdialog.h"
#include "gui/guihelper.h"
#include "gui/lineicon.h"
#include "gui/manualhandler.h"
#include "gui/newupdatechecker.h"
#include "store/usersettings.h"
#include "ui_vxmmainwindow.h"

#include <QApplication>
#include <QPushButton>
#include <QShortcut>
#include <QStatusBar>

namespace {

const QString productCode = QStringLiteral("04417");
const QString expertModeKey = QStringLiteral("expertmode");
constexpr int noteMilliseconds = 8000;
constexpr int firstCheckMilliseconds = 3000;
constexpr int pageShortcuts = 9;

} // namespace

/// Pages are made before, so that they hear of the expert mode.
void VxmMainWindow::makeHelp()
{
    m_manual = new ManualHandler(this);
    ui->action_Hel_p->setShortcutContext(Qt::ApplicationShortcut);

    m_updateChecker = new newUpdateChecker(this);
    connect(m_updateChecker, &newUpdateChecker::newVersion, this, &VxmMainWindow::newVersion);
    connect(m_updateChecker, &newUpdateChecker::notConfigured, this, [this] {
        statusBar()->showMessage(tr("No server for updates is configured."), noteMilliseconds);
    });
    connect(m_updateChecker, &newUpdateChecker::failed, this, [this](const QString &reason) {
        statusBar()->showMessage(tr("Check for updates failed: %1.").arg(reason), noteMilliseconds);
    });
    // Who has configured a server wants to be told.
    if (!m_options.hidden && !newUpdateChecker::server().isEmpty()) {
        QTimer::singleShot(firstCheckMilliseconds, this,
                           &VxmMainWindow::on_actionCheck_for_Updates_triggered);
    }

    for (int page = 0; page < pageShortcuts; ++page) {
        auto *shortcut = new QShortcut(QKeySequence(Qt::ALT | Qt::Key(Qt::Key_1 + page)), this);
        connect(shortcut, &QShortcut::activated, this, [this, page] {
            if (!m_busy && page < ui->toolBox->count())
                ui->toolBox->setCurrentIndex(page);
        });
    }

    connect(ui->actionEnable_Expert_Mode, &QAction::toggled, this, [this](bool enabled) {
        UserSettings::setGeneral(expertModeKey, enabled);
        emit expertModeChanged(enabled);
    });
    ui->actionEnable_Expert_Mode->setChecked(UserSettings::general(expertModeKey, false).toBool());
}

// --- Help ---------------------------------------------------------------------------------------

void VxmMainWindow::on_action_Hel_p_triggered()
{
    m_manual->openForFront(m_currentPage);
}

void VxmMainWindow::on_action_Manual_triggered()
{
    m_manual->openManual();
}

void VxmMainWindow::on_actionChangelog_triggered()
{
    m_manual->openChangelog();
}

void VxmMainWindow::on_action_About_triggered()
{
    AboutDialog dialog(this);
    GuiHelper::execDialog(dialog);
}

void VxmMainWindow::on_actionAbout_Qt_triggered()
{
    if (GuiHelper::isAttended())
        QApplication::aboutQt();
}

// --- Updates ------------------------------------------------------------------------------------

void VxmMainWindow::on_actionCheck_for_Updates_triggered()
{
    m_updateChecker->checkForUpdates(productCode, QCoreApplication::applicationVersion());
}

void VxmMainWindow::newVersion(QString newVersionString, QString productCodeOfAnswer,
                               bool newerVersion)
{
    if (productCodeOfAnswer != productCode)
        return;
    delete m_updateButton;
    if (!newerVersion) {
        statusBar()->showMessage(
            tr("Version %1 is the newest one.").arg(QCoreApplication::applicationVersion()),
            noteMilliseconds);
        return;
    }
    m_updateButton = new QPushButton(tr("Update available"), this);
    m_updateButton->setObjectName(QStringLiteral("btnUpdate"));
    m_updateButton->setIcon(LineIcon::icon(QStringLiteral("update")));
    m_updateButton->setFlat(true);
    m_updateButton->setToolTip(tr("Version %1 is available").arg(newVersionString));
    connect(m_updateButton, &QPushButton::clicked, this, [this, newVersionString] {
        GuiHelper::showMessageBox(
            this, GuiHelper::boxTitle(), tr("Version %1 is available.").arg(newVersionString),
            tr("This is version %1.").arg(QCoreApplication::applicationVersion()));
    });
    statusBar()->addPermanentWidget(m_updateButton);
    m_updateButton->show();
}

// --- Commands on what is selected ---------------------------------------------------------------

void VxmMainWindow::on_actionCopy_triggered()
{
    m_editing->run(BaseMainForm::Copy);
}

void VxmMainWindow::on_actionCut_triggered()
{
    m_editing->run(BaseMainForm::Cut);
}

void VxmMainWindow::on_actionPaste_triggered()
{
    m_editing->run(BaseMainForm::Paste);
}

void VxmMainWindow::on_actionDelete_triggered()
{
    m_editing->run(BaseMainForm::Delete);
}

void VxmMainWindow::on_actionDuplicate_triggered()
{
    m_editing->run(BaseMainForm::Duplicate);
}
