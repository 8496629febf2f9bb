#include "app/vxmmainwindow.h"

#include "app/editcontroller.h"
#include "app/generationcontroller.h"
#include "app/generatoroutputform.h"
#include "app/helpcontroller.h"
#include "app/importcontroller.h"
#include "app/linebox.h"
#include "app/linecontroller.h"
#include "app/pagetable.h"
#include "app/projectcontroller.h"
#include "app/projectmenus.h"
#include "app/undocontroller.h"
#include "app/windowgeometry.h"
#include "canopen/linetype.h"
#include "gui/editionicon.h"
#include "gui/guihelper.h"
#include "gui/lineicon.h"
#include "odeditor/objectdictionaryform.h"
#include "session/projectlines.h"
#include "store/projectsettings.h"
#include "store/undomanager.h"
#include "store/usersettings.h"
#include "ui_vxmmainwindow.h"

#include <QApplication>
#include <QDir>
#include <QScrollArea>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStatusBar>

#include <array>

namespace {

constexpr int refreshMilliseconds = 20;
constexpr int finishOpenMilliseconds = 10;
constexpr int pageShortcuts = 9;
const QString expertModeKey = QStringLiteral("expertmode");
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

} // namespace

VxmMainWindow::VxmMainWindow(const StartOptions &options, QWidget *parent)
    : QMainWindow(parent), ui(std::make_unique<Ui::VxmMainWindow>()), m_options(options)
{
    ui->setupUi(this);
    m_lineBox = new LineBox(*ui->mpSelectLine);
    decorate();
    makePages();
    makeControllers();
    connectControllers();
    connectMenus();
    connectOutputPage();
    connectDictionaryPage();
    makeExpertMode();
    WindowGeometry::restore(*this);

    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(refreshMilliseconds);
    connect(&m_refreshTimer, &QTimer::timeout, this, &VxmMainWindow::refreshLines);
    connect(ui->mpSelectLine, &QComboBox::activated, this, &VxmMainWindow::handleLineChanged);
    connect(ui->toolBox, &QToolBox::currentChanged, this, &VxmMainWindow::newCurrentTabActivated);
    showFileOfProject();
}

VxmMainWindow::~VxmMainWindow()
{
    // The pages go one by one, and nobody is there any more to whom the next one could be shown.
    disconnect(ui->toolBox, nullptr, this, nullptr);
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
        if (m_dictionaryForm == nullptr)
            m_dictionaryForm = qobject_cast<ObjectDictionaryForm *>(page.form);
        m_pages.append(page);
    }
}

void VxmMainWindow::makeControllers()
{
    m_session = std::make_unique<ProjectSession>();
    m_editing = std::make_unique<EditController>(
        QList<EditController::Command>{{ui->actionCut, BaseMainForm::Cut},
                                       {ui->actionCopy, BaseMainForm::Copy},
                                       {ui->actionPaste, BaseMainForm::Paste},
                                       {ui->actionDelete, BaseMainForm::Delete},
                                       {ui->actionDuplicate, BaseMainForm::Duplicate}},
        this);
    m_lines = std::make_unique<LineController>(*this);
    m_undo = std::make_unique<UndoController>(*this, *m_lines, *ui->actionUndo, *ui->actionRedo);
    m_projects = std::make_unique<ProjectController>(*this);
    m_generation = std::make_unique<GenerationController>(*this, *m_outputForm);
    m_imports = std::make_unique<ImportController>(*this);
    ui->action_Hel_p->setShortcutContext(Qt::ApplicationShortcut);
    m_help = std::make_unique<HelpController>(*this, *statusBar());
}

