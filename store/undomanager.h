#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <atomic>
#include <memory>

class ObjectDataBase;

/// Undo and redo of every change of a project, whoever made it, without command objects.
///
/// A step is whatever was written to the store in one burst: 500 ms after the last write the
/// manager takes a snapshot, a complete copy of the database; undo restores the one before it. The
/// snapshots lie in a folder of the running process and go with the manager.
///
/// How many steps can be undone is the user setting `undomaxdepth` of the group "General" (default
/// 20, at least 1), which also bounds the disk use: one snapshot more than steps, undone ones
/// included.
///
/// While a thread holds the store's block, as an importer does, no step is taken and no snapshot
/// either; what was written meanwhile becomes one step behind the block.
///
/// Lives on the main thread, as the store it is attached to; writes of other threads are heard of
/// through queued signals. Shares the store with its other owners.
///
/// Errors: a snapshot that can't be taken (another thread's statements did not finish in time, the
/// disk is full) is logged and ends undo for this store until the next `setDatabase`; the newest
/// snapshot is kept for `restoreLastGood`. A step whose
/// snapshot can't be restored is logged and changes nothing; the store's `lastErrorText` says why.
class UndoManager : public QObject
{
    Q_OBJECT

public:
    /// Nothing is recorded and no step is taken for as long as the value lives. The manager
    /// outlives it.
    class Suspension
    {
    public:
        explicit Suspension(UndoManager &manager) : m_manager(manager) { m_manager.beginSuspend(); }
        ~Suspension() { m_manager.endSuspend(); }
        Suspension(const Suspension &) = delete;
        Suspension &operator=(const Suspension &) = delete;

    private:
        UndoManager &m_manager;
    };

    /// Deletes what runs that are gone have left behind more than a week ago.
    explicit UndoManager(QObject *parent = nullptr);
    /// Deletes all snapshots.
    ~UndoManager() override;

    /// Forgets the steps of the store before and records those of this one from its present state
    /// on. Null only forgets.
    void setDatabase(const std::shared_ptr<ObjectDataBase> &store);
    /// Suspensions nest; writes during one are part of no step. An edit from before it that has no
    /// snapshot yet gets it afterwards.
    void beginSuspend();
    void endSuspend();
    [[nodiscard]] bool canUndo() const { return m_undoStack.size() > 1; }
    [[nodiscard]] bool canRedo() const { return !m_redoStack.isEmpty(); }
    /// Somebody, such as an importer, has the store for himself, so that no step is possible now.
    [[nodiscard]] bool isBlocked() const { return m_blocked; }
    /// Names the store's present state for as long as it can be stepped back to; empty while there
    /// are edits that have no snapshot yet.
    [[nodiscard]] QString currentState() const;
    /// The newest state that has a snapshot, as the path of that; empty if there is none. It
    /// outlives the end of undo by a failed snapshot.
    [[nodiscard]] QString lastGoodSnapshot() const;
    /// Takes a store that `isDamaged` back to that state. What was written since then is lost, and
    /// so are all steps. False, with the reason in the store's `lastErrorText`, if it can't.
    bool restoreLastGood();
    /// Forgets all steps.
    void clear();

public slots:
    /// One step back; edits that have no snapshot yet are the step. Ignored while suspended, while
    /// the store's writes are blocked, as they are during a generation, and while an importer has
    /// the store for itself.
    void undo();
    /// One step forward; ignored as undo is.
    void redo();
    /// Something was written to the store.
    void handleDatabaseWrite();
    /// The burst of writes is over: makes it a step.
    void handleDebounceTimeout();

signals:
    void canUndoChanged(bool canUndo);
    void canRedoChanged(bool canRedo);
    /// There is no room for another step; the oldest one was dropped.
    void historyLimitReached();
    /// Undo or redo has replaced the store's content.
    void restored();
    /// A snapshot could not be taken: there is no undo until the next `setDatabase`.
    void switchedOff();

private:
    bool takeSnapshot();
    [[nodiscard]] bool mayStep() const;
    void handleBlock(bool block);
    /// Restores the last snapshot of `target`; logs a failure.
    bool restoreLast(const QStringList &target);
    void tellState();
    static void deleteFiles(QStringList &stack);

    std::shared_ptr<ObjectDataBase> m_store;
    QStringList m_undoStack; ///< oldest first; the last one is the state of the store now
    QStringList m_redoStack; ///< what undo has left, last undone last
    QStringList m_lastGood;  ///< one at most: what is kept when undo has ended
    QTimer m_debounceTimer;
    QString m_folder;
    int m_counter = 0; ///< number of the newest snapshot
    int m_suspendCount = 0;
    int m_maxDepth = 1;
    std::atomic<bool> m_blocked{false}; ///< somebody has the store for himself
    bool m_ownBlock = false;            ///< that of a snapshot or a step
    bool m_pending = false;             ///< written to, and no snapshot taken of it yet
    bool m_disabled = false;            ///< a snapshot failed
};
