#include "app/vxmmainwindow.h"
#include "store/undomanager.h"
#include "ui_vxmmainwindow.h"

#include <QStatusBar>

namespace {
constexpr int messageMilliseconds = 5000;
}

void VxmMainWindow::makeUndo()
{
    m_undoManager = new UndoManager(this);
    connect(m_undoManager, &UndoManager::canUndoChanged, this, &VxmMainWindow::updateUndoActions);
    connect(m_undoManager, &UndoManager::canRedoChanged, this, &VxmMainWindow::updateUndoActions);
    connect(m_undoManager, &UndoManager::historyLimitReached, this,
            &VxmMainWindow::handleUndoLimitReached);
    connect(m_undoManager, &UndoManager::switchedOff, this, [this] {
        statusBar()->showMessage(
            tr("Undo is switched off until a project is opened: no copy of this one could be "
               "made."));
    });
    connect(m_undoManager, &UndoManager::restored, this, &VxmMainWindow::projectRestored);
    updateUndoActions();
}

/// The project that is there now is where undo ends, and needs no saving.
void VxmMainWindow::attachUndo()
{
    m_undoManager->setDatabase(m_database);
    m_correctedState.clear();
    noteSavedState();
}

/// A step back to the state that is there now needs no saving. What a run has corrected is part of
/// no step: a step would come back without it.
void VxmMainWindow::noteSavedState()
{
    const QString state = m_undoManager->currentState();
    m_savedState = state != m_correctedState ? state : QString();
}

void VxmMainWindow::updateUndoActions()
{
    ui->actionUndo->setEnabled(!m_busy && m_undoManager->canUndo());
    ui->actionRedo->setEnabled(!m_busy && m_undoManager->canRedo());
}

void VxmMainWindow::on_actionUndo_triggered()
{
    takeUndoStep(&UndoManager::undo, &UndoManager::canUndo, QStringLiteral("Undone."),
                 QStringLiteral("Cannot undo: %1"));
}

void VxmMainWindow::on_actionRedo_triggered()
{
    takeUndoStep(&UndoManager::redo, &UndoManager::canRedo, QStringLiteral("Redone."),
                 QStringLiteral("Cannot redo: %1"));
}

void VxmMainWindow::takeUndoStep(void (UndoManager::*step)(),
                                 bool (UndoManager::*isPossible)() const, const QString &doneText,
                                 const QString &failedText)
{
    if (m_busy)
        return;
    // What is still being typed is the newest edit, and would be lost when the pages reload.
    storePendingInput();
    const QList<quint8> formerLines = projectLines();
    bool done = false;
    const QMetaObject::Connection watch =
        connect(m_undoManager, &UndoManager::restored, this, [&done] { done = true; });
    (m_undoManager->*step)();
    disconnect(watch);
    if (done) {
        showLineBeside(formerLines);
        statusBar()->showMessage(doneText, messageMilliseconds);
    } else if (m_undoManager->isBlocked()) {
        statusBar()->showMessage(QStringLiteral("The project is being changed. Try again later."),
                                 messageMilliseconds);
    } else if ((m_undoManager->*isPossible)()) {
        statusBar()->showMessage(failedText.arg(m_database->lastErrorText()));
    }
}

/// Goes to the line that a step has brought, as adding it did.
void VxmMainWindow::showLineBeside(const QList<quint8> &formerLines)
{
    updateLinesComboBox();
    const QList<quint8> lines = projectLines();
    if (!lines.isEmpty() && !formerLines.contains(lines.last()))
        selectLine(lines.last());
}

void VxmMainWindow::projectRestored()
{
    // The store's notification has marked the project as modified. Back at what the file holds
    // there is nothing to save.
    if (!m_savedState.isEmpty() && m_undoManager->currentState() == m_savedState)
        setModified(false);
}

void VxmMainWindow::handleUndoLimitReached()
{
    statusBar()->showMessage(
        QStringLiteral("Undo limit reached - the oldest undo step has been dropped."),
        messageMilliseconds);
}
