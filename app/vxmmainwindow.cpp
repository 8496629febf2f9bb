#include "app/vxmmainwindow.h"

#include "app/editcontroller.h"
#include "app/generatoroutputform.h"
#include "app/linebox.h"
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
#include <QScrollArea>
#include <QSignalBlocker>

#include <array>

namespace {

constexpr int refreshMilliseconds = 20;
constexpr QPoint visiblePosition(100, 30);
/// Where a title shows whether something is modified.
const QString modifiedMark = QStringLiteral("[*]");

/// Which drawing stands for which action.
struct ActionIcon
{
    const char *action;
    const char *icon;
};
constexpr std::array actionIcons{
    ActionIcon{"actionNew_Project", "new"},
    ActionIcon{"actionOpen_Project", "open"},
    ActionIcon{"actionSave_Project", "save"},
    ActionIcon{"actionSave_Project_as", "save-as"},
    ActionIcon{"actionClose_Project", "close"},
    ActionIcon{"actionGenerate_Output", "generate"},
    ActionIcon{"actionQuit", "quit"},
    ActionIcon{"actionUndo", "undo"},
    ActionIcon{"actionRedo", "redo"},
    ActionIcon{"actionCut", "cut"},
    ActionIcon{"actionCopy", "copy"},
    ActionIcon{"actionPaste", "paste"},
    ActionIcon{"actionDelete", "clear"},
    ActionIcon{"actionDuplicate", "duplicate"},
    ActionIcon{"action_Hel_p", "question"},
    ActionIcon{"action_Manual", "manual"},
    ActionIcon{"action_About", "about"},
    ActionIcon{"actionCheck_for_Updates", "update"},
    ActionIcon{"actionNext_Message", "down"},
    ActionIcon{"actionPrevious_Message", "up"},
    ActionIcon{"action_Import_File", "import"},
    ActionIcon{"actionLoad_CiA_301", "library"},
    ActionIcon{"actionLoad_CiA_302", "library"},
    ActionIcon{"actionChangelog", "news"},
    ActionIcon{"actionAbout_Qt", "about"},
};

/// The largest part of `wanted` that fits, moved as far as it has to be. The title bar, whose
/// height nobody knows before the window is shown, has its place above.
QRect fitted(const QRect &wanted, QRect available, int titleBar)
{
    available.setTop(available.top() + titleBar);
    QRect result(wanted.topLeft() + QPoint(0, titleBar), wanted.size().boundedTo(available.size()));
    result.moveRight(qMin(result.right(), available.right()));
    result.moveBottom(qMin(result.bottom(), available.bottom()));
    result.moveLeft(qMax(result.left(), available.left()));
    result.moveTop(qMax(result.top(), available.top()));
    return result.translated(0, -titleBar);
}

} // namespace

VxmMainWindow::VxmMainWindow(const StartOptions &options, QWidget *parent)
    : QMainWindow(parent), ui(std::make_unique<Ui::VxmMainWindow>()), m_options(options),
      m_networkToolMode(options.networkTool)
{
    ui->setupUi(this);
    m_lineBox = new LineBox(*ui->mpSelectLine);
    decorate();
    m_editing = new EditController({{ui->actionCut, BaseMainForm::Cut},
                                    {ui->actionCopy, BaseMainForm::Copy},
                                    {ui->actionPaste, BaseMainForm::Paste},
                                    {ui->actionDelete, BaseMainForm::Delete},
                                    {ui->actionDuplicate, BaseMainForm::Duplicate}},
                                   this);
    makePages();
    makeUndo();
    makeGenerator();
    connectOutputPage();
    makeHelp();
    restoreGeometryOfUser();

    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(refreshMilliseconds);
    connect(&m_refreshTimer, &QTimer::timeout, this, &VxmMainWindow::refreshLines);
    connect(ui->mpSelectLine, &QComboBox::activated, this, &VxmMainWindow::handleLineChanged);
    connect(ui->toolBox, &QToolBox::currentChanged, this, &VxmMainWindow::newCurrentTabActivated);
    connect(ui->menuRecent_Projects, &QMenu::aboutToShow, this, &VxmMainWindow::fillRecentProjects);
    connect(ui->menuExample_Projects, &QMenu::aboutToShow, this,
            &VxmMainWindow::fillExampleProjects);
    connect(ui->menuFile_Viewer, &QMenu::aboutToShow, this, &VxmMainWindow::createFileViewerMenu);
    leaveProjectPath();
}

