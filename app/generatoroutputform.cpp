#include "app/generatoroutputform.h"

#include "app/outputfilterbar.h"
#include "app/outputmarkup.h"
#include "app/startpage.h"
#include "gui/guihelper.h"
#include "store/usersettings.h"

#include <QAction>
#include <QClipboard>
#include <QDateTime>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QShortcut>
#include <QStackedWidget>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTextDocumentFragment>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int flushMilliseconds = 40;
/// As many as reach the text without anybody noticing a pause.
constexpr qsizetype flushCount = 400;
/// State of a block of the text that F8 goes to.
constexpr int isMessage = 1;
const QString checkStarted = QStringLiteral("Check of model consistency started");
const QString checkFinished = QStringLiteral("Check of model consistency finished");
const QKeySequence copyAllKeys(Qt::CTRL | Qt::SHIFT | Qt::Key_C);
const QString lineHeading = QStringLiteral("Checking line");

/// The format that the user has chosen; empty as long as none was.
QString chosenTimeFormat()
{
    static const QString unchanged = QStringLiteral("ddd MMM dd yyyy  HH:mm:ss ");
    const QString format = UserSettings::general(QStringLiteral("date_time_format")).toString();
    return format == unchanged ? QString() : format.trimmed();
}

/// Pure red is hard to read, on dark ground most of all; the palette knows one that isn't.
QTextCharFormat readable(QTextCharFormat format, const QPalette &palette)
{
    if (format.hasProperty(QTextFormat::ForegroundBrush) &&
        format.foreground().color() == QColor(Qt::red)) {
        format.setForeground(palette.color(QPalette::BrightText));
    }
    return format;
}

QString currentTimeText(const QString &format)
{
    const QDateTime now = QDateTime::currentDateTime();
    return format.isEmpty() ? now.time().toString(Qt::TextDate) : now.toString(format);
}

} // namespace

QString GeneratorOutputForm::Entry::plainText() const
{
    if (isHtml)
        return QTextDocumentFragment::fromHtml(text).toPlainText();
    QString result = time;
    if (line)
        result += QStringLiteral(" Line %1 - ").arg(*line);
    for (const OutputMarkup::Run &run : OutputMarkup::runs(text))
        result += run.text;
    return result;
}

GeneratorOutputForm::GeneratorOutputForm(QWidget *parent)
    : BaseMainForm(parent), m_logging(new QTextBrowser(this)), m_start(new StartPage(this)),
      m_stack(new QStackedWidget(this)), m_filterBar(new OutputFilterBar(this)),
      m_buttons(new QWidget(this)), m_copyAll(new QPushButton(tr("Cop&y All"), this)),
      m_clear(new QPushButton(tr("Clea&r"), this))
{
    m_logging->setObjectName(QStringLiteral("tbLogging"));
    m_logging->setOpenLinks(false);
    m_logging->setTextInteractionFlags(Qt::TextBrowserInteraction | Qt::TextSelectableByKeyboard);
    m_logging->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_logging->setContextMenuPolicy(Qt::CustomContextMenu);
    m_logging->installEventFilter(this);
    connect(m_logging, &QTextBrowser::anchorClicked, this,
            &GeneratorOutputForm::on_tbLogging_anchorClicked);
    connect(m_logging, &QWidget::customContextMenuRequested, this,
            &GeneratorOutputForm::showContextMenu);
    connect(m_logging, &QTextEdit::copyAvailable, this, &GeneratorOutputForm::actionsChanged);
    connect(m_filterBar, &OutputFilterBar::chosenChanged, this, &GeneratorOutputForm::showAnew);
    connect(m_filterBar, &OutputFilterBar::nextRequested, this,
            &GeneratorOutputForm::goToNextMessage);
    connect(m_filterBar, &OutputFilterBar::previousRequested, this,
            &GeneratorOutputForm::goToPreviousMessage);
    m_flushTimer.setSingleShot(true);
    connect(&m_flushTimer, &QTimer::timeout, this, &GeneratorOutputForm::flushSome);
    makeLayout();
    showAnew();
    showStartOrText();
}

void GeneratorOutputForm::makeLayout()
{
    m_copyAll->setObjectName(QStringLiteral("btnCopyAll"));
    m_copyAll->setToolTip(
        GuiHelper::withShortcut(tr("Copy all messages to the clipboard"), copyAllKeys));
    connect(m_copyAll, &QPushButton::clicked, this, &GeneratorOutputForm::copyAll);
    m_clear->setObjectName(QStringLiteral("btnClear"));
    m_clear->setToolTip(tr("Remove all messages"));
    connect(m_clear, &QPushButton::clicked, this, &GeneratorOutputForm::clearLogging);

    auto *shortcut = new QShortcut(copyAllKeys, this);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, &GeneratorOutputForm::copyAll);

    auto *row = new QHBoxLayout(m_buttons);
    row->setContentsMargins(8, 0, 8, 4);
    row->setSpacing(8);
    row->addWidget(m_filterBar);
    row->addStretch(1);
    row->addWidget(m_copyAll);
    row->addWidget(m_clear);
    m_stack->addWidget(m_logging);
    m_stack->addWidget(m_start);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_stack, 1);
    layout->addWidget(m_buttons);
}

