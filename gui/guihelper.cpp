#include "gui/guihelper.h"

#include "gui/messagebox.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMetaEnum>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextDocumentFragment>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace {

struct Script
{
    QList<int> answers;
    QStringList fileNames;
    QList<std::function<int(QDialog &)>> users;
    QList<GuiHelper::Box> shown;
};

Script &script()
{
    static Script instance;
    return instance;
}

// In this order a box without a named default is answered: what changes least comes first.
constexpr std::array safestFirst{QMessageBox::Cancel, QMessageBox::Close, QMessageBox::No,
                                 QMessageBox::Abort,  QMessageBox::Ok,    QMessageBox::Yes};

QMessageBox::StandardButton defaultButton(const GuiHelper::Box &box)
{
    if (box.defaultButton != QMessageBox::NoButton)
        return box.defaultButton;
    for (const QMessageBox::StandardButton button : safestFirst) {
        if (box.buttons.testFlag(button))
            return button;
    }
    return QMessageBox::NoButton;
}

QString plain(const QString &text)
{
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

QString buttonName(QMessageBox::StandardButton button)
{
    const QMetaEnum names = QMetaEnum::fromType<QDialogButtonBox::StandardButtons>();
    return QString::fromLatin1(names.valueToKey(button));
}

const char *iconName(QMessageBox::Icon icon)
{
    switch (icon) {
    case QMessageBox::Warning:
        return "Warning";
    case QMessageBox::Critical:
        return "Error";
    case QMessageBox::Question:
        return "Question";
    default:
        return "Note";
    }
}

void printError(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
}

void printBox(const GuiHelper::Box &box)
{
    QStringList lines{QStringLiteral("%1: %2").arg(QLatin1String(iconName(box.icon)), box.title),
                      plain(box.text)};
    if (!box.informativeText.isEmpty())
        lines.append(plain(box.informativeText));
    const QMessageBox::StandardButton answer = defaultButton(box);
    if (answer != QMessageBox::Ok && answer != QMessageBox::NoButton)
        lines.append(QStringLiteral("Answered: %1").arg(buttonName(answer)));
    printError(lines.join(u'\n'));
}

void fill(MessageBox &widget, const GuiHelper::Box &box)
{
    widget.setWindowTitle(box.title);
    widget.setIcon(box.icon);
    widget.setTexts(box.text, box.informativeText);
    widget.setStandardButtons(box.buttons);
    if (box.defaultButton != QMessageBox::NoButton)
        widget.setDefaultButton(box.defaultButton);
}

/// The answer of a script, or of nobody; false if a person is to be asked.
bool answerWithoutUser(const GuiHelper::Box &box, int &answer)
{
    if (!script().answers.isEmpty()) {
        answer = script().answers.takeFirst();
    } else if (!GuiHelper::isAttended()) {
        printBox(box);
        answer = defaultButton(box);
    } else {
        return false;
    }
    script().shown.append(box);
    return true;
}

bool fileNameWithoutUser(const QString &title, QString &path)
{
    if (!script().fileNames.isEmpty()) {
        path = script().fileNames.takeFirst();
        return true;
    }
    if (GuiHelper::isAttended())
        return false;
    printError(QStringLiteral("%1: cancelled, there is no display to ask for a file.").arg(title));
    path.clear();
    return true;
}

/// The filter for the kind of file that is proposed; the first one if none fits.
QString filterFor(const QString &proposal, const QString &filters)
{
    const QStringList all = filters.split(QStringLiteral(";;"));
    const QString pattern = QStringLiteral("*.%1)").arg(QFileInfo(proposal).suffix().toLower());
    const auto fitting = std::find_if(
        all.begin(), all.end(), [&](const QString &filter) { return filter.contains(pattern); });
    return fitting == all.end() ? all.first() : *fitting;
}

/// The first suffix of a filter, with its dot.
QString suffixOf(const QString &filter)
{
    static const QRegularExpression firstSuffix(QStringLiteral("\\*(\\.\\w+)"));
    return firstSuffix.match(filter).captured(1);
}

/// What `path` lacks to end in a suffix of the filters: empty, or the suffix of the chosen one.
QString missingSuffix(const QString &path, const QString &filters, const QString &chosen)
{
    const QString suffix = QFileInfo(path).suffix();
    if (!suffix.isEmpty() && filters.contains(QStringLiteral("*.%1)").arg(suffix.toLower())))
        return {};
    return suffixOf(chosen);
}

/// Completes a name before it is looked whether that file is there, so that the question about
/// replacing it is asked about the file that will be written.
class SaveDialog : public QFileDialog
{
public:
    SaveDialog(QWidget *parent, const QString &title, const QString &proposal,
               const QString &filters)
        : QFileDialog(parent, title, QFileInfo(proposal).absolutePath()), m_filters(filters)
    {
        setAcceptMode(AcceptSave);
        setFileMode(AnyFile);
        setNameFilters(filters.split(QStringLiteral(";;")));
        selectFile(QFileInfo(proposal).fileName());
        // The dialogs of a desktop know no other way than this one.
        connect(this, &QFileDialog::filterSelected, this,
                [this](const QString &filter) { setDefaultSuffix(suffixOf(filter).mid(1)); });
    }

    void chooseFilter(const QString &filter)
    {
        selectNameFilter(filter);
        setDefaultSuffix(suffixOf(filter).mid(1));
    }

    void accept() override
    {
        // The plain default suffix leaves a name alone that has a dot, such as "device 2.1".
        auto *name = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        const QString path = selectedFiles().value(0);
        if (name != nullptr && !name->text().isEmpty() && !QFileInfo(path).isDir())
            name->setText(name->text() + missingSuffix(path, m_filters, selectedNameFilter()));
        QFileDialog::accept();
    }

private:
    QString m_filters;
};

/// The name as it was chosen; `filter` follows the choice.
QString askSaveName(QWidget *parent, const QString &title, const QString &proposal,
                    const QString &filters, QString &filter)
{
    QString path;
    if (fileNameWithoutUser(title, path))
        return path;
    SaveDialog dialog(parent, title, proposal, filters);
    dialog.chooseFilter(filter);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    filter = dialog.selectedNameFilter();
    return dialog.selectedFiles().value(0);
}

/// Whether the file that a completed name has led to may be replaced.
bool mayReplace(QWidget *parent, const QString &title, const QString &path)
{
    return GuiHelper::showMessageBox(
               parent,
               GuiHelper::Box{title,
                              QStringLiteral("%1 already exists.\nDo you want to replace it?")
                                  .arg(QFileInfo(path).fileName()),
                              {},
                              QMessageBox::Yes | QMessageBox::No,
                              QMessageBox::Warning,
                              QMessageBox::No,
                              {}}) == QMessageBox::Yes;
}

} // namespace

