#include "app/projectcontroller.h"

#include "app/exampleprojects.h"
#include "app/recentprojects.h"
#include "app/selectprotocoldialog.h"
#include "app/startoptions.h"
#include "app/waitcursor.h"
#include "app/windowcontext.h"
#include "gui/guihelper.h"
#include "store/edition.h"
#include "store/objectdatabase.h"
#include "store/usersettings.h"
#include "tools/projectdiffdialog.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QMimeData>
#include <QScopeGuard>
#include <QUrl>

#include <cstdio>

namespace {

const QString projectFilter = QStringLiteral("VXM Projects (*.vxmp)");
const QString oldFilter = QStringLiteral("old project files (*.db)");
const QString textFilter = QStringLiteral("VXMT Projects (*.vxmt)");
const QString saveFailed = QStringLiteral("Cannot save project file.");
const QString filterSeparator = QStringLiteral(";;");

} // namespace

ProjectController::ProjectController(WindowContext &context)
    : m_context(context), m_networkToolMode(context.options().networkTool)
{
}

ProjectSession &ProjectController::session() const
{
    return m_context.session();
}

QString ProjectController::folderOfDialogs()
{
    const QString folder =
        UserSettings::general(QStringLiteral("projectpath"), QStringLiteral("~")).toString();
    return folder == u"~" ? QDir::homePath() : folder;
}

// --- New ----------------------------------------------------------------------------------------

void ProjectController::newProject(ProtocolQuestion question)
{
    int type = LineType::Unknown;
    if (Edition::isCan() && question == ProtocolQuestion::Ask) {
        type = SelectProtocolDialog::ask(QStringLiteral("Select CAN protocol for line 0:"),
                                         m_context.widget());
    }
    const QString error = session().startNew(type);
    if (!error.isEmpty())
        m_context.showError(QStringLiteral("Cannot create new project file."), error);
    emit fileChanged();
    m_context.selectLine(0);
    m_context.updateLinesComboBox();
    m_context.setModified(false);
}

// --- Open ---------------------------------------------------------------------------------------

void ProjectController::openProject()
{
    const QString path = GuiHelper::openFileName(
        m_context.widget(), QStringLiteral("Open Project"), folderOfDialogs(),
        QStringList{projectFilter, oldFilter, textFilter}.join(filterSeparator));
    if (!path.isEmpty())
        replaceBy(path);
}

void ProjectController::replaceBy(const QString &path)
{
    if (closeCheck())
        openProject(path);
}

bool ProjectController::openProject(const QString &givenPath)
{
    qDebug() << "open project" << givenPath;
    const QString path = givenPath.isEmpty() ? givenPath : QFileInfo(givenPath).absoluteFilePath();
    QString error;
    {
        const WaitCursor cursor;
        error = session().open(path);
    }
    if (!error.isEmpty()) {
        m_context.showError(QStringLiteral("Cannot open project file %1.").arg(path), error);
        return false;
    }
    if (!m_networkToolMode && !acceptsForeignChanges()) {
        newProject(ProtocolQuestion::Skip);
        return false;
    }
    for (const QString &note : session().bringUpToDate(wantedNotes()))
        GuiHelper::showMessageBox(m_context.widget(), GuiHelper::boxTitle(), note);
    takeFile();
    m_context.selectLine(0, true);
    m_context.updateLinesComboBox();
    m_context.setModified(false);
    emit opened();
    return true;
}

