#include "app/generatoroutputform.h"

#include "app/outputmarkup.h"
#include "store/usersettings.h"

#include <QAction>
#include <QClipboard>
#include <QDateTime>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QShortcut>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int flushMilliseconds = 40;
/// As many as reach the text without anybody noticing a pause.
constexpr qsizetype flushCount = 400;
const QString checkStarted = QStringLiteral("Check of model consistency started");
const QString checkFinished = QStringLiteral("Check of model consistency finished");
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

GeneratorOutputForm::GeneratorOutputForm(QWidget *parent)
    : BaseMainForm(parent), m_logging(new QTextBrowser(this)), m_count(new QLabel(this))
{
    m_logging->setObjectName(QStringLiteral("tbLogging"));
    m_logging->setOpenLinks(false);
    m_logging->setTextInteractionFlags(Qt::TextBrowserInteraction | Qt::TextSelectableByKeyboard);
    m_logging->setPlaceholderText(
        QStringLiteral("The messages of the next generation appear here."));
    m_logging->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_logging->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_logging, &QTextBrowser::anchorClicked, this,
            &GeneratorOutputForm::on_tbLogging_anchorClicked);
    connect(m_logging, &QWidget::customContextMenuRequested, this,
            &GeneratorOutputForm::showContextMenu);
    connect(m_logging, &QTextEdit::copyAvailable, this, &GeneratorOutputForm::actionsChanged);
    m_flushTimer.setSingleShot(true);
    connect(&m_flushTimer, &QTimer::timeout, this, &GeneratorOutputForm::flushSome);
    makeLayout();
    showCount();
}

void GeneratorOutputForm::makeLayout()
{
    auto *copy = new QPushButton(tr("Cop&y All"), this);
    copy->setObjectName(QStringLiteral("btnCopyAll"));
    copy->setToolTip(tr("Copy all messages to the clipboard (Ctrl+Shift+C)"));
    connect(copy, &QPushButton::clicked, this, &GeneratorOutputForm::copyAll);
    auto *clear = new QPushButton(tr("Clea&r"), this);
    clear->setObjectName(QStringLiteral("btnClear"));
    clear->setToolTip(tr("Remove all messages"));
    connect(clear, &QPushButton::clicked, this, &GeneratorOutputForm::clearLogging);
    auto *shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), this);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, &GeneratorOutputForm::copyAll);

    m_count->setObjectName(QStringLiteral("lblCheckMessages"));
    auto *row = new QHBoxLayout;
    row->setContentsMargins(8, 0, 8, 4);
    row->setSpacing(8);
    row->addWidget(m_count, 1);
    row->addWidget(copy);
    row->addWidget(clear);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_logging, 1);
    layout->addLayout(row);
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
    m_waiting.clear();
    m_flushTimer.stop();
    m_logging->clear();
    m_checkMessages = 0;
    showCount();
}

void GeneratorOutputForm::appendLogging(const QString &loggingString)
{
    // Reading the settings for each of thousands of messages would be felt.
    if (m_waiting.isEmpty())
        m_timeFormat = chosenTimeFormat();
    Entry entry{.time = currentTimeText(m_timeFormat) + QLatin1String(": "), .text = loggingString};
    if (entry.text.startsWith(u'\n')) {
        entry.text.remove(0, 1);
        const bool isFirst = m_waiting.isEmpty() && m_logging->document()->isEmpty();
        if (!isFirst)
            append({.isHtml = true});
    }
    // The message ends its line anyway.
    if (entry.text.endsWith(u'\n'))
        entry.text.chop(1);
    trackCheck(entry.text);
    if (OutputLinks::namesObject(entry.text))
        entry.line = m_checkedLine;
    append(std::move(entry));
}

void GeneratorOutputForm::appendHtml(const QString &html)
{
    trackCheck(html);
    append({.text = html, .isHtml = true});
}

/// Follows the check by its headings: which line it is at, and how much it has found.
void GeneratorOutputForm::trackCheck(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("(-?\\d+(?:[\\.,]\\d+(?:e\\d+)?)?)"));
    if (text.contains(checkStarted)) {
        m_inCheck = true;
        m_checkMessages = 0;
        m_checkedLine.reset();
    } else if (text.contains(checkFinished)) {
        m_inCheck = false;
        m_checkedLine.reset();
    } else if (const qsizetype at = text.indexOf(lineHeading); at >= 0) {
        bool isNumber = false;
        const uint line = number.match(text, at + lineHeading.size()).captured(1).toUInt(&isNumber);
        if (isNumber && line <= 0xFF)
            m_checkedLine = static_cast<quint8>(line);
    } else if (m_inCheck && !text.isEmpty()) {
        ++m_checkMessages;
    }
}

void GeneratorOutputForm::append(Entry entry)
{
    m_waiting.append(std::move(entry));
    if (!m_flushTimer.isActive())
        m_flushTimer.start(flushMilliseconds);
}

void GeneratorOutputForm::flushSome()
{
    flush(flushCount);
    // The window gets its turn in between.
    if (!m_waiting.isEmpty())
        m_flushTimer.start(0);
}

void GeneratorOutputForm::flush(qsizetype most) const
{
    if (m_waiting.isEmpty())
        return;
    const QTextCursor marked = m_logging->textCursor();
    const int anchor = marked.anchor();
    const int position = marked.position();
    const int scrolled = m_logging->verticalScrollBar()->value();

    const qsizetype count = std::min(most, m_waiting.size());
    insertFirst(count);
    m_waiting.remove(0, count);
    showCount();

    if (anchor == position) {
        m_logging->moveCursor(QTextCursor::End);
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

void GeneratorOutputForm::insertFirst(qsizetype count) const
{
    QTextCursor cursor(m_logging->document());
    cursor.movePosition(QTextCursor::End);
    cursor.beginEditBlock();
    bool isFirst = m_logging->document()->isEmpty();
    for (const Entry &entry : m_waiting.first(count)) {
        if (!isFirst)
            cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
        isFirst = false;
        if (entry.isHtml)
            cursor.insertHtml(entry.text);
        else
            insertMessage(cursor, entry);
    }
    cursor.endEditBlock();
}

void GeneratorOutputForm::insertMessage(QTextCursor &cursor, const Entry &entry) const
{
    const QTextCharFormat plain;
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
}

QString GeneratorOutputForm::getLogging() const
{
    flush(m_waiting.size());
    return m_logging->toPlainText();
}

void GeneratorOutputForm::copyAll()
{
    QGuiApplication::clipboard()->setText(getLogging());
}

void GeneratorOutputForm::showCount() const
{
    m_count->setText(m_checkMessages == 1
                         ? tr("1 message of the model check")
                         : tr("%1 messages of the model check").arg(m_checkMessages));
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
    flush(m_waiting.size());
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("outputMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    addGotoAction(*menu, position);
    QAction *copy = menu->addAction(tr("&Copy"), m_logging, &QTextBrowser::copy);
    copy->setShortcut(QKeySequence::Copy);
    copy->setEnabled(m_logging->textCursor().hasSelection());
    menu->addAction(tr("Cop&y All"), this, &GeneratorOutputForm::copyAll)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    menu->addAction(tr("Select &All"), m_logging, &QTextBrowser::selectAll)
        ->setShortcut(QKeySequence::SelectAll);
    menu->addSeparator();
    menu->addAction(tr("C&lear"), this, &GeneratorOutputForm::clearLogging);
    menu->popup(m_logging->viewport()->mapToGlobal(position));
}