int GuiHelper::showMessageBox(QWidget *parent, const QString &title, const QString &text,
                              const QString &informativeText, QMessageBox::StandardButtons buttons,
                              QMessageBox::Icon icon)
{
    return showMessageBox(
        parent, Box{title, text, informativeText, buttons, icon, QMessageBox::NoButton, {}});
}

int GuiHelper::showMessageBox(QWidget *parent, const Box &box)
{
    int answer = 0;
    if (answerWithoutUser(box, answer))
        return answer;

    MessageBox widget(parent);
    fill(widget, box);
    QList<QPushButton *> extra;
    for (const ExtraButton &button : box.extraButtons)
        extra.append(widget.addButton(button.text, button.role));
    // The wait cursor of a job must not lie over a question.
    const bool busy = QApplication::overrideCursor() != nullptr;
    if (busy)
        QApplication::setOverrideCursor(Qt::ArrowCursor);
    answer = widget.exec();
    if (busy)
        QApplication::restoreOverrideCursor();
    for (qsizetype i = 0; i < extra.size(); ++i) {
        if (widget.clickedButton() == extra[i])
            return firstExtraButton + int(i);
    }
    return answer;
}

int GuiHelper::showNonBlockingMessageBox(QWidget *parent, const QString &title, const QString &text,
                                         const QString &informativeText,
                                         QMessageBox::StandardButtons buttons,
                                         QMessageBox::Icon icon)
{
    const Box box{title, text, informativeText, buttons, icon, QMessageBox::NoButton, {}};
    int answer = 0;
    if (answerWithoutUser(box, answer))
        return answer;
    auto *widget = new MessageBox(parent);
    widget->setAttribute(Qt::WA_DeleteOnClose);
    fill(*widget, box);
    widget->setModal(false);
    widget->show();
    return 0;
}

QString GuiHelper::openFileName(QWidget *parent, const QString &title, const QString &folder,
                                const QString &filters)
{
    QString path;
    if (fileNameWithoutUser(title, path))
        return path;
    return QFileDialog::getOpenFileName(parent, title, folder, filters);
}

QString GuiHelper::saveFileName(QWidget *parent, const QString &title, const QString &folder,
                                const QString &filters)
{
    QString filter = filterFor(folder, filters);
    QString proposal = folder;
    for (;;) {
        const QString chosen = askSaveName(parent, title, proposal, filters, filter);
        if (chosen.isEmpty())
            return chosen;
        const QString path = chosen + missingSuffix(chosen, filters, filter);
        // About a name that was chosen whole the dialog has asked.
        if (path == chosen || !QFileInfo::exists(path) || mayReplace(parent, title, path))
            return path;
        proposal = path;
    }
}

int GuiHelper::execDialog(QDialog &dialog)
{
    if (!script().users.isEmpty())
        return script().users.takeFirst()(dialog);
    if (isAttended())
        return dialog.exec();
    printError(
        QStringLiteral("%1: cancelled, there is no display to ask.").arg(dialog.windowTitle()));
    return QDialog::Rejected;
}

QString GuiHelper::boxTitle()
{
    return QStringLiteral("%1  %2").arg(QCoreApplication::applicationName(),
                                        QCoreApplication::applicationVersion());
}

QString GuiHelper::withShortcut(const QString &toolTip, const QKeySequence &keys)
{
    return keys.isEmpty()
               ? toolTip
               : QStringLiteral("%1 (%2)").arg(toolTip, keys.toString(QKeySequence::NativeText));
}

bool GuiHelper::isAttended()
{
    const QString platform = QGuiApplication::platformName();
    return platform != u"offscreen" && platform != u"minimal";
}

void GuiHelper::queueAnswer(int button)
{
    script().answers.append(button);
}

void GuiHelper::queueFileName(const QString &path)
{
    script().fileNames.append(path);
}

void GuiHelper::queueDialog(const std::function<int(QDialog &)> &user)
{
    script().users.append(user);
}

QList<GuiHelper::Box> GuiHelper::takeShownBoxes()
{
    return std::exchange(script().shown, {});
}

int GuiHelper::takeUnusedAnswers()
{
    const qsizetype unused =
        script().answers.size() + script().fileNames.size() + script().users.size();
    script().answers.clear();
    script().fileNames.clear();
    script().users.clear();
    return int(unused);
}
