#include "app/vxmmainwindow.h"

#include "app/generatoroutputform.h"
#include "app/pagetable.h"
#include "canopen/linetype.h"
#include "gui/editionicon.h"
#include "gui/guihelper.h"
#include "gui/lineicon.h"
#include "import/codbimporter.h"
#include "store/undomanager.h"
#include "store/usersettings.h"
#include "ui_vxmmainwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <QSignalBlocker>

#include <array>

namespace {

constexpr int refreshMilliseconds = 20;
constexpr QPoint visiblePosition(100, 30);

/// Which drawing stands for which action.
struct ActionIcon
{
    const char *action;
    const char *icon;
};
constexpr std::array actionIcons{
    ActionIcon{"actionNew_Project", "new"},     ActionIcon{"actionOpen_Project", "open"},
    ActionIcon{"actionSave_Project", "save"},   ActionIcon{"actionSave_Project_as", "save-as"},
    ActionIcon{"actionClose_Project", "close"}, ActionIcon{"actionGenerate_Output", "generate"},
    ActionIcon{"actionQuit", "quit"},           ActionIcon{"actionUndo", "undo"},
    ActionIcon{"actionRedo", "redo"},           ActionIcon{"actionCut", "cut"},
    ActionIcon{"actionCopy", "copy"},           ActionIcon{"actionPaste", "paste"},
    ActionIcon{"actionDelete", "clear"},        ActionIcon{"actionDuplicate", "duplicate"},
    ActionIcon{"action_Hel_p", "question"},     ActionIcon{"action_Manual", "manual"},
    ActionIcon{"action_About", "about"},        ActionIcon{"actionCheck_for_Updates", "update"},
};

/// Entries of the line box below the lines.
struct LineFlow
{
    int data;
    const char *label;
};
constexpr std::array lineFlows{
    LineFlow{255, "Add empty line"},
    LineFlow{253, "Duplicate last line"},
    LineFlow{254, "Delete last line"},
    LineFlow{252, "Change Line Type"},
};

} // namespace

VxmMainWindow::VxmMainWindow(const StartOptions &options, QWidget *parent)
    : QMainWindow(parent), ui(std::make_unique<Ui::VxmMainWindow>()), m_options(options),
      m_networkToolMode(options.networkTool)
{
    ui->setupUi(this);
    decorate();
    makePages();
    makeUndo();
    makeGenerator();
    makeHelp();
    restoreGeometryOfUser();

    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(refreshMilliseconds);
    connect(&m_refreshTimer, &QTimer::timeout, this, &VxmMainWindow::refreshLines);
    connect(ui->mpSelectLine, &QComboBox::currentIndexChanged, this,
            &VxmMainWindow::handleLineChanged);
    connect(ui->toolBox, &QToolBox::currentChanged, this, &VxmMainWindow::newCurrentTabActivated);
    connect(ui->menuRecent_Projects, &QMenu::aboutToShow, this, &VxmMainWindow::fillRecentProjects);
    connect(ui->menuExample_Projects, &QMenu::aboutToShow, this,
            &VxmMainWindow::fillExampleProjects);
    connect(ui->menuFile_Viewer, &QMenu::aboutToShow, this, &VxmMainWindow::createFileViewerMenu);
    leaveProjectPath();
}

VxmMainWindow::~VxmMainWindow()
{
    // Its last signals are about actions that are still there now.
    delete m_undoManager;
}

void VxmMainWindow::decorate()
{
    setWindowIcon(EditionIcon::icon(QCoreApplication::applicationName()));
    for (const ActionIcon &row : actionIcons) {
        if (auto *action = findChild<QAction *>(QLatin1String(row.action)))
            action->setIcon(LineIcon::icon(QLatin1String(row.icon)));
    }
    ui->menuRecent_Projects->setIcon(LineIcon::icon(QStringLiteral("recent")));
    ui->menuExample_Projects->setIcon(LineIcon::icon(QStringLiteral("examples")));
    ui->menuMisc->menuAction()->setVisible(!ui->menuMisc->isEmpty());
    setContextMenuPolicy(Qt::NoContextMenu); // the tool bar stays
}

void VxmMainWindow::makePages()
{
    for (const PageFactory &factory : PageFactory::all()) {
        Page page{&factory, factory.make(this)};
        page.form->hide();
        connect(this, &VxmMainWindow::saveRequest, page.form, &BaseMainForm::saveData);
        connect(this, &VxmMainWindow::expertModeChanged, page.form,
                &BaseMainForm::handleExpertMode);
        if (m_outputForm == nullptr)
            m_outputForm = qobject_cast<GeneratorOutputForm *>(page.form);
        m_pages.append(page);
    }
}

