#include "app/vxmmainwindow.h"

#include "app/recentprojects.h"
#include "app/versionnotes.h"
#include "canopen/linetype.h"
#include "gui/basemainform.h"
#include "gui/guihelper.h"
#include "resources/templates/projecttemplates.h"
#include "store/edition.h"
#include "store/projectconverter.h"
#include "store/undomanager.h"
#include "store/usersettings.h"
#include "tools/projectdiffdialog.h"
#include "ui_vxmmainwindow.h"

#include <QApplication>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMimeData>
#include <QScopeGuard>
#include <QScopedValueRollback>

#include <array>
#include <cstdio>

namespace {

constexpr int finishOpenMilliseconds = 10;
constexpr int messageMilliseconds = 5000;
const QString projectFilter = QStringLiteral("VXM Projects (*.vxmp)");
const QString oldFilter = QStringLiteral("old project files (*.db)");
const QString textFilter = QStringLiteral("VXMT Projects (*.vxmt)");
const QString saveFailed = QStringLiteral("Cannot save project file.");
const QString filterSeparator = QStringLiteral(";;");

/// Objects of the template that a line without CANopen doesn't have.
constexpr std::array<quint16, 5> canopenOnlyObjects{0x1000, 0x1001, 0x1017, 0x1018, 0x1200};

/// The wait cursor for as long as the value lives.
class WaitCursor
{
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor &) = delete;
    WaitCursor &operator=(const WaitCursor &) = delete;
};

QString templatePath()
{
    return Edition::isJ1939()
               ? QString(ProjectTemplates::j1939)
               : QCoreApplication::applicationDirPath() + QStringLiteral("/data/mt.data");
}

bool isTextProject(const QString &path)
{
    return path.endsWith(QLatin1String(".vxmt"), Qt::CaseInsensitive);
}

bool isDatabaseProject(const QString &path)
{
    return path.endsWith(QLatin1String(".vxmp"), Qt::CaseInsensitive);
}

/// The one project among dropped files; empty if there is none.
QString droppedProject(const QMimeData *data)
{
    for (const QUrl &url : data->urls()) {
        const QString path = url.toLocalFile();
        if (isTextProject(path) || isDatabaseProject(path))
            return path;
    }
    return {};
}

void convertProject(ObjectDataBase &store)
{
    ProjectConverter converter(&store);
    converter.doGenericCorrection();
    converter.doStackPathCorrection();
    if (Edition::isEnergyBus())
        converter.doEnergyBusCorrection();
}

void convertSignals(ObjectDataBase &store)
{
    ProjectConverter converter(&store);
    if (Edition::isCan())
        converter.doCanCorrection();
    if (Edition::isCan() || Edition::isJ1939())
        converter.doJ1939Correction();
}

/// What every project that is opened or made has from then on.
void noteInitStructure(ObjectDataBase &store)
{
    store.setGeneralSetting(QStringLiteral("new_init_structure"), QStringLiteral("1"));
}

/// The reason why the template could not be opened; empty if it was. Whatever the store held is
/// gone in both cases.
QString openTemplate(ObjectDataBase &store)
{
    if (store.openDataBase(templatePath(), true))
        return {};
    const QString error = store.lastErrorText();
    store.createNewDataBase();
    return error.isEmpty() ? QStringLiteral("%1 is no project.").arg(templatePath()) : error;
}

/// Gives line 0 of a new project its protocols. What belongs to CANopen alone goes with it.
void applyLineZeroType(ObjectDataBase &store, int type)
{
    if (type == LineType::Unknown)
        return;
    store.setGeneralSetting(QStringLiteral("line0type"), QString::number(type));
    if (LineType::of(type).hasCANopen)
        return;
    for (const quint16 index : canopenOnlyObjects) {
        if (store.indexExists(0, index))
            store.deleteIndex(0, index);
    }
}

