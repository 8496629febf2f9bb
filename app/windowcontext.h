#pragma once

#include <QMessageBox>
#include <QString>

class ProjectSession;
struct StartOptions;

/// What the controllers of the main window know of it. It outlives them.
class WindowContext
{
public:
    static constexpr int messageMilliseconds = 5000;

    virtual ~WindowContext() = default;

    /// Parent of dialogs.
    [[nodiscard]] virtual QWidget *widget() = 0;
    [[nodiscard]] virtual ProjectSession &session() const = 0;
    [[nodiscard]] virtual const StartOptions &options() const = 0;
    /// The line whose data the pages show.
    [[nodiscard]] virtual quint8 currentLine() const = 0;
    /// Shows another line; the pages hear of it unless the signal is blocked.
    virtual void selectLine(quint8 line, bool blockSignal = false) = 0;
    /// Fills the box with the lines anew.
    virtual void updateLinesComboBox() = 0;
    /// Has pages write what is being typed to the store.
    virtual void storePendingInput() = 0;
    /// A run goes on: nothing else can be started meanwhile.
    [[nodiscard]] virtual bool isBusy() const = 0;
    virtual void setBusy(bool busy) = 0;
    /// The project has changes that are not saved.
    [[nodiscard]] virtual bool isModified() const = 0;
    virtual void setModified(bool modified) = 0;
    /// In the status bar; until the next one if the time is 0.
    virtual void showStatus(const QString &text, int milliseconds = messageMilliseconds) = 0;
    /// Adds a message, rich text, to the output pane.
    virtual void appendOutput(const QString &text) = 0;

    // Boxes with the title of the program.
    void showError(const QString &text, const QString &informativeText = QString());
    [[nodiscard]] bool askYesNo(const QString &question, const QString &explanation = QString(),
                                QMessageBox::StandardButton defaultButton = QMessageBox::Yes);
};
