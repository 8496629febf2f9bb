#pragma once

#include "gui/formcontext.h"

#include <QTimer>
#include <QWidget>

#include <memory>
#include <optional>

/// A page of the main window; lives as long as the window and shows the project of its store.
///
/// The store tells of every single write. A form hears of a run of like changes once, 50 ms after
/// the last of them; unlike changes are never merged and reach the form in order.
class BaseMainForm : public QWidget
{
    Q_OBJECT

public:
    /// Commands of the main window's tool bar and menus.
    enum Action : int { Copy = 0, Cut = 1, Paste = 2, Delete = 3, Duplicate = 4 };

    explicit BaseMainForm(QWidget *parent = nullptr);

    /// Shares the store; false for a null one.
    virtual bool setDatabase(const std::shared_ptr<ObjectDataBase> &database);
    /// What the form works on besides the store, which `setDatabase` tells.
    void setContext(const FormContext &context);
    /// By default a box tells that the form has no such command.
    virtual void doAction(int action);
    /// Whether `doAction` has something to do now; what can't be done is not offered.
    [[nodiscard]] virtual bool canDoAction(int action) const;
    /// The line whose data the page shows from now on.
    virtual void setLine(quint8 line) { m_line = line; }

signals:
    void newDatabase();
    /// What `canDoAction` answers may have changed.
    void actionsChanged();

public slots:
    /// The form brings itself up to date.
    virtual void updateData(ObjectDataBase::ChangeSet modification) = 0;
    /// The form writes pending edits to the store.
    virtual void saveData() = 0;
    virtual void handleExpertMode(bool expertModeActive) = 0;
    void updateDataSlot(ObjectDataBase::ChangeSet modification);
    void updateTimerSlot();

protected:
    [[nodiscard]] ObjectDataBase *database() const { return m_context.project.get(); }
    [[nodiscard]] const FormContext &context() const { return m_context; }
    [[nodiscard]] quint8 line() const { return m_line; }

    /// Set while the form itself writes to the store: such changes do not come back to it.
    bool m_guard = false;

private:
    FormContext m_context;
    quint8 m_line = 0;
    std::optional<ObjectDataBase::ChangeSet> m_pending;
    QTimer m_timer;
};
