#pragma once

#include "gui/basemainform.h"

class QWidget;

/// What the commands of the menu "Edit" mean for the text that is being edited, whichever form it
/// stands in.
namespace EditCommands {

/// Runs the command on the text field that has the focus. False if that is no text field, or one
/// that doesn't know the command; it is then for the form to do.
bool applyToText(QWidget *focus, BaseMainForm::Action command);

} // namespace EditCommands
