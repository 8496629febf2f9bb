#include "app/editcommands.h"

#include <QAbstractSpinBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

void deleteIn(QLineEdit &field)
{
    field.del();
}

template <class Text>
void deleteIn(Text &text)
{
    QTextCursor cursor = text.textCursor();
    cursor.deleteChar();
    text.setTextCursor(cursor);
}

template <class Text>
bool apply(Text &text, BaseMainForm::Action command)
{
    // A text that only shows something can still be copied from.
    if (text.isReadOnly() && command != BaseMainForm::Copy)
        return false;
    switch (command) {
    case BaseMainForm::Copy:
        text.copy();
        return true;
    case BaseMainForm::Cut:
        text.cut();
        return true;
    case BaseMainForm::Paste:
        text.paste();
        return true;
    case BaseMainForm::Delete:
        deleteIn(text);
        return true;
    case BaseMainForm::Duplicate:
        break;
    }
    return false;
}

} // namespace

bool EditCommands::applyToText(QWidget *focus, BaseMainForm::Action command)
{
    if (auto *spinBox = qobject_cast<QAbstractSpinBox *>(focus))
        focus = spinBox->findChild<QLineEdit *>();
    if (auto *field = qobject_cast<QLineEdit *>(focus))
        return apply(*field, command);
    if (auto *text = qobject_cast<QPlainTextEdit *>(focus))
        return apply(*text, command);
    if (auto *text = qobject_cast<QTextEdit *>(focus))
        return apply(*text, command);
    return false;
}