/// A new project of the running edition; gives the reason why it has no template. Without a type
/// line 0 is what the edition makes of it.
QString makeNewProject(ObjectDataBase &store, int type)
{
    QString error = openTemplate(store);
    applyLineZeroType(store, type);
    store.setMiscSetting(QStringLiteral("CreateToolVersion"),
                         QCoreApplication::applicationVersion());
    if (store.getLineType(0) == LineType::Unknown) {
        store.setGeneralSetting(QStringLiteral("line0type"),
                                QString::number(Edition::defaultLineType()));
    }
    noteInitStructure(store);
    return error;
}

} // namespace

QString VxmMainWindow::folderOfDialogs()
{
    const QString folder =
        UserSettings::general(QStringLiteral("projectpath"), QStringLiteral("~")).toString();
    return folder == u"~" ? QDir::homePath() : folder;
}

void VxmMainWindow::showError(const QString &text, const QString &informativeText)
{
    GuiHelper::showMessageBox(this, GuiHelper::boxTitle(), text, informativeText, QMessageBox::Ok,
                              QMessageBox::Critical);
}

// --- New ----------------------------------------------------------------------------------------

void VxmMainWindow::on_actionNew_Project_triggered()
{
    if (closeCheck())
        newProject(ProtocolQuestion::Ask);
}

void VxmMainWindow::newProject()
{
    newProject(ProtocolQuestion::Ask);
}

void VxmMainWindow::newProjectUnasked()
{
    newProject(ProtocolQuestion::Skip);
}

void VxmMainWindow::newProject(ProtocolQuestion question)
{
    const QScopedValueRollback loading(m_loading, true);
    const UndoManager::Suspension suspension(*m_undoManager);
    const bool asks = Edition::isCan() && question == ProtocolQuestion::Ask;
    m_newProjectType = asks ? askLineType(QStringLiteral("Select CAN protocol for line 0:"))
                            : int(LineType::Unknown);
    const QString error = makeNewProject(*m_database, m_newProjectType);
    if (!error.isEmpty())
        showError(QStringLiteral("Cannot create new project file."), error);
    leaveProjectPath();
    selectLine(0);
    updateLinesComboBox();
    setModified(false);
    attachUndo();
}

// --- Open ---------------------------------------------------------------------------------------

void VxmMainWindow::on_actionOpen_Project_triggered()
{
    const QString path = GuiHelper::openFileName(
        this, QStringLiteral("Open Project"), folderOfDialogs(),
        QStringList{projectFilter, oldFilter, textFilter}.join(filterSeparator));
    if (!path.isEmpty() && closeCheck())
        openProject(path);
}

bool VxmMainWindow::openProject(const QString &givenPath)
{
    qDebug() << "open project" << givenPath;
    const QScopedValueRollback loading(m_loading, true);
    // If the file can't be opened, the former project keeps its steps and gets no new one.
    const UndoManager::Suspension suspension(*m_undoManager);
    const QString path = givenPath.isEmpty() ? givenPath : QFileInfo(givenPath).absoluteFilePath();
    if (!openStore(path))
        return false;
    if (!m_networkToolMode && !acceptsForeignChanges()) {
        newProject(ProtocolQuestion::Skip);
        return false;
    }
    convertProject(*m_database);
    if (Edition::isEnergyBus()) {
        const QString saved = m_database->getMiscSetting(QStringLiteral("SaveToolVersion"));
        if (VersionNotes::isOlder(saved, QCoreApplication::applicationVersion())) {
            GuiHelper::showMessageBox(this, GuiHelper::boxTitle(),
                                      VersionNotes::reapplyEnergyBus());
        }
    } else {
        showVersionNotes(path);
    }
    convertSignals(*m_database);
    takeProjectPath(path);
    m_savedHere = false;
    noteInitStructure(*m_database);
    selectLine(0, true);
    updateLinesComboBox();
    setModified(false);
    attachUndo();
    QTimer::singleShot(finishOpenMilliseconds, this, &VxmMainWindow::finishOpenProcedure);
    return true;
}