/// A text that can't be edited leaves "select all" to the window, which has something else for
/// the same keys.
bool GeneratorOutputForm::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_logging && event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::SelectAll)) {
        event->accept();
        return true;
    }
    return BaseMainForm::eventFilter(watched, event);
}

void GeneratorOutputForm::offerStart(bool offered)
{
    m_startOffered = offered;
    showStartOrText();
}

void GeneratorOutputForm::showStartOrText()
{
    const bool start = m_startOffered && m_entries.isEmpty();
    QWidget *shown = start ? static_cast<QWidget *>(m_start) : m_logging;
    m_stack->setCurrentWidget(shown);
    m_buttons->setVisible(!start);
    m_copyAll->setEnabled(!m_entries.isEmpty());
    m_clear->setEnabled(!m_entries.isEmpty());
    setFocusProxy(shown);
}

void GeneratorOutputForm::updateData(ObjectDataBase::ChangeSet) {}

void GeneratorOutputForm::saveData() {}

void GeneratorOutputForm::handleExpertMode(bool) {}

void GeneratorOutputForm::doAction(int action)
{
    if (action == Copy)
        m_logging->copy();
    else
        BaseMainForm::doAction(action);
}

bool GeneratorOutputForm::canDoAction(int action) const
{
    return action == Copy && m_logging->textCursor().hasSelection();
}

// --- Messages -----------------------------------------------------------------------------------

void GeneratorOutputForm::clearLogging()
{
    m_entries.clear();
    m_counts.clear();
    showAnew();
    showStartOrText();
}

void GeneratorOutputForm::appendLogging(const QString &loggingString)
{
    // Reading the settings for each of thousands of messages would be felt.
    if (waiting() == 0)
        m_timeFormat = chosenTimeFormat();
    Entry entry{.time = currentTimeText(m_timeFormat) + QLatin1String(": "), .text = loggingString};
    if (entry.text.startsWith(u'\n')) {
        entry.text.remove(0, 1);
        if (!m_entries.isEmpty())
            append({.isHtml = true});
    }
    // The message ends its line anyway.
    if (entry.text.endsWith(u'\n'))
        entry.text.chop(1);
    trackCheck(entry.text);
    entry.kind = OutputClass::of(entry.text);
    if (entry.kind != OutputClass::Kind::Progress)
        ++m_counts[entry.kind];
    if (OutputLinks::namesObject(entry.text))
        entry.line = m_checkedLine;
    append(std::move(entry));
}

void GeneratorOutputForm::appendHtml(const QString &html)
{
    trackCheck(html);
    append({.text = html, .isHtml = true});
}

/// Follows the check by its headings: whether it begins, and which line it is at.
void GeneratorOutputForm::trackCheck(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("(-?\\d+(?:[\\.,]\\d+(?:e\\d+)?)?)"));
    if (text.contains(checkStarted)) {
        beginRun();
        m_checkedLine.reset();
    } else if (text.contains(checkFinished)) {
        m_checkedLine.reset();
    } else if (const qsizetype at = text.indexOf(lineHeading); at >= 0) {
        bool isNumber = false;
        const uint line = number.match(text, at + lineHeading.size()).captured(1).toUInt(&isNumber);
        if (isNumber && line <= 0xFF)
            m_checkedLine = static_cast<quint8>(line);
    }
}

/// What former runs have found stays in the text, but is no longer counted or gone to.
void GeneratorOutputForm::beginRun()
{
    if (m_counts.isEmpty())
        return;
    for (Entry &entry : m_entries)
        entry.kind = OutputClass::Kind::Progress;
    m_counts.clear();
    if (!m_wanted.isEmpty()) {
        showAnew();
        return;
    }
    for (QTextBlock block = m_logging->document()->begin(); block.isValid(); block = block.next())
        block.setUserState(-1);
    m_logging->setExtraSelections({});
}

/// Makes the text from its begin, with the messages that are wanted.
void GeneratorOutputForm::showAnew()
{
    m_wanted = m_filterBar->chosen();
    m_showsBegin = !m_wanted.isEmpty();
    m_inText = 0;
    m_logging->clear();
    m_logging->setExtraSelections({});
    m_logging->setPlaceholderText(m_entries.isEmpty() || m_wanted.isEmpty()
                                      ? tr("The messages of the next generation appear here.")
                                      : tr("The last run gave no messages of this kind."));
    m_filterBar->setCounts(m_counts);
    if (waiting() > 0)
        m_flushTimer.start(0);
    else
        m_flushTimer.stop();
}

