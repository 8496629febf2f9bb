#include "app/windowcontext.h"

#include "gui/guihelper.h"

void WindowContext::showError(const QString &text, const QString &informativeText)
{
    GuiHelper::showMessageBox(widget(), GuiHelper::boxTitle(), text, informativeText,
                              QMessageBox::Ok, QMessageBox::Critical);
}

bool WindowContext::askYesNo(const QString &question, const QString &explanation,
                             QMessageBox::StandardButton defaultButton)
{
    return GuiHelper::showMessageBox(widget(), {.title = GuiHelper::boxTitle(),
                                                .text = question,
                                                .informativeText = explanation,
                                                .buttons = QMessageBox::Yes | QMessageBox::No,
                                                .icon = QMessageBox::Question,
                                                .defaultButton = defaultButton,
                                                .extraButtons = {}}) == QMessageBox::Yes;
}