bool ProjectController::acceptsForeignChanges()
{
    if (!session().store().wasExternallyModified())
        return true;
    return GuiHelper::showMessageBox(
               m_context.widget(),
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

ProjectSession::Notes ProjectController::wantedNotes() const
{
    if (m_networkToolMode)
        return ProjectSession::Notes::None;
    return m_context.options().skipVersionNotes ? ProjectSession::Notes::SkipStackFiles
                                                : ProjectSession::Notes::All;
}

/// The project has a file, which the user will look for again.
void ProjectController::takeFile()
{
    const QString path = session().filePath();
    UserSettings::setGeneral(QStringLiteral("projectpath"), session().folder());
    UserSettings::setGeneral(QStringLiteral("lastproject"), path);
    RecentProjects::add(path);
    emit fileChanged();
}

void ProjectController::openExampleCopy(const QString &examplePath)
{
    if (!closeCheck())
        return;
    const QFileInfo example(examplePath);
    const QString filter =
        QStringLiteral("%1 Projects (*.%2)").arg(example.suffix().toUpper(), example.suffix());
    const QString path =
        GuiHelper::saveFileName(m_context.widget(), tr("Copy Example Project to"),
                                QDir(folderOfDialogs()).filePath(example.fileName()), filter);
    if (path.isEmpty())
        return;
    const QString error = ExampleProjects::copyTo(examplePath, path);
    if (error.isEmpty())
        openProject(path);
    else
        m_context.showError(
            tr("Cannot copy the example to %1.").arg(QDir::toNativeSeparators(path)), error);
}

QString ProjectController::droppedProject(const QMimeData &data)
{
    for (const QUrl &url : data.urls()) {
        const QString path = url.toLocalFile();
        if (ProjectSession::isProject(path))
            return path;
    }
    return {};
}

// --- Save and close -----------------------------------------------------------------------------

void ProjectController::warnOfUnappliedEnergyBus()
{
    const QString key = QStringLiteral("modificationWithoutApply");
    if (!Edition::isEnergyBus() || session().store().getEnergyBusSetting(key) != u"1")
        return;
    GuiHelper::showMessageBox(m_context.widget(), GuiHelper::boxTitle(),
                              QStringLiteral("The EnergyBus configuration has not yet been "
                                             "applied into the object dictionary."),
                              QString(), QMessageBox::Ok, QMessageBox::Warning);
}

void ProjectController::save()
{
    if (session().filePath().isEmpty()) {
        saveAs();
        return;
    }
    m_context.storePendingInput();
    warnOfUnappliedEnergyBus();
    saveTo(QString());
}

void ProjectController::saveAs()
{
    m_context.storePendingInput();
    warnOfUnappliedEnergyBus();
    const QString proposal =
        session().filePath().isEmpty()
            ? folderOfDialogs() + u'/' + session().baseName() + QStringLiteral(".vxmp")
            : session().filePath();
    const QString path =
        GuiHelper::saveFileName(m_context.widget(), QStringLiteral("Save Project"), proposal,
                                QStringList{projectFilter, textFilter}.join(filterSeparator));
    if (!path.isEmpty() && saveTo(path))
        takeFile();
}

/// To a file, or to the project's own for an empty path; tells how that went.
bool ProjectController::saveTo(const QString &path)
{
    QString error;
    {
        const WaitCursor cursor;
        error = session().save(path);
    }
    if (!error.isEmpty() && !savesLastGoodState(path, error))
        return false;
    m_context.setModified(false);
    m_context.showStatus(tr("%1 is saved.").arg(QFileInfo(session().filePath()).fileName()));
    return true;
}

/// Tells of a save that failed. A broken working copy is never saved; what can be had instead is
/// the project as it was when the last undo step was kept.
bool ProjectController::savesLastGoodState(const QString &path, const QString &reason)
{
    const bool isHidden = m_context.options().hidden;
    // A box of a hidden run that has a display may wait for somebody who isn't there.
    if (isHidden && GuiHelper::isAttended())
        std::fprintf(stderr, "%s %s\n", qUtf8Printable(saveFailed), qUtf8Printable(reason));
    // A batch run has nobody who could decide.
    if (isHidden || !session().hasLastGoodState()) {
        m_context.showError(saveFailed, reason);
        return false;
    }
    if (!wantsLastGoodState(reason))
        return false;
    QString error;
    {
        const WaitCursor cursor;
        error = session().saveLastGoodState(path);
    }
    if (!error.isEmpty())
        m_context.showError(saveFailed, error);
    return error.isEmpty();
}

bool ProjectController::wantsLastGoodState(const QString &reason)
{
    const QTime time = session().lastGoodTime().time();
    const QString offer = QStringLiteral("%1\n\nThe project can be saved as it was at %2. What was "
                                         "changed since then is lost.")
                              .arg(reason, QLocale().toString(time, QLocale::ShortFormat));
    return GuiHelper::showMessageBox(m_context.widget(),
                                     {.title = GuiHelper::boxTitle(),
                                      .text = saveFailed,
                                      .informativeText = offer,
                                      .buttons = QMessageBox::Cancel,
                                      .icon = QMessageBox::Critical,
                                      .defaultButton = QMessageBox::Cancel,
                                      .extraButtons = {{QStringLiteral("Save Last Good State"),
                                                        QMessageBox::AcceptRole}}}) ==
           GuiHelper::firstExtraButton;
}

bool ProjectController::closeCheck()
{
    m_context.storePendingInput();
    if (!m_context.isModified())
        return true;
    ProjectSession::Unsaved unsaved;
    {
        const WaitCursor cursor;
        unsaved = session().findUnsaved();
    }
    return unsaved.count == 0 || askToSave(unsaved);
}

/// Whether the flow that replaces the project may go on.
bool ProjectController::askToSave(const ProjectSession::Unsaved &unsaved)
{
    QString question = QStringLiteral("Do you want to save your changes?");
    if (!unsaved.readError.isEmpty()) {
        question.prepend(
            QStringLiteral("The saved project can't be read: %1\n\n").arg(unsaved.readError));
    }
    const int answer = GuiHelper::showMessageBox(
        m_context.widget(),
        {.title = GuiHelper::boxTitle(),
         .text = QStringLiteral("The current project contains %1 unsaved modifications.")
                     .arg(unsaved.count),
         .informativeText = question,
         .buttons = QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
         .icon = QMessageBox::Question,
         .defaultButton = QMessageBox::Save,
         .extraButtons = {{QStringLiteral("Show Details"), QMessageBox::ActionRole}}});
    switch (answer) {
    case QMessageBox::Discard:
        return true;
    case QMessageBox::Save:
        save();
        return !m_context.isModified();
    case GuiHelper::firstExtraButton:
        showDetails(unsaved);
        return false;
    default:
        return false;
    }
}

void ProjectController::showDetails(const ProjectSession::Unsaved &unsaved)
{
    if (m_projectDiff == nullptr)
        m_projectDiff = new ProjectDiffDialog(m_context.widget());
    const QString file = session().filePath();
    m_projectDiff->compare(session().sharedStore(), unsaved.saved,
                           file.isEmpty() ? QStringLiteral("new project")
                                          : QDir::toNativeSeparators(file));
    // The saved project's store and its working file are kept no longer than the dialog.
    const auto release = qScopeGuard([this] { m_projectDiff->release(); });
    GuiHelper::execDialog(*m_projectDiff);
}