void VxmMainWindow::setDatabase(const std::shared_ptr<ObjectDataBase> &database)
{
    if (m_database != nullptr)
        disconnect(m_database.get(), nullptr, this, nullptr);
    m_database = database;
    connect(database.get(), &ObjectDataBase::updateNotify, this, &VxmMainWindow::projectModified);
    for (const Page &page : std::as_const(m_pages))
        page.form->setDatabase(database);
    updateLinesComboBox();
    attachUndo();
}

void VxmMainWindow::setLibraryDatabase(const std::shared_ptr<ObjectDataBase> &database)
{
    m_library = database;
}

// --- Pages and lines ----------------------------------------------------------------------------

PageContext VxmMainWindow::pageContext() const
{
    PageContext context{.line = m_line};
    if (m_database != nullptr) {
        context.lineType = m_database->getLineType(m_line);
        const QString server = QStringLiteral("cia510serversupport");
        context.hasSdoServer = m_database->getJ1939Setting(server).toInt() == 1;
    }
    return context;
}

void VxmMainWindow::selectLine(quint8 line, bool blockSignal)
{
    m_line = line;
    for (const Page &page : std::as_const(m_pages))
        page.form->setLine(line);
    rebuildToolBox();
    if (!blockSignal)
        emit lineChanged(line);
}

void VxmMainWindow::rebuildToolBox()
{
    const PageContext context = pageContext();
    m_shownLineType = context.lineType;
    ui->lblProtocol->setText(QString::fromLatin1(LineType::of(context.lineType).label));

    QList<Page> shown;
    for (const Page &page : std::as_const(m_pages)) {
        if (page.factory->shown(context))
            shown.append(page);
    }
    if (showsPages(shown, context))
        return;
    const QSignalBlocker blocker(ui->toolBox);
    QWidget *former = ui->toolBox->currentWidget();
    while (ui->toolBox->count() > 0) {
        QWidget *form = ui->toolBox->widget(0);
        ui->toolBox->removeItem(0);
        form->setParent(this);
        form->hide();
    }
    for (const Page &page : std::as_const(shown)) {
        ui->toolBox->addItem(page.form, LineIcon::icon(QLatin1String(page.factory->icon)),
                             page.factory->label(context));
    }
    const int kept = former != nullptr ? ui->toolBox->indexOf(former) : -1;
    ui->toolBox->setCurrentIndex(kept >= 0 ? kept : 0);
    m_currentPage = qobject_cast<BaseMainForm *>(ui->toolBox->currentWidget());
}

bool VxmMainWindow::showsPages(const QList<Page> &pages, const PageContext &context) const
{
    if (ui->toolBox->count() != pages.size())
        return false;
    for (int i = 0; i < ui->toolBox->count(); ++i) {
        if (ui->toolBox->widget(i) != pages[i].form ||
            ui->toolBox->itemText(i) != pages[i].factory->label(context)) {
            return false;
        }
    }
    return true;
}

void VxmMainWindow::newCurrentTabActivated(int)
{
    auto *page = qobject_cast<BaseMainForm *>(ui->toolBox->currentWidget());
    if (m_currentPage != nullptr && m_currentPage != page)
        m_currentPage->saveData();
    m_currentPage = page;
}

void VxmMainWindow::updateLinesComboBox()
{
    const QSignalBlocker blocker(ui->mpSelectLine);
    ui->mpSelectLine->clear();
    const QList<quint8> lines = projectLines();
    for (const quint8 line : lines) {
        const LineType &type = LineType::of(m_database->getLineType(line));
        ui->mpSelectLine->addItem(
            QStringLiteral("Line %1 - %2").arg(line).arg(QLatin1String(type.label)), line);
    }
    ui->mpSelectLine->insertSeparator(ui->mpSelectLine->count());
    for (const LineFlow &flow : lineFlows)
        ui->mpSelectLine->addItem(QString::fromLatin1(flow.label), flow.data);
    ui->mpSelectLine->setCurrentIndex(qMax(0, ui->mpSelectLine->findData(m_line)));
}

void VxmMainWindow::refreshLines()
{
    if (m_busy)
        return;
    const bool gone = !m_database->lineExists(m_line);
    if (gone)
        selectLine(0);
    updateLinesComboBox();
    if (!gone && m_database->getLineType(m_line) != m_shownLineType)
        rebuildToolBox();
}

void VxmMainWindow::doThingsAfterStartup()
{
    setActionEnabled("action_Import_File", true);
    bringOntoScreen();
    ui->mpSelectLine->setCurrentIndex(0);
}

// --- State of the project -----------------------------------------------------------------------

