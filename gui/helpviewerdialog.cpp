#include "gui/helpviewerdialog.h"

#include "gui/guihelper.h"
#include "gui/lineicon.h"
#include "store/usersettings.h"

#include <QAction>
#include <QDesktopServices>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolBar>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

namespace {

constexpr QSize usualSize(920, 640);
constexpr int contentsWidth = 250;
constexpr int mostZoom = 12;
constexpr int leastZoom = -4;
constexpr int mostMarks = 500;
const QString sizeKey = QStringLiteral("Geometry/helpsize");
const QString zoomKey = QStringLiteral("Geometry/helpzoom");

/// Of a contents entry: the page's file name.
constexpr int fileRole = Qt::UserRole;

QStringList words(const QString &text)
{
    return text.split(u' ', Qt::SkipEmptyParts);
}

} // namespace

HelpViewerDialog::HelpViewerDialog(const QString &folder, const QList<Chapter> &chapters,
                                   QWidget *parent)
    : QDialog(parent), m_folder(folder), m_contents(new QTreeWidget(this)),
      m_browser(new QTextBrowser(this)), m_search(new QLineEdit(this)), m_note(new QLabel(this))
{
    setWindowFlags(Qt::Window);
    setWindowTitle(tr("Manual - %1").arg(GuiHelper::boxTitle()));
    setWindowIcon(LineIcon::icon(QStringLiteral("manual")));
    const QSize size = UserSettings().value(sizeKey).toSize();
    resize(size.isValid() ? size : usualSize);
    makeLayout();
    fillContents(chapters);
    setZoom(UserSettings().value(zoomKey).toInt());
    updateActions();

    connect(m_contents, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *item) {
        if (item != nullptr && item->data(0, fileRole).toString() != m_shown.file)
            showPage(item->data(0, fileRole).toString());
    });
    connect(m_browser, &QTextBrowser::anchorClicked, this, &HelpViewerDialog::follow);
    connect(m_search, &QLineEdit::textChanged, this, &HelpViewerDialog::filterContents);
    connect(m_search, &QLineEdit::returnPressed, this, &HelpViewerDialog::findNext);
}

HelpViewerDialog::~HelpViewerDialog()
{
    UserSettings settings;
    settings.setValue(sizeKey, size());
    settings.setValue(zoomKey, m_zoom);
}

void HelpViewerDialog::makeLayout()
{
    m_contents->setObjectName(QStringLiteral("helpContents"));
    m_contents->header()->hide();
    m_contents->setRootIsDecorated(false);
    m_contents->setItemsExpandable(false);
    m_contents->setFrameShape(QFrame::NoFrame);
    m_contents->setAccessibleName(tr("Contents"));
    m_browser->setObjectName(QStringLiteral("helpText"));
    m_browser->setOpenLinks(false);
    m_browser->setFrameShape(QFrame::NoFrame);
    m_search->setObjectName(QStringLiteral("helpSearch"));
    m_search->setPlaceholderText(
        GuiHelper::withShortcut(tr("Search all pages"), QKeySequence::Find));
    m_search->setClearButtonEnabled(true);
    m_note->setMargin(4);
    m_note->hide();

    auto *left = new QWidget(this);
    auto *column = new QVBoxLayout(left);
    column->setContentsMargins(8, 8, 0, 8);
    column->addWidget(m_search);
    column->addWidget(m_contents, 1);
    auto *splitter = new QSplitter(this);
    splitter->addWidget(left);
    splitter->addWidget(m_browser);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    splitter->setSizes({contentsWidth, usualSize.width() - contentsWidth});

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    makeActions();
    layout->addWidget(splitter, 1);
    layout->addWidget(m_note);
    m_browser->setFocus();
}

QAction *HelpViewerDialog::addAction(const char *icon, const QString &text,
                                     const QKeySequence &keys, void (HelpViewerDialog::*slot)())
{
    auto *action = new QAction(LineIcon::icon(QLatin1String(icon)), text, this);
    action->setShortcut(keys);
    action->setToolTip(GuiHelper::withShortcut(text, keys));
    connect(action, &QAction::triggered, this, slot);
    return action;
}

