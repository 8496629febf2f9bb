#pragma once

#include <QDialog>
#include <QKeySequence>
#include <QList>
#include <QMessageBox>
#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

/// Every question that the program asks the user goes through here, so that a test can answer
/// beforehand, and a run that nobody watches never waits for an answer.
///
/// Where there is no display (offscreen platform), a box goes whole to standard error and is
/// answered with its default button; a file dialog or other dialog is cancelled there. Answers
/// that were queued come first, on any platform. All of it belongs to the main thread.
class GuiHelper
{
public:
    /// A button beside the standard ones.
    struct ExtraButton
    {
        QString text;
        QMessageBox::ButtonRole role = QMessageBox::ActionRole;
    };

    /// One box in all its parts.
    struct Box
    {
        QString title;
        QString text;
        QString informativeText;
        QMessageBox::StandardButtons buttons = QMessageBox::Ok;
        QMessageBox::Icon icon = QMessageBox::Information;
        /// Where none is named, it is the safest of `buttons`.
        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
        QList<ExtraButton> extraButtons;
    };

    /// The result of the first extra button of a box; further ones count up from it.
    static constexpr int firstExtraButton = 0x40000000;

    /// A modal box; gives the button (`QMessageBox::StandardButton` or an extra one).
    static int showMessageBox(QWidget *parent, const QString &title, const QString &text,
                              const QString &informativeText = QString(),
                              QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                              QMessageBox::Icon icon = QMessageBox::Information);
    static int showMessageBox(QWidget *parent, const Box &box);
    /// A box that does not block; gives the button that a box without a display is answered with,
    /// else 0.
    static int showNonBlockingMessageBox(QWidget *parent, const QString &title, const QString &text,
                                         const QString &informativeText = QString(),
                                         QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                         QMessageBox::Icon icon = QMessageBox::Information);
    /// Empty if the user cancels. `filters` are joined by ";;". A name that ends in no suffix of
    /// the filters gets the one of the chosen filter when it is to be saved; whether a file may be
    /// replaced is asked about that whole name.
    static QString openFileName(QWidget *parent, const QString &title, const QString &folder,
                                const QString &filters);
    static QString saveFileName(QWidget *parent, const QString &title, const QString &folder,
                                const QString &filters);
    /// Runs a modal dialog; gives its result.
    static int execDialog(QDialog &dialog);

    /// "<application name>  <version>", the title of the main window's boxes.
    [[nodiscard]] static QString boxTitle();
    /// A tool tip with the keys behind it, as this system names them; without keys as it is.
    [[nodiscard]] static QString withShortcut(const QString &toolTip, const QKeySequence &keys);
    /// Somebody can see and answer a box.
    [[nodiscard]] static bool isAttended();

    // --- For tests ----------------------------------------------------------------------------

    /// The button for the next box that has no answer yet.
    static void queueAnswer(int button);
    /// The file for the next file dialog; empty for cancel.
    static void queueFileName(const QString &path);
    /// Stands in for the user at the next dialog: handles the dialog and gives its result.
    static void queueDialog(const std::function<int(QDialog &)> &user);
    /// The boxes that were answered without a person since the last call, in order.
    static QList<Box> takeShownBoxes();
    /// Answers that nothing has asked for; they are dropped.
    static int takeUnusedAnswers();
};