void GeneratorOutputForm::append(Entry entry)
{
    m_entries.append(std::move(entry));
    m_showsBegin = false;
    if (m_entries.size() == 1)
        showStartOrText();
    if (!m_flushTimer.isActive())
        m_flushTimer.start(flushMilliseconds);
}

void GeneratorOutputForm::flushSome()
{
    flush(flushCount);
    // The window gets its turn in between.
    if (waiting() > 0)
        m_flushTimer.start(0);
}

void GeneratorOutputForm::flush(qsizetype most) const
{
    if (waiting() == 0)
        return;
    const QTextCursor marked = m_logging->textCursor();
    const int anchor = marked.anchor();
    const int position = marked.position();
    const int scrolled = m_logging->verticalScrollBar()->value();

    insertWaiting(std::min(most, waiting()));
    m_filterBar->setCounts(m_counts);

    if (anchor == position) {
        m_logging->moveCursor(m_showsBegin ? QTextCursor::Start : QTextCursor::End);
        m_logging->horizontalScrollBar()->setValue(0);
        return;
    }
    // Who is marking text to copy keeps it; at the end of the text it would grow along.
    QTextCursor kept(m_logging->document());
    kept.setPosition(anchor);
    kept.setPosition(position, QTextCursor::KeepAnchor);
    m_logging->setTextCursor(kept);
    m_logging->verticalScrollBar()->setValue(scrolled);
}

void GeneratorOutputForm::insertWaiting(qsizetype count) const
{
    QTextCursor cursor(m_logging->document());
    cursor.movePosition(QTextCursor::End);
    cursor.beginEditBlock();
    bool isFirst = m_logging->document()->isEmpty();
    for (const Entry &entry : m_entries.sliced(m_inText, count)) {
        if (!m_wanted.isEmpty() && !m_wanted.contains(entry.kind))
            continue;
        if (!isFirst)
            cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
        isFirst = false;
        if (entry.isHtml)
            cursor.insertHtml(entry.text);
        else
            insertMessage(cursor, entry);
    }
    cursor.endEditBlock();
    m_inText += count;
}

void GeneratorOutputForm::insertMessage(QTextCursor &cursor, const Entry &entry) const
{
    const QTextCharFormat plain;
    const int start = cursor.position();
    cursor.insertText(entry.time, plain);
    if (entry.line)
        cursor.insertText(QStringLiteral(" Line %1 - ").arg(*entry.line), plain);
    // Numbers tell the line only in the whole text, which tags may have cut in pieces.
    QString text;
    const QList<OutputMarkup::Run> runs = OutputMarkup::runs(entry.text);
    for (const OutputMarkup::Run &run : runs)
        text += run.text;
    const int begin = cursor.position();
    for (const OutputMarkup::Run &run : runs)
        cursor.insertText(run.text, readable(run.format, m_logging->palette()));

    const QColor colour = m_logging->palette().color(QPalette::Link);
    QTextCursor marker(cursor);
    for (const OutputLinks::Link &link : OutputLinks::find(text, entry.line.value_or(0))) {
        QTextCharFormat format;
        format.setAnchor(true);
        format.setAnchorHref(link.target.anchor());
        format.setForeground(colour);
        format.setFontUnderline(true);
        marker.setPosition(begin + static_cast<int>(link.begin));
        marker.setPosition(begin + static_cast<int>(link.begin + link.length),
                           QTextCursor::KeepAnchor);
        marker.mergeCharFormat(format);
    }
    if (entry.kind != OutputClass::Kind::Progress)
        m_logging->document()->findBlock(start).setUserState(isMessage);
}

QString GeneratorOutputForm::getLogging() const
{
    flush(waiting());
    QStringList lines;
    for (const Entry &entry : m_entries)
        lines.append(entry.plainText());
    return lines.join(u'\n');
}

void GeneratorOutputForm::copyAll()
{
    QGuiApplication::clipboard()->setText(getLogging());
}

// --- From message to message --------------------------------------------------------------------

bool GeneratorOutputForm::goToNextMessage()
{
    return goToMessage(Direction::Next);
}

bool GeneratorOutputForm::goToPreviousMessage()
{
    return goToMessage(Direction::Previous);
}

