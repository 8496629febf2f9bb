#pragma once

#include <QObject>

class LineController;
class QAction;
class UndoManager;
class WindowContext;

/// Undo and redo as the window offers them.
class UndoController : public QObject
{
    Q_OBJECT

public:
    UndoController(WindowContext &context, LineController &lines, QAction &undo, QAction &redo);

    void undo();
    void redo();
    /// Offers what is possible now.
    void updateActions();

private:
    struct Step;
    void take(const Step &step);
    void handleRestored();
    [[nodiscard]] UndoManager &manager() const;

    WindowContext &m_context;
    LineController &m_lines;
    QAction &m_undo;
    QAction &m_redo;
};