bool VxmMainWindow::openStore(const QString &path)
{
    const QString message = QStringLiteral("Cannot open project file %1.").arg(path);
    if (!isTextProject(path) && !isDatabaseProject(path)) {
        showError(message, QStringLiteral("A project file ends in .vxmp or .vxmt."));
        return false;
    }
    bool opened = false;
    {
        const WaitCursor cursor;
        opened = m_database->openDataBase(path, true);
    }
    if (opened)
        return true;
    const QString error = m_database->lastErrorText();
    showError(message, error.isEmpty() ? QStringLiteral("The file is no project.") : error);
    return false;
}

bool VxmMainWindow::acceptsForeignChanges()
{
    if (!m_database->wasExternallyModified())
        return true;
    return GuiHelper::showMessageBox(
               this,
               {.title = QCoreApplication::applicationName(),
                .text = QStringLiteral("This project file has been modified outside of the tool."),
                .informativeText =
                    QStringLiteral("The modification has been recorded in the project "
                                   "file.\n\nOpen the project anyway?"),
                .buttons = QMessageBox::Yes | QMessageBox::No,
                .icon = QMessageBox::Warning,
                .defaultButton = QMessageBox::Yes,
                .extraButtons = {}}) != QMessageBox::No;
}

void VxmMainWindow::showVersionNotes(const QString &path)
{
    constexpr int notedMajor = 3;
    const QString saved = m_database->getMiscSetting(QStringLiteral("SaveToolVersion"));
    const VersionNotes::Version version = VersionNotes::parse(saved);
    if (saved.isEmpty() || version.major != notedMajor)
        return;
    const QString note = VersionNotes::missingStackFiles(version.minor, Edition::isCANopen());
    if (!note.isEmpty() && !m_options.skipVersionNotes) {
        GuiHelper::showMessageBox(this, GuiHelper::boxTitle(), note);
        m_database->setMiscSetting(QStringLiteral("PreviousToolVersion"), saved);
    }
    if (!m_networkToolMode)
        keepVersion3Copy(path);
}

void VxmMainWindow::keepVersion3Copy(const QString &path)
{
    const QString copy = path + QStringLiteral(".bak_v3");
    if (QFileInfo::exists(copy))
        return;
    if (!QFile::copy(path, copy)) {
        qDebug() << "cannot copy" << path << "to" << copy;
        return;
    }
    GuiHelper::showMessageBox(this, GuiHelper::boxTitle(), VersionNotes::copyKept(copy, path));
}

void VxmMainWindow::leaveProjectPath()
{
    m_projectBaseName = QStringLiteral("newproject");
    ui->lblPath->setText(QStringLiteral("new project"));
    m_projectDirectory.clear();
    m_projectFilePath.clear();
    updateTitle();
}

void VxmMainWindow::takeProjectPath(const QString &path)
{
    const QFileInfo file(path);
    m_projectDirectory = file.absolutePath();
    m_projectBaseName = file.completeBaseName();
    m_projectFilePath = file.absoluteFilePath();
    ui->lblPath->setText(QDir::toNativeSeparators(m_projectFilePath));
    updateTitle();
    setModified(false);
    UserSettings::setGeneral(QStringLiteral("projectpath"), m_projectDirectory);
    UserSettings::setGeneral(QStringLiteral("lastproject"), m_projectFilePath);
    RecentProjects::add(m_projectFilePath);
}

void VxmMainWindow::finishOpenProcedure()
{
    setActionEnabled("action_Import_File", true);
    statusBar()->showMessage(QStringLiteral("%1 is open.").arg(m_projectBaseName),
                             messageMilliseconds);
    if (isVisible() && m_currentPage != nullptr)
        m_currentPage->setFocus(Qt::OtherFocusReason);
}

void VxmMainWindow::fillRecentProjects()
{
    ui->menuRecent_Projects->clear();
    for (const RecentProjects::Entry &entry : RecentProjects::entries()) {
        // An ampersand in a path is none of a menu's mnemonics.
        QString label = QDir::toNativeSeparators(entry.path);
        label.replace(u'&', QStringLiteral("&&"));
        QAction *action =
            ui->menuRecent_Projects->addAction(label, this, &VxmMainWindow::openRecent);
        action->setData(entry.path);
        action->setEnabled(QFileInfo::exists(entry.path));
    }
    if (ui->menuRecent_Projects->isEmpty())
        ui->menuRecent_Projects->addAction(QStringLiteral("No projects yet"))->setEnabled(false);
}