/// What the controllers tell comes to the slots of the window, whoever calls those besides.
void VxmMainWindow::connectControllers()
{
    connect(&m_session->undo(), &UndoManager::historyLimitReached, this,
            &VxmMainWindow::handleUndoLimitReached);
    connect(m_projects.get(), &ProjectController::fileChanged, this,
            &VxmMainWindow::showFileOfProject);
    connect(m_projects.get(), &ProjectController::opened, this, [this] {
        QTimer::singleShot(finishOpenMilliseconds, this, &VxmMainWindow::finishOpenProcedure);
    });

    const auto *generation = m_generation.get();
    connect(generation, &GenerationController::progressed, this, &VxmMainWindow::generatorProgress);
    connect(generation, &GenerationController::finished, this, &VxmMainWindow::generatorFinished);
    connect(generation, &GenerationController::corrected, this,
            &VxmMainWindow::projectCorrectionDone);
    connect(generation, &GenerationController::saveWanted, this,
            &VxmMainWindow::on_actionSave_Project_triggered);
    connect(generation, &GenerationController::reloadWanted, this, &VxmMainWindow::reloadPages);
    connect(generation, &GenerationController::instrumentFunctions, this,
            &VxmMainWindow::sigInstrumentFunctions);

    connect(m_imports.get(), &ImportController::progress, this, &VxmMainWindow::importPogress);
    connect(m_imports.get(), &ImportController::messageRead, this,
            &VxmMainWindow::handleCheckError);
    connect(m_imports.get(), &ImportController::standardObjectsReady, this,
            &VxmMainWindow::standardObjectsReady);
    connect(m_help.get(), &HelpController::answered, this, &VxmMainWindow::newVersion);

    connect(m_outputForm, &GeneratorOutputForm::gotoObject, this, &VxmMainWindow::handleGotoIndex);
    connect(m_outputForm, &GeneratorOutputForm::goToSubobj, this,
            &VxmMainWindow::handleGoToSubindex);
    connect(m_outputForm, &GeneratorOutputForm::searchRequest, this,
            &VxmMainWindow::searchRequestSlot);
}

void VxmMainWindow::connectMenus()
{
    connect(ui->menuRecent_Projects, &QMenu::aboutToShow, this, [this] {
        ProjectMenus::fillRecent(*ui->menuRecent_Projects);
        connectOpeners(*ui->menuRecent_Projects);
    });
    connect(ui->menuExample_Projects, &QMenu::aboutToShow, this, [this] {
        ProjectMenus::fillExamples(*ui->menuExample_Projects, [this](const QString &path) {
            m_projects->openExampleCopy(path);
        });
        connectOpeners(*ui->menuExample_Projects);
    });
    connect(ui->menuFile_Viewer, &QMenu::aboutToShow, this, &VxmMainWindow::createFileViewerMenu);
    for (int page = 0; page < pageShortcuts; ++page) {
        auto *shortcut = new QShortcut(QKeySequence(Qt::ALT | Qt::Key(Qt::Key_1 + page)), this);
        connect(shortcut, &QShortcut::activated, this, [this, page] {
            if (!m_busy && page < ui->toolBox->count())
                ui->toolBox->setCurrentIndex(page);
        });
    }
}

void VxmMainWindow::connectDictionaryPage()
{
    connect(m_dictionaryForm, &ObjectDictionaryForm::importWanted, this,
            &VxmMainWindow::on_action_Import_File_triggered);
    connect(this, &VxmMainWindow::standardObjectsReady, m_dictionaryForm,
            &ObjectDictionaryForm::libraryChanged);
}

/// Actions that carry a path open it.
void VxmMainWindow::connectOpeners(QMenu &menu)
{
    for (const QAction *action : menu.actions()) {
        if (action->data().isValid())
            connect(action, &QAction::triggered, this, &VxmMainWindow::openRecent);
    }
}

/// Pages are made before, so that they hear of it.
void VxmMainWindow::makeExpertMode()
{
    connect(ui->actionEnable_Expert_Mode, &QAction::toggled, this, [this](bool enabled) {
        UserSettings::setGeneral(expertModeKey, enabled);
        emit expertModeChanged(enabled);
    });
    ui->actionEnable_Expert_Mode->setChecked(UserSettings::general(expertModeKey, false).toBool());
}

void VxmMainWindow::setDatabase(const std::shared_ptr<ObjectDataBase> &database)
{
    if (m_session->sharedStore() != nullptr)
        disconnect(m_session->sharedStore().get(), nullptr, this, nullptr);
    connect(database.get(), &ObjectDataBase::updateNotify, this, &VxmMainWindow::projectModified);
    for (const Page &page : std::as_const(m_pages))
        page.form->setDatabase(database);
    m_session->setStore(database);
    updateLinesComboBox();
}

ObjectDataBase &VxmMainWindow::database() const
{
    return m_session->store();
}

void VxmMainWindow::setLibraryDatabase(const std::shared_ptr<ObjectDataBase> &database)
{
    m_imports->setLibrary(database);
    m_lines->setLibrary(database.get());
    for (const Page &page : std::as_const(m_pages)) {
        page.form->setContext({.project = nullptr,
                               .library = database,
                               .undo = &m_session->undo(),
                               .navigator = this});
    }
}