void VxmMainWindow::projectModified(ObjectDataBase::ChangeSet modification)
{
    if (m_loading)
        return;
    setModified(true);
    switch (modification.kind) {
    case ObjectDataBase::NodeAdded:
    case ObjectDataBase::NodeDeleted:
    case ObjectDataBase::GeneralSettingChanged:
    case ObjectDataBase::ProjectReplaced:
        m_refreshTimer.start();
        break;
    case ObjectDataBase::J1939SettingChanged: {
        // With the SDO server, one for all lines, the object dictionary of a J1939 line comes and
        // goes.
        const LineType &type = LineType::of(m_shownLineType);
        if (type.hasJ1939 && !type.hasCANopen)
            rebuildToolBox();
        break;
    }
    default:
        break;
    }
}

bool VxmMainWindow::isModified() const
{
    return ui->lblPath->font().style() == QFont::StyleItalic;
}

void VxmMainWindow::setModified(bool modified)
{
    const QFont::Style style = modified ? QFont::StyleItalic : QFont::StyleNormal;
    QFont font = ui->lblPath->font();
    if (font.style() == style)
        return;
    font.setStyle(style);
    ui->lblPath->setFont(font);
    ui->lblProject->setText(modified ? QStringLiteral("Project (modified):")
                                     : QStringLiteral("Project:"));
}

void VxmMainWindow::storePendingInput()
{
    emit saveRequest();
    if (m_currentPage != nullptr)
        m_currentPage->saveData();
}

void VxmMainWindow::updateTitle()
{
    setWindowTitle(m_projectBaseName.isEmpty()
                       ? GuiHelper::boxTitle()
                       : QStringLiteral("%1 - %2").arg(m_projectBaseName, GuiHelper::boxTitle()));
}

void VxmMainWindow::setBusy(bool busy)
{
    m_busy = busy;
    menuBar()->setEnabled(!busy);
    if (busy) {
        // Shortcuts reach an action even where its menu is disabled.
        for (QAction *action : findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly)) {
            if (action->isEnabled())
                m_pausedActions.append(action);
        }
    }
    for (QAction *action : std::as_const(m_pausedActions))
        action->setEnabled(!busy);
    if (!busy)
        m_pausedActions.clear();
    updateUndoActions(); // a step may have come or gone meanwhile
    ui->toolBar->setEnabled(!busy);
    ui->mpSelectLine->setEnabled(!busy);
    setAcceptDrops(!busy);
    if (!busy)
        m_refreshTimer.start();
}

void VxmMainWindow::setActionEnabled(const char *objectName, bool enabled)
{
    if (auto *action = findChild<QAction *>(QLatin1String(objectName)))
        action->setEnabled(enabled);
}

void VxmMainWindow::setActionVisible(const char *objectName, bool visible)
{
    if (auto *action = findChild<QAction *>(QLatin1String(objectName)))
        action->setVisible(visible);
}

void VxmMainWindow::handleCheckError(QString errorString)
{
    m_outputForm->appendLogging(errorString);
}

// --- Geometry and end ---------------------------------------------------------------------------

void VxmMainWindow::restoreGeometryOfUser()
{
    UserSettings settings;
    settings.beginGroup(QStringLiteral("Geometry"));
    const QSize size = settings.value(QStringLiteral("size")).toSize();
    if (size.isValid())
        resize(size.expandedTo(minimumSizeHint()));
    const QVariant position = settings.value(QStringLiteral("pos"));
    if (position.isValid())
        move(position.toPoint());
    if (settings.value(QStringLiteral("maximized")).toBool())
        setWindowState(windowState() | Qt::WindowMaximized);
}

void VxmMainWindow::saveGeometryOfUser()
{
    UserSettings settings;
    settings.beginGroup(QStringLiteral("Geometry"));
    settings.setValue(QStringLiteral("size"), isMaximized() ? normalGeometry().size() : size());
    settings.setValue(QStringLiteral("pos"), isMaximized() ? normalGeometry().topLeft() : pos());
    settings.setValue(QStringLiteral("maximized"), isMaximized());
}

void VxmMainWindow::bringOntoScreen()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const bool visible = std::any_of(screens.begin(), screens.end(), [&](const QScreen *screen) {
        return screen->availableGeometry().contains(pos());
    });
    if (!visible)
        move(visiblePosition);
}

void VxmMainWindow::closeEvent(QCloseEvent *event)
{
    if (m_busy || !closeCheck()) {
        event->ignore();
        return;
    }
    saveGeometryOfUser();
    event->accept();
    QCoreApplication::exit(0);
}

void VxmMainWindow::on_actionQuit_triggered()
{
    close();
}
