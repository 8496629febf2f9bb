#include "gui/fileviewerdialog.h"

#include "canopen/safefile.h"
#include "gui/ansichighlighter.h"
#include "gui/fileviewertext.h"
#include "gui/guihelper.h"
#include "gui/lineicon.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QScrollBar>
#include <QShortcut>
#include <QSpinBox>
#include <QStringDecoder>
#include <QTextBlock>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int settleMilliseconds = 200; ///< a writer needs a moment from the first byte to the last
constexpr int mostMarks = 2000;
constexpr QSize usualSize(880, 640);

bool isCSource(const QString &path)
{
    static const QStringList suffixes{QStringLiteral("c"),   QStringLiteral("h"),
                                      QStringLiteral("cpp"), QStringLiteral("hpp"),
                                      QStringLiteral("tpl"), QStringLiteral("cs")};
    return suffixes.contains(QFileInfo(path).suffix().toLower());
}

/// Sources of users are UTF-8 or of the old one-byte kind.
QString decoded(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

QToolButton *makeButton(const char *icon, const QString &toolTip, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setIcon(LineIcon::icon(QLatin1String(icon)));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoRaise(true);
    return button;
}

} // namespace

FileViewerDialog::FileViewerDialog(QWidget *parent)
    : QDialog(parent), m_view(new FileViewerText(this)), m_findBar(new QWidget(this)),
      m_search(new QLineEdit(this)), m_matchCase(new QCheckBox(tr("Match &case"), this)),
      m_line(new QSpinBox(this)), m_matches(new QLabel(this)), m_notice(new QLabel(this)),
      m_position(new QLabel(this))
{
    setWindowFlags(Qt::Window);
    resize(usualSize);
    m_view->setObjectName(QStringLiteral("viewerText"));
    m_search->setObjectName(QStringLiteral("viewerSearch"));
    m_matches->setObjectName(QStringLiteral("viewerMatches"));
    m_notice->setObjectName(QStringLiteral("viewerNotice"));
    m_notice->setWordWrap(true);
    m_notice->setMargin(8);
    m_notice->hide();
    makeFindBar();
    makeLayout();
    makeShortcuts();
    m_view->setFocus();

    m_reloadTimer.setSingleShot(true);
    m_reloadTimer.setInterval(settleMilliseconds);
    connect(&m_reloadTimer, &QTimer::timeout, this, &FileViewerDialog::fileChanged);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, [this] { m_reloadTimer.start(); });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this,
            [this] { m_reloadTimer.start(); });
    connect(m_view, &QPlainTextEdit::cursorPositionChanged, this, &FileViewerDialog::showPosition);
}

void FileViewerDialog::makeFindBar()
{
    m_search->setPlaceholderText(tr("Find in this file"));
    m_search->setToolTip(GuiHelper::withShortcut(tr("Text to look for"), QKeySequence::Find));
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::textChanged, this, &FileViewerDialog::searchChanged);
    connect(m_matchCase, &QCheckBox::toggled, this, &FileViewerDialog::searchChanged);

    auto *label = new QLabel(tr("&Find:"), m_findBar);
    label->setBuddy(m_search);
    auto *next =
        makeButton("down", GuiHelper::withShortcut(tr("Next place"), Qt::Key_F3), m_findBar);
    connect(next, &QToolButton::clicked, this, &FileViewerDialog::findNext);
    auto *previous = makeButton(
        "up", GuiHelper::withShortcut(tr("Previous place"), Qt::SHIFT | Qt::Key_F3), m_findBar);
    connect(previous, &QToolButton::clicked, this, &FileViewerDialog::findPrevious);

    m_line->setMinimum(1);
    m_line->setKeyboardTracking(false);
    m_line->setToolTip(
        GuiHelper::withShortcut(tr("Number of the line to go to"), Qt::CTRL | Qt::Key_L));
    connect(m_line, &QSpinBox::valueChanged, this, &FileViewerDialog::goToLine);
    auto *lineLabel = new QLabel(tr("&Line:"), m_findBar);
    lineLabel->setBuddy(m_line);

    auto *row = new QHBoxLayout(m_findBar);
    row->setContentsMargins(8, 4, 8, 4);
    row->setSpacing(8);
    row->addWidget(label);
    row->addWidget(m_search, 1);
    row->addWidget(previous);
    row->addWidget(next);
    row->addWidget(m_matchCase);
    row->addWidget(m_matches);
    row->addStretch();
    row->addWidget(lineLabel);
    row->addWidget(m_line);
}

