#include "store/undomanager.h"

#include "store/objectdatabase.h"
#include "store/workingcopy.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QScopedValueRollback>
#include <QSettings>
#include <QThread>
#include <QVariant>

namespace {

constexpr int debounceMilliseconds = 500;
constexpr int defaultDepth = 20;

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

} // namespace

UndoManager::UndoManager(QObject *parent) : QObject(parent), m_maxDepth(maxDepthOfUser())
{
    WorkingCopy::deleteAbandoned();
    m_folder = WorkingCopy::reserveFolder(QLatin1String("undo_") +
                                          QString::number(QCoreApplication::applicationPid()));

    m_debounceTimer.setSingleShot(true);
    m_debounceTimer.setInterval(debounceMilliseconds);
    connect(&m_debounceTimer, &QTimer::timeout, this, &UndoManager::handleDebounceTimeout);
}

UndoManager::~UndoManager()
{
    clear();
    WorkingCopy::removeFolder(m_folder);
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
    deleteFiles(m_lastGood);
    tellState();
}

QString UndoManager::lastGoodSnapshot() const
{
    if (!m_lastGood.isEmpty())
        return m_lastGood.constLast();
    return m_undoStack.isEmpty() ? QString() : m_undoStack.constLast();
}

bool UndoManager::restoreLastGood()
{
    if (m_store == nullptr || lastGoodSnapshot().isEmpty())
        return false;
    {
        const Suspension suspension(*this);
        if (!restoreLast({lastGoodSnapshot()}))
            return false;
        // Nothing leads from there to the other states: all of them start anew.
        clear();
        m_disabled = false;
        takeSnapshot();
        emit restored();
    }
    tellState();
    return true;
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
    if (!m_folder.isEmpty() && m_store->takeSnapshot(path)) {
        m_undoStack.append(path);
        return true;
    }
    qDebug() << Q_FUNC_INFO << "snapshot failed, undo disabled:" << m_store->lastErrorText();
    QFile::remove(path); // a full disk leaves half of it behind
    m_disabled = true;
    // If the store is broken, this is all that is left of the project. It is no step.
    const QString lastGood = m_folder + QStringLiteral("/.lastgood.db");
    const bool isKept = !m_undoStack.isEmpty() && QFile::rename(m_undoStack.constLast(), lastGood);
    clear();
    if (isKept)
        m_lastGood.append(lastGood);
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