void HelpViewerDialog::makeActions()
{
    auto *bar = new QToolBar(this);
    m_back = addAction("back", tr("Back"), QKeySequence(Qt::ALT | Qt::Key_Left),
                       &HelpViewerDialog::back);
    m_forward = addAction("forward", tr("Forward"), QKeySequence(Qt::ALT | Qt::Key_Right),
                          &HelpViewerDialog::forward);
    bar->addAction(m_back);
    bar->addAction(m_forward);
    bar->addSeparator();
    bar->addAction(
        addAction("zoom-in", tr("Larger text"), QKeySequence::ZoomIn, &HelpViewerDialog::zoomIn));
    bar->addAction(addAction("zoom-out", tr("Smaller text"), QKeySequence::ZoomOut,
                             &HelpViewerDialog::zoomOut));
    bar->addAction(addAction("zoom-reset", tr("Usual text size"),
                             QKeySequence(Qt::CTRL | Qt::Key_0), &HelpViewerDialog::resetZoom));
    layout()->setMenuBar(bar);

    const auto add = [this](const QKeySequence &keys, auto function) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, function);
    };
    add(QKeySequence::Find, [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    });
    add(QKeySequence(Qt::Key_F3), &HelpViewerDialog::findNext);
    add(QKeySequence(Qt::SHIFT | Qt::Key_F3), &HelpViewerDialog::findPrevious);
    add(QKeySequence(Qt::CTRL | Qt::Key_W), &QWidget::close);
}

void HelpViewerDialog::fillContents(const QList<Chapter> &chapters)
{
    for (const Chapter &chapter : chapters) {
        auto *heading = new QTreeWidgetItem(m_contents, {chapter.title});
        QFont font = m_contents->font();
        font.setWeight(QFont::DemiBold);
        heading->setFont(0, font);
        heading->setFlags(Qt::ItemIsEnabled);
        for (const QString &file : chapter.files) {
            const HelpPage page(m_folder + file);
            if (!page.exists())
                continue;
            auto *item = new QTreeWidgetItem(heading, {page.title()});
            item->setToolTip(0, page.title());
            item->setData(0, fileRole, file);
            m_items.insert(file, item);
            m_pages.insert(file, page);
        }
    }
    m_contents->expandAll();
}

// --- Pages --------------------------------------------------------------------------------------

bool HelpViewerDialog::showPage(const QString &file, const QString &anchor)
{
    if (!m_pages.contains(file))
        return false;
    rememberPlace();
    m_future.clear();
    load(file);
    const int position = HelpPage::positionOf(*m_browser->document(), anchor);
    if (position >= 0) {
        QTextCursor cursor(m_browser->document());
        cursor.movePosition(QTextCursor::End);
        m_browser->setTextCursor(cursor); // so that the heading comes to the top
        cursor.setPosition(position);
        m_browser->setTextCursor(cursor);
    } else if (!m_search->text().isEmpty()) {
        find(false);
    }
    return true;
}

void HelpViewerDialog::load(const QString &file)
{
    m_shown = {file, 0};
    auto *document = new QTextDocument(m_browser);
    document->setDefaultFont(m_browser->font());
    m_pages.constFind(file)->show(*document, palette());
    m_browser->setExtraSelections({}); // they must not outlive their document
    const QPointer<QTextDocument> former = m_browser->document();
    m_browser->setDocument(document);
    delete former; // the browser has deleted its own one, and no other
    m_browser->moveCursor(QTextCursor::Start);
    m_browser->verticalScrollBar()->setValue(0);
    m_contents->setCurrentItem(m_items.value(file));
    m_note->hide();
    markWords();
    updateActions();
}

void HelpViewerDialog::rememberPlace()
{
    if (m_shown.file.isEmpty())
        return;
    m_shown.scrolled = m_browser->verticalScrollBar()->value();
    m_past.append(m_shown);
}

void HelpViewerDialog::goTo(const Place &place)
{
    load(place.file);
    m_browser->verticalScrollBar()->setValue(place.scrolled);
}

void HelpViewerDialog::back()
{
    if (m_past.isEmpty())
        return;
    m_shown.scrolled = m_browser->verticalScrollBar()->value();
    m_future.append(m_shown);
    goTo(m_past.takeLast());
}

void HelpViewerDialog::forward()
{
    if (m_future.isEmpty())
        return;
    rememberPlace();
    goTo(m_future.takeLast());
}

void HelpViewerDialog::updateActions()
{
    m_back->setEnabled(!m_past.isEmpty());
    m_forward->setEnabled(!m_future.isEmpty());
}