/// The cursor stands at the begin of the message, so that Tab leads to its first link.
bool GeneratorOutputForm::goToMessage(Direction direction)
{
    flush(waiting());
    const QTextBlock block = messageFrom(direction);
    if (!block.isValid())
        return false;
    const QTextCursor cursor(block);
    m_logging->setTextCursor(cursor);
    QTextEdit::ExtraSelection mark;
    mark.cursor = cursor;
    QColor colour = m_logging->palette().color(QPalette::Highlight);
    colour.setAlphaF(0.25F);
    mark.format.setBackground(colour);
    mark.format.setProperty(QTextFormat::FullWidthSelection, true);
    m_logging->setExtraSelections({mark});
    m_logging->ensureCursorVisible();
    m_logging->setFocus(Qt::ShortcutFocusReason);
    return true;
}

/// Not valid if there is no message at all.
QTextBlock GeneratorOutputForm::messageFrom(Direction direction) const
{
    const QTextDocument *document = m_logging->document();
    const bool forward = direction == Direction::Next;
    QTextBlock block = m_logging->textCursor().block();
    for (int steps = document->blockCount(); steps > 0; --steps) {
        block = forward ? block.next() : block.previous();
        if (!block.isValid())
            block = forward ? document->firstBlock() : document->lastBlock();
        if (block.userState() == isMessage)
            return block;
    }
    return {};
}

// --- Links --------------------------------------------------------------------------------------

void GeneratorOutputForm::on_tbLogging_anchorClicked(const QUrl &url)
{
    if (const auto target = OutputLinks::Target::fromAnchor(url.path(QUrl::FullyDecoded)))
        follow(*target);
}

void GeneratorOutputForm::follow(const OutputLinks::Target &target)
{
    using Kind = OutputLinks::Target::Kind;
    switch (target.kind) {
    case Kind::Object:
        emit gotoObject(target.line, target.index);
        break;
    case Kind::SubObject:
        emit goToSubobj(target.line, target.index, target.subindex);
        break;
    case Kind::Setting:
        emit searchRequest(target.search);
        break;
    }
}

/// The object whose link is there, else the first one that the message there links to.
std::optional<OutputLinks::Target> GeneratorOutputForm::objectAt(const QPoint &position) const
{
    QStringList anchors{m_logging->anchorAt(position)};
    const QTextBlock block = m_logging->cursorForPosition(position).block();
    for (auto it = block.begin(); !it.atEnd(); ++it)
        anchors.append(it.fragment().charFormat().anchorHref());
    for (const QString &anchor : std::as_const(anchors)) {
        const auto target = OutputLinks::Target::fromAnchor(QUrl(anchor).path(QUrl::FullyDecoded));
        if (target && target->kind != OutputLinks::Target::Kind::Setting)
            return target;
    }
    return std::nullopt;
}

void GeneratorOutputForm::addGotoAction(QMenu &menu, const QPoint &position)
{
    const auto target = objectAt(position);
    if (!target)
        return;
    const QString index = QString::number(target->index, 16);
    QAction *action = menu.addAction(QStringLiteral("Go to object 0x%1").arg(index));
    action->setObjectName(QStringLiteral("actionGoToObject"));
    action->setData(target->anchor());
    connect(action, &QAction::triggered, this, &GeneratorOutputForm::handleGotoRequest);
    menu.addSeparator();
}

void GeneratorOutputForm::handleGotoRequest()
{
    const auto *action = qobject_cast<QAction *>(sender());
    if (action == nullptr)
        return;
    if (const auto target = OutputLinks::Target::fromAnchor(action->data().toString()))
        follow(*target);
}

void GeneratorOutputForm::showContextMenu(const QPoint &position)
{
    flush(waiting());
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("outputMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    addGotoAction(*menu, position);
    QAction *copy = menu->addAction(tr("&Copy"), m_logging, &QTextBrowser::copy);
    copy->setShortcut(QKeySequence::Copy);
    copy->setEnabled(m_logging->textCursor().hasSelection());
    menu->addAction(tr("Cop&y All"), this, &GeneratorOutputForm::copyAll)->setShortcut(copyAllKeys);
    menu->addAction(tr("Select &All"), m_logging, &QTextBrowser::selectAll)
        ->setShortcut(QKeySequence::SelectAll);
    menu->addSeparator();
    QAction *next =
        menu->addAction(tr("&Next Message"), this, &GeneratorOutputForm::goToNextMessage);
    next->setShortcut(OutputFilterBar::nextMessage());
    QAction *previous =
        menu->addAction(tr("&Previous Message"), this, &GeneratorOutputForm::goToPreviousMessage);
    previous->setShortcut(OutputFilterBar::previousMessage());
    next->setEnabled(!m_counts.isEmpty());
    previous->setEnabled(!m_counts.isEmpty());
    menu->addSeparator();
    menu->addAction(tr("Clea&r"), this, &GeneratorOutputForm::clearLogging);
    menu->popup(m_logging->viewport()->mapToGlobal(position));
}
