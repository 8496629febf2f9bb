#include "app/editcommands.h"

#include <QAbstractSpinBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

bool hasSelection(const QLineEdit &field)
{
    return field.hasSelectedText() && field.echoMode() == QLineEdit::Normal;
}

template <class Text>
bool hasSelection(const Text &text)
{
    return text.textCursor().hasSelection();
}

bool hasTextBehindCursor(const QLineEdit &field)
{
    return field.cursorPosition() < field.text().size();
}

template <class Text>
bool hasTextBehindCursor(const Text &text)
{
    return !text.textCursor().atEnd();
}

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

/// A text that only shows something can still be copied from.
template <class Text>
bool knows(const Text &text, BaseMainForm::Action command)
{
    return command != BaseMainForm::Duplicate &&
           (command == BaseMainForm::Copy || !text.isReadOnly());
}

template <class Text>
bool isPossible(const Text &text, BaseMainForm::Action command)
{
    switch (command) {
    case BaseMainForm::Copy:
    case BaseMainForm::Cut:
        return hasSelection(text);
    case BaseMainForm::Paste: {
        const QMimeData *data = QGuiApplication::clipboard()->mimeData();
        return data != nullptr && data->hasText();
    }
    case BaseMainForm::Delete:
        return text.isEnabled() && (hasSelection(text) || hasTextBehindCursor(text));
    case BaseMainForm::Duplicate:
        break;
    }
    return false;
}

template <class Text>
void apply(Text &text, BaseMainForm::Action command)
{
    switch (command) {
    case BaseMainForm::Copy:
        text.copy();
        break;
    case BaseMainForm::Cut:
        text.cut();
        break;
    case BaseMainForm::Paste:
        text.paste();
        break;
    case BaseMainForm::Delete:
        deleteIn(text);
        break;
    case BaseMainForm::Duplicate:
        break;
    }
}

/// Calls `use` with the field as what it is, if it knows the command.
template <class Use, class Widget>
bool useText(Widget *widget, BaseMainForm::Action command, Use use)
{
    const auto tryAs = [&](auto *field) {
        if (field == nullptr || !knows(*field, command))
            return false;
        use(*field);
        return true;
    };
    if constexpr (std::is_const_v<Widget>) {
        return tryAs(qobject_cast<const QLineEdit *>(widget)) ||
               tryAs(qobject_cast<const QPlainTextEdit *>(widget)) ||
               tryAs(qobject_cast<const QTextEdit *>(widget));
    } else {
        return tryAs(qobject_cast<QLineEdit *>(widget)) ||
               tryAs(qobject_cast<QPlainTextEdit *>(widget)) ||
               tryAs(qobject_cast<QTextEdit *>(widget));
    }
}

} // namespace

QWidget *EditCommands::textOf(QWidget *focus)
{
    if (auto *spinBox = qobject_cast<QAbstractSpinBox *>(focus))
        return spinBox->findChild<QLineEdit *>();
    if (auto *comboBox = qobject_cast<QComboBox *>(focus))
        return comboBox->lineEdit();
    const bool isText = qobject_cast<QLineEdit *>(focus) != nullptr ||
                        qobject_cast<QPlainTextEdit *>(focus) != nullptr ||
                        qobject_cast<QTextEdit *>(focus) != nullptr;
    return isText ? focus : nullptr;
}

std::optional<bool> EditCommands::canApplyToText(const QWidget *text, BaseMainForm::Action command)
{
    std::optional<bool> possible;
    useText(text, command, [&](const auto &field) { possible = isPossible(field, command); });
    return possible;
}

bool EditCommands::applyToText(QWidget *text, BaseMainForm::Action command)
{
    return useText(text, command, [&](auto &field) { apply(field, command); });
}