/// Pages link each other as the sources of the manual lie, and places on the web.
void HelpViewerDialog::follow(const QUrl &link)
{
    if (link.scheme().startsWith(QLatin1String("http"))) {
        if (GuiHelper::isAttended())
            QDesktopServices::openUrl(link);
        return;
    }
    const QString file = link.path().isEmpty() ? m_shown.file : link.fileName();
    if (showPage(file, link.fragment()))
        return;
    m_note->setText(tr("%1 is not part of the manual.").arg(link.toDisplayString()));
    m_note->show();
}

void HelpViewerDialog::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !m_shown.file.isEmpty()) {
        m_shown.scrolled = m_browser->verticalScrollBar()->value();
        goTo(Place(m_shown));
    }
}

// --- Search -------------------------------------------------------------------------------------

void HelpViewerDialog::clearSearch()
{
    m_search->clear();
}

void HelpViewerDialog::filterContents()
{
    const QStringList wanted = words(m_search->text());
    int shown = 0;
    for (int i = 0; i < m_contents->topLevelItemCount(); ++i) {
        QTreeWidgetItem *chapter = m_contents->topLevelItem(i);
        bool hasPages = false;
        for (int j = 0; j < chapter->childCount(); ++j) {
            const QString file = chapter->child(j)->data(0, fileRole).toString();
            const bool fits = m_pages.constFind(file)->contains(wanted);
            chapter->child(j)->setHidden(!fits);
            hasPages = hasPages || fits;
            shown += fits ? 1 : 0;
        }
        chapter->setHidden(!hasPages);
    }
    m_note->setText(tr("No page has all of these words."));
    m_note->setVisible(shown == 0);
    markWords();
}

void HelpViewerDialog::markWords()
{
    QTextCharFormat format;
    QColor ground = palette().color(QPalette::Highlight);
    constexpr int visibleThrough = 70;
    ground.setAlpha(visibleThrough);
    format.setBackground(ground);
    QList<QTextEdit::ExtraSelection> marks;
    for (const QString &word : words(m_search->text())) {
        QTextCursor at = m_browser->document()->find(word);
        while (!at.isNull() && marks.size() < mostMarks) {
            marks.append({at, format});
            at = m_browser->document()->find(word, at);
        }
    }
    m_browser->setExtraSelections(marks);
}

void HelpViewerDialog::findNext()
{
    // The page in front may be none of those that were found.
    const QTreeWidgetItem *shown = m_items.value(m_shown.file);
    if (shown != nullptr && !shown->isHidden()) {
        find(false);
        return;
    }
    for (QTreeWidgetItemIterator at(m_contents, QTreeWidgetItemIterator::NotHidden); *at; ++at) {
        if (showPage((*at)->data(0, fileRole).toString()))
            return;
    }
}

void HelpViewerDialog::findPrevious()
{
    find(true);
}

/// Goes on to the next place of any of the words.
void HelpViewerDialog::find(bool backward)
{
    const QList<QTextEdit::ExtraSelection> marks = m_browser->extraSelections();
    const int here = backward ? m_browser->textCursor().selectionStart()
                              : m_browser->textCursor().selectionEnd();
    const QTextEdit::ExtraSelection *best = nullptr;
    const QTextEdit::ExtraSelection *outermost = nullptr; // where the search starts again
    const auto isBefore = [&](const auto &a, const auto &b) {
        const bool before = a.cursor.selectionStart() < b.cursor.selectionStart();
        return before != backward;
    };
    for (const QTextEdit::ExtraSelection &mark : marks) {
        const bool lies =
            backward ? mark.cursor.selectionEnd() <= here : mark.cursor.selectionStart() >= here;
        if (lies && (best == nullptr || isBefore(mark, *best)))
            best = &mark;
        if (outermost == nullptr || isBefore(mark, *outermost))
            outermost = &mark;
    }
    if (best == nullptr)
        best = outermost;
    if (best != nullptr)
        m_browser->setTextCursor(best->cursor);
}

// --- Zoom ---------------------------------------------------------------------------------------

void HelpViewerDialog::setZoom(int steps)
{
    const int bounded = qBound(leastZoom, steps, mostZoom);
    m_browser->zoomIn(bounded - m_zoom);
    m_zoom = bounded;
}

void HelpViewerDialog::zoomIn()
{
    setZoom(m_zoom + 1);
}

void HelpViewerDialog::zoomOut()
{
    setZoom(m_zoom - 1);
}

void HelpViewerDialog::resetZoom()
{
    setZoom(0);
}
