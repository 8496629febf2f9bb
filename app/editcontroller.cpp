#include "app/editcontroller.h"

#include "app/editcommands.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

/// Has `receiver` told whenever another command may have become possible in the field.
template <class Field>
bool watch(QWidget *text, EditController *receiver, void (EditController::*told)())
{
    auto *field = qobject_cast<Field *>(text);
    if (field == nullptr)
        return false;
    QObject::connect(field, &Field::textChanged, receiver, told);
    QObject::connect(field, &Field::selectionChanged, receiver, told);
    QObject::connect(field, &Field::cursorPositionChanged, receiver, told);
    return true;
}

} // namespace

EditController::EditController(const QList<Command> &commands, QWidget *window)
    : m_commands(commands), m_window(window)
{
    connect(qApp, &QApplication::focusChanged, this, &EditController::followFocus);
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, &EditController::update);
    update();
}

void EditController::setPage(BaseMainForm *page)
{
    if (m_page != nullptr)
        disconnect(m_page, &BaseMainForm::actionsChanged, this, nullptr);
    m_page = page;
    if (page != nullptr)
        connect(page, &BaseMainForm::actionsChanged, this, &EditController::update);
    update();
}

void EditController::setPaused(bool paused)
{
    m_paused = paused;
    update();
}

void EditController::followFocus()
{
    // The menu bar and other windows take the keyboard away, but not what is being edited.
    QWidget *text = EditCommands::textOf(m_window->focusWidget());
    if (text != m_text) {
        if (m_text != nullptr) {
            disconnect(m_text, nullptr, this, nullptr);
            m_text->removeEventFilter(this);
        }
        m_text = text;
        if (text != nullptr)
            text->installEventFilter(this);
        const auto told = &EditController::update;
        if (!watch<QLineEdit>(text, this, told) && !watch<QPlainTextEdit>(text, this, told))
            watch<QTextEdit>(text, this, told);
    }
    update();
}

bool EditController::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ReadOnlyChange || event->type() == QEvent::EnabledChange)
        update();
    return QObject::eventFilter(watched, event);
}

bool EditController::isPossible(BaseMainForm::Action command) const
{
    if (m_paused)
        return false;
    if (const auto inText = EditCommands::canApplyToText(m_text, command))
        return *inText;
    return m_page != nullptr && m_page->canDoAction(command);
}

void EditController::update()
{
    for (const Command &row : std::as_const(m_commands))
        row.action->setEnabled(isPossible(row.command));
}

void EditController::run(BaseMainForm::Action command)
{
    if (m_paused || EditCommands::applyToText(m_text, command))
        return;
    if (m_page != nullptr)
        m_page->doAction(command);
}