void VxmMainWindow::loadLibrary(const QString &profile)
{
    m_imports->loadLibrary(profile);
}

// --- Pages and lines ----------------------------------------------------------------------------

PageContext VxmMainWindow::pageContext() const
{
    PageContext context{.line = m_line};
    if (const auto &store = m_session->sharedStore(); store != nullptr) {
        context.lineType = store->getLineType(m_line);
        const SettingKey server = SettingKey::j1939(QStringLiteral("cia510serversupport"));
        context.hasSdoServer = ProjectSettings(*store).decimal(server) == 1;
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
    if (!showsPages(shown, context))
        fillToolBox(shown, context);
}

void VxmMainWindow::fillToolBox(const QList<Page> &pages, const PageContext &context)
{
    const QSignalBlocker blocker(ui->toolBox);
    QWidget *former = ui->toolBox->currentWidget();
    while (ui->toolBox->count() > 0) {
        QWidget *form = ui->toolBox->widget(0);
        ui->toolBox->removeItem(0);
        form->setParent(this);
        form->hide();
    }
    for (const Page &page : pages) {
        ui->toolBox->addItem(page.form, LineIcon::icon(QLatin1String(page.factory->icon)),
                             page.factory->label(context));
    }
    // The box puts each page into a frame that scrolls, and that shows nothing of having the focus.
    // Its bars are off, as pages scroll themselves: one that comes and goes by what the page needs
    // at the width that it leaves resizes the page without end.
    for (auto *frame : ui->toolBox->findChildren<QScrollArea *>(Qt::FindDirectChildrenOnly)) {
        frame->setFocusPolicy(Qt::NoFocus);
        frame->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        frame->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }
    // The start page stands on the page of the output.
    QWidget *wanted = former != nullptr ? former : m_outputForm;
    ui->toolBox->setCurrentIndex(std::max(0, ui->toolBox->indexOf(wanted)));
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
    for (const quint8 line : ProjectLines::of(database()))
        lines.append({line, ProjectLines::label(database(), line)});
    m_lineBox->fill(lines, m_line);
}

void VxmMainWindow::refreshLines()
{
    if (m_busy)
        return;
    const bool gone = !database().lineExists(m_line);
    if (gone)
        selectLine(0);
    updateLinesComboBox();
    if (!gone && database().getLineType(m_line) != m_shownLineType)
        rebuildToolBox();
}

// --- State of the project -----------------------------------------------------------------------

void VxmMainWindow::projectModified(ObjectDataBase::ChangeSet modification)
{
    if (m_session->isLoading())
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

void VxmMainWindow::showFileOfProject()
{
    const QString path = m_session->filePath();
    ui->lblPath->setText(path.isEmpty() ? QStringLiteral("new project")
                                        : QDir::toNativeSeparators(path));
    updateTitle();
}

void VxmMainWindow::updateTitle()
{
    updateStartPage();
    if (m_hasToolTitle)
        return;
    // In a name the mark stands for itself when it is doubled.
    QString name = m_session->baseName();
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
    m_undo->updateActions(); // a step may have come or gone meanwhile
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

void VxmMainWindow::showStatus(const QString &text, int milliseconds)
{
    statusBar()->showMessage(text, milliseconds);
}

void VxmMainWindow::appendOutput(const QString &text)
{
    m_outputForm->appendLogging(text);
}

void VxmMainWindow::reloadPages()
{
    ObjectDataBase::ChangeSet reload;
    reload.kind = ObjectDataBase::ProjectReplaced;
    for (const Page &page : std::as_const(m_pages))
        page.form->updateDataSlot(reload);
}

/// Brings the line and its object dictionary to the front.
bool VxmMainWindow::showDictionaryPage(quint8 line, const QString &what)
{
    if (m_busy)
        return false;
    if (!ProjectLines::of(database()).contains(line)) {
        showStatus(tr("The project has no line %1.").arg(line), 0);
        return false;
    }
    if (line != m_line) {
        storePendingInput();
        selectLine(line);
    }
    if (ui->toolBox->indexOf(m_dictionaryForm) < 0) {
        showStatus(tr("Line %1 has no CANopen object dictionary.").arg(line), 0);
        return false;
    }
    ui->toolBox->setCurrentWidget(m_dictionaryForm);
    showStatus(tr("%1 of line %2").arg(what).arg(line), 0);
    return true;
}

void VxmMainWindow::bringOntoScreen()
{
    WindowGeometry::bringOntoScreen(*this);
}
