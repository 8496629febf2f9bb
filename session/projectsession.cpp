#include "session/projectsession.h"

#include "compare/projectcomparison.h"
#include "session/projecttemplate.h"
#include "session/versionnotes.h"
#include "store/edition.h"
#include "store/objectdatabase.h"
#include "store/projectconverter.h"
#include "store/undomanager.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QScopedValueRollback>

namespace {

// Both corrections are made whenever a project is opened, whatever its version.

void correctProject(ObjectDataBase &store)
{
    ProjectConverter converter(&store);
    converter.doGenericCorrection();
    converter.doStackPathCorrection();
    if (Edition::isEnergyBus())
        converter.doEnergyBusCorrection();
}

void correctSignals(ObjectDataBase &store)
{
    ProjectConverter converter(&store);
    if (Edition::isCan())
        converter.doCanCorrection();
    if (Edition::isCan() || Edition::isJ1939())
        converter.doJ1939Correction();
    ProjectTemplate::noteStructure(store);
}

/// The copy that version 3 can still open: made once, of the untouched file. Gives the note on it,
/// if it was made now.
QStringList keepVersion3Copy(const QString &path)
{
    const QString copy = path + QStringLiteral(".bak_v3");
    if (QFileInfo::exists(copy))
        return {};
    if (!QFile::copy(path, copy)) {
        qDebug() << "cannot copy" << path << "to" << copy;
        return {};
    }
    return {VersionNotes::copyKept(copy, path)};
}

} // namespace

ProjectSession::ProjectSession(QObject *parent) : QObject(parent), m_undo(new UndoManager(this)) {}

ProjectSession::~ProjectSession() = default;

void ProjectSession::setStore(const std::shared_ptr<ObjectDataBase> &store)
{
    m_store = store;
    attach();
}

/// The project that is there now is where undo ends, and needs no saving.
void ProjectSession::attach()
{
    m_undo->setDatabase(m_store);
    m_correctedState.clear();
    noteSavedState();
}

QString ProjectSession::folder() const
{
    return m_filePath.isEmpty() ? QString() : QFileInfo(m_filePath).absolutePath();
}

QString ProjectSession::baseName() const
{
    return m_filePath.isEmpty() ? QStringLiteral("newproject")
                                : QFileInfo(m_filePath).completeBaseName();
}

// --- New and open -------------------------------------------------------------------------------

QString ProjectSession::startNew(int lineType)
{
    const QScopedValueRollback loading(m_loading, true);
    const UndoManager::Suspension suspension(*m_undo);
    m_newLineType = lineType;
    m_filePath.clear();
    const QString error = ProjectTemplate::fill(*m_store, lineType);
    attach();
    return error;
}

bool ProjectSession::isProject(const QString &path)
{
    return path.endsWith(QLatin1String(".vxmt"), Qt::CaseInsensitive) ||
           path.endsWith(QLatin1String(".vxmp"), Qt::CaseInsensitive);
}

QString ProjectSession::open(const QString &path)
{
    if (!isProject(path))
        return QStringLiteral("A project file ends in .vxmp or .vxmt.");

    const QScopedValueRollback loading(m_loading, true);
    // If the file can't be opened, the former project keeps its steps and gets no new one.
    const UndoManager::Suspension suspension(*m_undo);
    if (!m_store->openDataBase(path, true)) {
        const QString error = m_store->lastErrorText();
        return error.isEmpty() ? QStringLiteral("The file is no project.") : error;
    }
    m_filePath = path;
    m_savedHere = false;
    return {};
}

QStringList ProjectSession::bringUpToDate(Notes notes)
{
    const QScopedValueRollback loading(m_loading, true);
    const UndoManager::Suspension suspension(*m_undo);
    correctProject(*m_store);
    const QStringList texts = versionNotes(notes);
    correctSignals(*m_store);
    attach();
    return texts;
}

QStringList ProjectSession::versionNotes(Notes notes)
{
    constexpr int notedMajor = 3;
    const QString saved = m_store->getMiscSetting(QStringLiteral("SaveToolVersion"));
    if (Edition::isEnergyBus()) {
        const bool older = VersionNotes::isOlder(saved, QCoreApplication::applicationVersion());
        return older ? QStringList{VersionNotes::reapplyEnergyBus()} : QStringList();
    }
    const VersionNotes::Version version = VersionNotes::parse(saved);
    if (saved.isEmpty() || version.major != notedMajor)
        return {};
    QStringList texts;
    const QString files = VersionNotes::missingStackFiles(version.minor, Edition::isCANopen());
    if (!files.isEmpty() && notes == Notes::All) {
        texts << files;
        m_store->setMiscSetting(QStringLiteral("PreviousToolVersion"), saved);
    }
    if (notes != Notes::None)
        texts << keepVersion3Copy(m_filePath);
    return texts;
}

// --- Save and close -----------------------------------------------------------------------------

QString ProjectSession::save(const QString &path)
{
    // The edits up to now are the step that a later undo comes back to.
    m_undo->handleDebounceTimeout();
    {
        const UndoManager::Suspension suspension(*m_undo);
        if (!m_store->saveDatabase(path)) {
            const QString error = m_store->lastErrorText();
            return error.isEmpty() ? QStringLiteral("The file can't be written.") : error;
        }
    }
    noteSave(path);
    return {};
}

bool ProjectSession::hasLastGoodState() const
{
    return m_store->isDamaged() && !m_undo->lastGoodSnapshot().isEmpty();
}

QDateTime ProjectSession::lastGoodTime() const
{
    return QFileInfo(m_undo->lastGoodSnapshot()).lastModified();
}

QString ProjectSession::saveLastGoodState(const QString &path)
{
    const bool restored = m_undo->restoreLastGood();
    const UndoManager::Suspension suspension(*m_undo);
    if (!restored || !m_store->saveDatabase(path))
        return m_store->lastErrorText();
    noteSave(path);
    return {};
}

void ProjectSession::noteSave(const QString &path)
{
    m_savedHere = true;
    if (path.isEmpty()) {
        noteSavedState();
    } else {
        m_filePath = QFileInfo(path).absoluteFilePath();
        attach();
    }
}

void ProjectSession::noteSavedState()
{
    const QString state = m_undo->currentState();
    m_savedState = state != m_correctedState ? state : QString();
}

void ProjectSession::noteCorrection()
{
    m_correctedState = m_undo->currentState();
    m_savedState.clear();
}

bool ProjectSession::isAtSavedState() const
{
    return !m_savedState.isEmpty() && m_undo->currentState() == m_savedState;
}

/// Puts the saved project into a store; the reason if it can't be read, and the store is empty.
QString ProjectSession::fillSaved(ObjectDataBase &saved) const
{
    if (m_filePath.isEmpty()) {
        // Without a template the project has begun empty, and so does this one.
        ProjectTemplate::fill(saved, m_newLineType);
        return {};
    }
    if (!saved.openDataBase(m_filePath, true)) {
        const QString error = saved.lastErrorText();
        saved.createNewDataBase();
        return error.isEmpty() ? QStringLiteral("The file is no project.") : error;
    }
    // The working state had the same corrections when it was opened. They are no modifications of
    // the user's.
    if (!m_savedHere) {
        correctProject(saved);
        correctSignals(saved);
    }
    return {};
}

ProjectSession::Unsaved ProjectSession::findUnsaved() const
{
    Unsaved result;
    result.saved = std::make_shared<ObjectDataBase>();
    result.readError = fillSaved(*result.saved);
    result.count = ProjectComparison(*m_store, *result.saved).differenceCount();
    if (!result.readError.isEmpty())
        result.count = qMax(1, result.count);
    return result;
}