void VxmMainWindow::openRecent()
{
    const auto *action = qobject_cast<QAction *>(sender());
    if (action != nullptr && closeCheck())
        openProject(action->data().toString());
}

void VxmMainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!m_busy && !droppedProject(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void VxmMainWindow::dropEvent(QDropEvent *event)
{
    const QString path = droppedProject(event->mimeData());
    if (path.isEmpty() || m_busy)
        return;
    event->acceptProposedAction();
    if (closeCheck())
        openProject(path);
}

// --- Save and close -----------------------------------------------------------------------------

void VxmMainWindow::warnOfUnappliedEnergyBus()
{
    const QString key = QStringLiteral("modificationWithoutApply");
    if (!Edition::isEnergyBus() || m_database->getEnergyBusSetting(key) != u"1")
        return;
    GuiHelper::showMessageBox(this, GuiHelper::boxTitle(),
                              QStringLiteral("The EnergyBus configuration has not yet been "
                                             "applied into the object dictionary."),
                              QString(), QMessageBox::Ok, QMessageBox::Warning);
}

/// An empty path stands for the project's own. What goes wrong is told here.
bool VxmMainWindow::saveTo(const QString &path)
{
    {
        const WaitCursor cursor;
        const UndoManager::Suspension suspension(*m_undoManager);
        if (m_database->saveDatabase(path))
            return true;
    }
    const QString reason = m_database->lastErrorText();
    // A batch run has nobody who could decide.
    const bool hasChoice = m_database->isDamaged() && !m_options.hidden &&
                           !m_undoManager->lastGoodSnapshot().isEmpty();
    // A box of a hidden run that has a display may wait for somebody who isn't there.
    if (m_options.hidden && GuiHelper::isAttended())
        std::fprintf(stderr, "%s %s\n", qUtf8Printable(saveFailed), qUtf8Printable(reason));
    if (!hasChoice)
        showError(saveFailed, reason);
    return hasChoice && wantsLastGoodState(reason) && saveLastGoodState(path);
}

bool VxmMainWindow::saveLastGoodState(const QString &path)
{
    {
        const WaitCursor cursor;
        const bool restored = m_undoManager->restoreLastGood();
        const UndoManager::Suspension suspension(*m_undoManager);
        if (restored && m_database->saveDatabase(path))
            return true;
    }
    showError(saveFailed, m_database->lastErrorText());
    return false;
}

/// A broken working copy is never saved. What can be had instead is the project as it was when the
/// last undo step was kept.
bool VxmMainWindow::wantsLastGoodState(const QString &reason)
{
    const QDateTime time = QFileInfo(m_undoManager->lastGoodSnapshot()).lastModified();
    const QString offer = QStringLiteral("%1\n\nThe project can be saved as it was at %2. What was "
                                         "changed since then is lost.")
                              .arg(reason, QLocale().toString(time.time(), QLocale::ShortFormat));
    return GuiHelper::showMessageBox(
               this, {.title = GuiHelper::boxTitle(),
                      .text = saveFailed,
                      .informativeText = offer,
                      .buttons = QMessageBox::Cancel,
                      .icon = QMessageBox::Critical,
                      .defaultButton = QMessageBox::Cancel,
                      .extraButtons = {{QStringLiteral("Save Last Good State"),
                                        QMessageBox::AcceptRole}}}) == GuiHelper::firstExtraButton;
}

void VxmMainWindow::on_actionSave_Project_triggered()
{
    if (m_projectDirectory.isEmpty()) {
        on_actionSave_Project_as_triggered();
        return;
    }
    storePendingInput();
    warnOfUnappliedEnergyBus();
    if (!saveStore(QString()))
        return;
    setModified(false);
    noteSavedState();
}

/// Saves to a file, or to the project's own for an empty path; tells how that went.
bool VxmMainWindow::saveStore(const QString &path)
{
    // The edits up to now are the step that a later undo comes back to.
    m_undoManager->handleDebounceTimeout();
    if (!saveTo(path))
        return false;
    m_savedHere = true;
    const QFileInfo file(m_database->projectPath());
    statusBar()->showMessage(tr("%1 is saved.").arg(file.fileName()), messageMilliseconds);
    return true;
}

void VxmMainWindow::on_actionSave_Project_as_triggered()
{
    storePendingInput();
    warnOfUnappliedEnergyBus();
    const QString folder =
        m_projectFilePath.isEmpty()
            ? folderOfDialogs() + u'/' + m_projectBaseName + QStringLiteral(".vxmp")
            : m_projectFilePath;
    const QString path =
        GuiHelper::saveFileName(this, QStringLiteral("Save Project"), folder,
                                QStringList{projectFilter, textFilter}.join(filterSeparator));
    if (path.isEmpty())
        return;
    if (!saveStore(path))
        return;
    takeProjectPath(path);
    attachUndo();
}

void VxmMainWindow::on_actionClose_Project_triggered()
{
    if (closeCheck())
        newProject(ProtocolQuestion::Skip);
}

/// The project as the file on disk holds it, or as a project that was never saved has begun; false,
/// with the reason, if the file can't be read.
bool VxmMainWindow::openSavedProject(ObjectDataBase &saved, QString &error) const
{
    if (m_projectFilePath.isEmpty()) {
        makeNewProject(saved, m_newProjectType);
        return true;
    }
    const bool opened = saved.openDataBase(m_projectFilePath, true);
    error = saved.lastErrorText();
    if (!opened || !error.isEmpty()) {
        saved.createNewDataBase();
        return false;
    }
    // The working state had the same corrections when it was opened. They are no modifications of
    // the user's.
    if (!m_savedHere) {
        convertProject(saved);
        convertSignals(saved);
        noteInitStructure(saved);
    }
    return true;
}

/// Compares the working state with the saved file. If that can't be read, everything is unsaved
/// and `readError` says why.
int VxmMainWindow::countModifications(QString &readError)
{
    const WaitCursor cursor;
    const auto saved = std::make_shared<ObjectDataBase>();
    const bool isReadable = openSavedProject(*saved, readError);
    if (m_projectDiff == nullptr)
        m_projectDiff = new ProjectDiffDialog(this);
    const int count = m_projectDiff->compare(m_database, saved, ui->lblPath->text());
    return isReadable ? count : qMax(1, count);
}

bool VxmMainWindow::closeCheck()
{
    if (m_database == nullptr)
        return true;
    storePendingInput();
    if (!isModified())
        return true;
    QString readError;
    const int count = countModifications(readError);
    // The saved project's store and its working file are kept no longer than the question.
    const auto release = qScopeGuard([this] { m_projectDiff->release(); });
    return count == 0 || askToSave(count, readError);
}

/// Whether the flow that replaces the project may go on.
bool VxmMainWindow::askToSave(int count, const QString &readError)
{
    QString question = QStringLiteral("Do you want to save your changes?");
    if (!readError.isEmpty()) {
        question.prepend(QStringLiteral("The saved project can't be read: %1\n\n").arg(readError));
    }
    const int answer = GuiHelper::showMessageBox(
        this,
        {.title = GuiHelper::boxTitle(),
         .text =
             QStringLiteral("The current project contains %1 unsaved modifications.").arg(count),
         .informativeText = question,
         .buttons = QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
         .icon = QMessageBox::Question,
         .defaultButton = QMessageBox::Save,
         .extraButtons = {{QStringLiteral("Show Details"), QMessageBox::ActionRole}}});
    switch (answer) {
    case QMessageBox::Discard:
        return true;
    case QMessageBox::Save:
        on_actionSave_Project_triggered();
        return !isModified();
    case GuiHelper::firstExtraButton:
        GuiHelper::execDialog(*m_projectDiff);
        return false;
    default:
        return false;
    }
}
