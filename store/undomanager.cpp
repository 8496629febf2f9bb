#include "store/undomanager.h"

#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QSettings>
#include <QStandardPaths>
#include <QThread>
#include <QVariant>

namespace {

constexpr int debounceMilliseconds = 500;
constexpr int defaultDepth = 20;
constexpr int daysKept = 7;

int maxDepthOfUser()
{
    const QSettings settings(
        QStringLiteral("tolvex"),
        QCoreApplication::instance()->property("AppNameWithVersion").toString());
    bool isNumber = false;
    const int depth =
        settings.value(QStringLiteral("General/undomaxdepth"), defaultDepth).toInt(&isNumber);
    return isNumber ? qMax(1, depth) : defaultDepth;
}

/// Crashed runs leave their folders behind. Those of runs that are still going on are younger.
void deleteOldFolders(const QString &dataFolder)
{
    const QDateTime oldest = QDateTime::currentDateTime().addDays(-daysKept);
    // A link could lead to anything; its target is none of ours.
    const QFileInfoList folders =
        QDir(dataFolder)
            .entryInfoList({QStringLiteral("undo_*")},
                           QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QFileInfo &folder : folders) {
        if (folder.lastModified() < oldest)
            QDir(folder.absoluteFilePath()).removeRecursively();
    }
}

} // namespace

UndoManager::UndoManager(QObject *parent) : QObject(parent), m_maxDepth(maxDepthOfUser())
{
    const QString dataFolder =
        QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir().mkpath(dataFolder);
    deleteOldFolders(dataFolder);
    m_folder = QStringLiteral("%1/undo_%2")
                   .arg(dataFolder, QString::number(QCoreApplication::applicationPid()));
    QDir().mkpath(m_folder);

    m_debounceTimer.setSingleShot(true);
    m_debounceTimer.setInterval(debounceMilliseconds);
    connect(&m_debounceTimer, &QTimer::timeout, this, &UndoManager::handleDebounceTimeout);
}

UndoManager::~UndoManager()
{
    clear();
    QDir(m_folder).removeRecursively();
}

void UndoManager::setDatabase(const std::shared_ptr<ObjectDataBase> &store)
{
    if (m_store != nullptr) {
        disconnect(m_store.get(), &ObjectDataBase::databaseWriteExecuted, this,
                   &UndoManager::handleDatabaseWrite);
        disconnect(m_store.get(), &ObjectDataBase::blockStateChanged, this,
                   &UndoManager::handleBlock);
    }
    clear();
    m_disabled = false;
    m_blocked = false;
    m_store = store;
    if (m_store != nullptr) {
        connect(m_store.get(), &ObjectDataBase::databaseWriteExecuted, this,
                &UndoManager::handleDatabaseWrite);
        // On the thread that blocks, so that no step can come between the block and the news of it.
        connect(m_store.get(), &ObjectDataBase::blockStateChanged, this, &UndoManager::handleBlock,
                Qt::DirectConnection);
        takeSnapshot();
        m_store->setWriteSignals(true);
    }
    tellState();
}

void UndoManager::beginSuspend()
{
    ++m_suspendCount;
}

void UndoManager::endSuspend()
{
    if (m_suspendCount == 0)
        return;
    if (--m_suspendCount == 0 && m_pending)
        m_debounceTimer.start();
}

/// Blocks don't nest: the end of our own would end that of an importer in the midst of its work.
void UndoManager::handleBlock(bool block)
{
    const bool isOurs = m_ownBlock && QThread::currentThread() == thread();
    if (isOurs)
        return;
    m_blocked = block;
    if (!block)
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (m_pending && m_suspendCount == 0)
                    m_debounceTimer.start();
            },
            Qt::QueuedConnection);
}

QString UndoManager::currentState() const
{
    return m_pending || m_undoStack.isEmpty() ? QString() : m_undoStack.constLast();
}

void UndoManager::clear()
{
    m_debounceTimer.stop();
    m_pending = false;
    deleteFiles(m_undoStack);
    deleteFiles(m_redoStack);
    tellState();
}

void UndoManager::handleDatabaseWrite()
{
    if (m_store == nullptr || m_suspendCount > 0 || m_disabled)
        return;
    if (!m_pending) {
        m_pending = true;
        // What was undone doesn't follow from the project any more.
        if (canRedo()) {
            deleteFiles(m_redoStack);
            tellState();
        }
    }
    m_debounceTimer.start();
}

void UndoManager::handleDebounceTimeout()
{
    if (!m_pending || m_suspendCount > 0 || m_blocked)
        return;
    m_pending = false;
    if (!takeSnapshot())
        return;
    // The last entry is the present state and no step.
    if (m_undoStack.size() - 1 > m_maxDepth) {
        QFile::remove(m_undoStack.takeFirst());
        emit historyLimitReached();
    }
    tellState();
}

void UndoManager::undo()
{
    if (!mayStep())
        return;
    if (m_pending) {
        m_debounceTimer.stop();
        handleDebounceTimeout();
    }
    if (!canUndo())
        return;
    {
        // The pages reload while the store is restored; that is no edit.
        const Suspension suspension(*this);
        const QString left = m_undoStack.takeLast();
        const bool done = restoreLast(m_undoStack);
        (done ? m_redoStack : m_undoStack).append(left);
        if (done)
            emit restored();
    }
    tellState();
}

void UndoManager::redo()
{
    if (!mayStep() || !canRedo())
        return;
    {
        const Suspension suspension(*this);
        const bool done = restoreLast(m_redoStack);
        if (done) {
            m_undoStack.append(m_redoStack.takeLast());
            emit restored();
        }
    }
    tellState();
}

bool UndoManager::takeSnapshot()
{
    ++m_counter;
    const QString path = QStringLiteral("%1/snap_%2.db").arg(m_folder, QString::number(m_counter));
    const QScopedValueRollback ownBlock(m_ownBlock, true);
    if (m_store->takeSnapshot(path)) {
        m_undoStack.append(path);
        return true;
    }
    qDebug() << Q_FUNC_INFO << "snapshot failed, undo disabled:" << m_store->lastErrorText();
    QFile::remove(path); // a full disk leaves half of it behind
    m_disabled = true;
    clear();
    emit switchedOff();
    return false;
}

bool UndoManager::mayStep() const
{
    return m_store != nullptr && m_suspendCount == 0 && !m_store->writesBlocked() && !m_blocked;
}

bool UndoManager::restoreLast(const QStringList &target)
{
    const QScopedValueRollback ownBlock(m_ownBlock, true);
    const bool done = m_store->restoreSnapshot(target.constLast());
    if (!done)
        qDebug() << Q_FUNC_INFO << "restore failed:" << m_store->lastErrorText();
    return done;
}

void UndoManager::tellState()
{
    emit canUndoChanged(canUndo());
    emit canRedoChanged(canRedo());
}

void UndoManager::deleteFiles(QStringList &stack)
{
    for (const QString &path : std::as_const(stack))
        QFile::remove(path);
    stack.clear();
}
