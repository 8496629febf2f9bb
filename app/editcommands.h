#pragma once

#include "gui/basemainform.h"

#include <optional>

class QWidget;

/// What the commands of the menu "Edit" mean for the text that is being edited, whichever form it
/// stands in.
namespace EditCommands {

/// The text field that a widget with the focus is or contains: a `QLineEdit`, `QPlainTextEdit` or
/// `QTextEdit`; null if there is none.
[[nodiscard]] QWidget *textOf(QWidget *focus);
/// Whether the command would do something in the text field now; nothing if the field doesn't
/// know the command, which is then for the form to do.
[[nodiscard]] std::optional<bool> canApplyToText(const QWidget *text, BaseMainForm::Action command);
/// Runs the command on a text field. False if it doesn't know the command.
bool applyToText(QWidget *text, BaseMainForm::Action command);

} // namespace EditCommands