void FileViewerDialog::makeLayout()
{
    auto *foot = new QHBoxLayout;
    foot->setContentsMargins(8, 0, 8, 4);
    foot->addStretch();
    foot->addWidget(m_position);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_findBar);
    layout->addWidget(m_notice);
    layout->addWidget(m_view, 1);
    layout->addLayout(foot);
}

void FileViewerDialog::makeShortcuts()
{
    const auto add = [this](const QKeySequence &keys, auto function) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, function);
    };
    const auto edit = [](auto *field) {
        return [field] {
            field->setFocus(Qt::ShortcutFocusReason);
            field->selectAll();
        };
    };
    add(QKeySequence::Find, edit(m_search));
    add(QKeySequence(Qt::CTRL | Qt::Key_L), edit(m_line));
    add(QKeySequence(Qt::Key_F3), &FileViewerDialog::findNext);
    add(QKeySequence(Qt::SHIFT | Qt::Key_F3), &FileViewerDialog::findPrevious);
    add(QKeySequence(Qt::Key_F5), &FileViewerDialog::reload);
    add(QKeySequence(Qt::CTRL | Qt::Key_W), &QWidget::close);
    connect(m_search, &QLineEdit::returnPressed, this, &FileViewerDialog::findNext);
}

// --- The file -----------------------------------------------------------------------------------

bool FileViewerDialog::openFile(const QString &path)
{
    m_path = QFileInfo(path).absoluteFilePath();
    setWindowTitle(tr("%1 - %2").arg(QFileInfo(m_path).fileName(), GuiHelper::boxTitle()));
    m_view->setToolTip(QString());
    delete m_highlighter;
    m_highlighter = isCSource(m_path) ? new AnsiCHighlighter(m_view->document()) : nullptr;
    if (m_highlighter != nullptr)
        m_highlighter->setPalette(palette());
    return reload();
}

bool FileViewerDialog::reload()
{
    watch();
    QFile file(m_path);
    QString fault;
    if (!SafeFile::open(file, fault)) {
        // What was read before is still worth having.
        showNotice(tr("%1 can't be read: %2").arg(QDir::toNativeSeparators(m_path), fault));
        return false;
    }
    m_written = QFileInfo(m_path).lastModified();
    QByteArray bytes = file.read(largestFile + 1);
    const bool isCut = bytes.size() > largestFile;
    bytes.truncate(largestFile);
    showNotice(isCut ? tr("The file is larger than %1; the rest is not shown.")
                           .arg(QLocale().formattedDataSize(largestFile))
                     : QString());

    const int line = m_view->textCursor().blockNumber() + 1;
    const int scrolled = m_view->verticalScrollBar()->value();
    const int shifted = m_view->horizontalScrollBar()->value();
    QApplication::setOverrideCursor(Qt::WaitCursor); // colouring megabytes takes a second
    m_view->setPlainText(decoded(bytes));
    QApplication::restoreOverrideCursor();
    m_line->setMaximum(m_view->blockCount());
    goToLine(line);
    m_view->verticalScrollBar()->setValue(scrolled);
    m_view->horizontalScrollBar()->setValue(shifted);
    showMatches();
    showPosition();
    return true;
}