VxmMainWindow::~VxmMainWindow()
{
    // Their last signals are about actions that are still there now.
    delete m_undoManager;
    delete m_editing;
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
    ui->menuExport->setIcon(LineIcon::icon(QStringLiteral("export")));
    for (QAction *action : findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly))
        action->setToolTip(GuiHelper::withShortcut(action->toolTip(), action->shortcut()));
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
    m_lineBox->show(line);
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
    // The box puts each page into a frame that scrolls, and that shows nothing of having the focus.
    for (auto *frame : ui->toolBox->findChildren<QScrollArea *>(Qt::FindDirectChildrenOnly))
        frame->setFocusPolicy(Qt::NoFocus);
    const int kept = former != nullptr ? ui->toolBox->indexOf(former) : -1;
    ui->toolBox->setCurrentIndex(kept >= 0 ? kept : 0);
    setCurrentPage(qobject_cast<BaseMainForm *>(ui->toolBox->currentWidget()));
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
    setCurrentPage(page);
}

void VxmMainWindow::setCurrentPage(BaseMainForm *page)
{
    m_currentPage = page;
    m_editing->setPage(page);
}

void VxmMainWindow::updateLinesComboBox()
{
    QList<LineBox::Line> lines;
    for (const quint8 line : projectLines())
        lines.append({line, lineLabel(line)});
    m_lineBox->fill(lines, m_line);
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
    if (m_line != 0)
        selectLine(0);
    if (m_currentPage != nullptr)
        m_currentPage->setFocus(Qt::OtherFocusReason);
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
    // The title of a window that another tool has started has no place for the mark.
    if (windowTitle().contains(modifiedMark))
        setWindowModified(modified);
    const QFont::Style style = modified ? QFont::StyleItalic : QFont::StyleNormal;
    QFont font = ui->lblPath->font();
    if (font.style() == style)
        return;
    font.setStyle(style);
    ui->lblPath->setFont(font);
    ui->lblProject->setText(modified ? QStringLiteral("Project (modified):")
                                     : QStringLiteral("Project:"));
    updateStartPage();
}

void VxmMainWindow::storePendingInput()
{
    emit saveRequest();
    if (m_currentPage != nullptr)
        m_currentPage->saveData();
}

void VxmMainWindow::updateTitle()
{
    updateStartPage();
    if (m_hasToolTitle)
        return;
    if (m_projectBaseName.isEmpty()) {
        setWindowTitle(GuiHelper::boxTitle());
        return;
    }
    // In a name the mark stands for itself when it is doubled.
    QString name = m_projectBaseName;
    name.replace(modifiedMark, modifiedMark + modifiedMark);
    setWindowTitle(name + modifiedMark + QStringLiteral(" - ") + GuiHelper::boxTitle());
    setWindowModified(isModified());
}

void VxmMainWindow::setToolTitle(const QString &title)
{
    m_hasToolTitle = true;
    setWindowModified(false);
    setWindowTitle(title);
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
    m_editing->setPaused(busy);
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
    if (position.isValid()) {
        move(position.toPoint());
        bringOntoScreen();
    }
    fitOntoScreen(position.isValid());
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

/// The screen may have become smaller since the geometry was saved. Without a position of its own
/// the window is placed by the desktop.
void VxmMainWindow::fitOntoScreen(bool hasPosition)
{
    const QScreen *screen = hasPosition ? QGuiApplication::screenAt(pos()) : nullptr;
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this);
    const QRect place = fitted(QRect(pos(), size()), screen->availableGeometry(), titleBar);
    resize(place.size());
    if (hasPosition)
        move(place.topLeft());
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
