#include "app/undocontroller.h"

#include "app/linecontroller.h"
#include "app/windowcontext.h"
#include "session/projectlines.h"
#include "session/projectsession.h"
#include "store/objectdatabase.h"
#include "store/undomanager.h"

#include <QAction>

struct UndoController::Step
{
    void (UndoManager::*take)();
    bool (UndoManager::*isPossible)() const;
    const char *done;
    const char *failed;
};

UndoController::UndoController(WindowContext &context, LineController &lines, QAction &undo,
                               QAction &redo)
    : m_context(context), m_lines(lines), m_undo(undo), m_redo(redo)
{
    const UndoManager *steps = &manager();
    connect(steps, &UndoManager::canUndoChanged, this, &UndoController::updateActions);
    connect(steps, &UndoManager::canRedoChanged, this, &UndoController::updateActions);
    connect(steps, &UndoManager::restored, this, &UndoController::handleRestored);
    connect(steps, &UndoManager::switchedOff, this, [this] {
        m_context.showStatus(tr("Undo is switched off until a project is opened: no copy of this "
                                "one could be made."),
                             0);
    });
    updateActions();
}

UndoManager &UndoController::manager() const
{
    return m_context.session().undo();
}

void UndoController::updateActions()
{
    m_undo.setEnabled(!m_context.isBusy() && manager().canUndo());
    m_redo.setEnabled(!m_context.isBusy() && manager().canRedo());
}

void UndoController::undo()
{
    take({&UndoManager::undo, &UndoManager::canUndo, "Undone.", "Cannot undo: %1"});
}

void UndoController::redo()
{
    take({&UndoManager::redo, &UndoManager::canRedo, "Redone.", "Cannot redo: %1"});
}

void UndoController::take(const Step &step)
{
    if (m_context.isBusy())
        return;
    // What is still being typed is the newest edit, and would be lost when the pages reload.
    m_context.storePendingInput();
    ObjectDataBase &store = m_context.session().store();
    const QList<quint8> formerLines = ProjectLines::of(store);
    bool done = false;
    const QMetaObject::Connection watch =
        connect(&manager(), &UndoManager::restored, this, [&done] { done = true; });
    (manager().*step.take)();
    disconnect(watch);
    if (done) {
        m_lines.showNewLine(formerLines);
        m_context.showStatus(QString::fromLatin1(step.done));
    } else if (manager().isBlocked()) {
        m_context.showStatus(QStringLiteral("The project is being changed. Try again later."));
    } else if ((manager().*step.isPossible)()) {
        m_context.showStatus(QString::fromLatin1(step.failed).arg(store.lastErrorText()), 0);
    }
}

void UndoController::handleRestored()
{
    // The store's notification has marked the project as modified. Back at what the file holds
    // there is nothing to save.
    if (m_context.session().isAtSavedState())
        m_context.setModified(false);
}