/// A generator puts a new file in the old one's place, which ends the watch over the old one; the
/// folder tells when there is a new one.
void FileViewerDialog::watch()
{
    const QStringList wanted{m_path, QFileInfo(m_path).absolutePath()};
    const QStringList former = m_watcher.files() + m_watcher.directories();
    for (const QString &path : former) {
        if (!wanted.contains(path))
            m_watcher.removePath(path);
    }
    for (const QString &path : wanted) {
        if (!former.contains(path) && QFileInfo::exists(path))
            m_watcher.addPath(path);
    }
}

/// Whatever else happens in the folder must not move the view.
void FileViewerDialog::fileChanged()
{
    watch();
    if (QFileInfo(m_path).lastModified() != m_written)
        reload();
}

QString FileViewerDialog::text() const
{
    return m_view->toPlainText();
}

void FileViewerDialog::showNotice(const QString &text)
{
    m_notice->setText(text);
    m_notice->setVisible(!text.isEmpty());
}

// --- Finding one's way --------------------------------------------------------------------------

void FileViewerDialog::goToLine(int line)
{
    const QTextBlock block =
        m_view->document()->findBlockByNumber(qBound(1, line, m_view->blockCount()) - 1);
    if (m_view->textCursor().block() == block)
        return;
    m_view->setTextCursor(QTextCursor(block));
    m_view->centerCursor();
}

void FileViewerDialog::showPosition()
{
    const QTextCursor cursor = m_view->textCursor();
    m_position->setText(tr("Line %1 of %3, column %2")
                            .arg(cursor.blockNumber() + 1)
                            .arg(cursor.positionInBlock() + 1)
                            .arg(m_view->blockCount()));
    const QSignalBlocker blocker(m_line);
    m_line->setValue(cursor.blockNumber() + 1);
}

void FileViewerDialog::searchChanged()
{
    showMatches();
    // While the user types, the view follows from where the match began.
    QTextCursor cursor = m_view->textCursor();
    cursor.setPosition(cursor.selectionStart());
    m_view->setTextCursor(cursor);
    if (!m_search->text().isEmpty())
        findNext();
}

bool FileViewerDialog::findNext()
{
    return find(false);
}

bool FileViewerDialog::findPrevious()
{
    return find(true);
}

bool FileViewerDialog::find(bool backward)
{
    const QString text = m_search->text();
    if (text.isEmpty()) {
        m_search->setFocus(Qt::ShortcutFocusReason);
        return false;
    }
    QTextDocument::FindFlags flags;
    flags.setFlag(QTextDocument::FindBackward, backward);
    flags.setFlag(QTextDocument::FindCaseSensitively, m_matchCase->isChecked());
    if (m_view->find(text, flags))
        return true;
    const QTextCursor former = m_view->textCursor();
    m_view->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
    if (m_view->find(text, flags))
        return true;
    m_view->setTextCursor(former);
    return false;
}

void FileViewerDialog::showMatches()
{
    const QString text = m_search->text();
    QList<QTextCursor> matches;
    if (!text.isEmpty()) {
        QTextDocument::FindFlags flags;
        flags.setFlag(QTextDocument::FindCaseSensitively, m_matchCase->isChecked());
        QTextCursor at = m_view->document()->find(text, 0, flags);
        while (!at.isNull() && matches.size() < mostMarks) {
            matches.append(at);
            at = m_view->document()->find(text, at, flags);
        }
    }
    m_view->setMatches(matches);
    if (text.isEmpty())
        m_matches->clear();
    else if (matches.isEmpty())
        m_matches->setText(tr("Not found"));
    else if (matches.size() == mostMarks)
        m_matches->setText(tr("%1 places or more").arg(mostMarks));
    else
        m_matches->setText(matches.size() == 1 ? tr("1 place")
                                               : tr("%1 places").arg(matches.size()));
}

void FileViewerDialog::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_highlighter != nullptr)
        m_highlighter->setPalette(palette());
}
