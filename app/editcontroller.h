#pragma once

#include "gui/basemainform.h"

#include <QList>
#include <QObject>
#include <QPointer>

class QAction;

/// The commands of the menu "Edit" on what is selected: they go to the text that is being edited,
/// or else to the page, and are offered only while one of them can do them.
class EditController : public QObject
{
    Q_OBJECT

public:
    struct Command
    {
        QAction *action = nullptr;
        BaseMainForm::Action command = BaseMainForm::Copy;
    };

    /// `window` has the actions and the pages, and outlives this.
    EditController(const QList<Command> &commands, QWidget *window);

    /// The page that is in front; null for none.
    void setPage(BaseMainForm *page);
    /// Nothing is offered or done while paused.
    void setPaused(bool paused);
    void run(BaseMainForm::Action command);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void followFocus();
    void update();
    [[nodiscard]] bool isPossible(BaseMainForm::Action command) const;

    QList<Command> m_commands;
    QWidget *m_window;
    QPointer<BaseMainForm> m_page;
    QPointer<QWidget> m_text; ///< the field that is being edited
    bool m_paused = false;
};
