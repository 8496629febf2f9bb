#include "odeditor/objectdictionaryform.h"

#include "canopen/indextext.h"
#include "dictionary/segments.h"
#include "odeditor/editing.h"
#include "odeditor/manufacturersegmentform.h"
#include "odeditor/objectpanes.h"
#include "odeditor/renamedelegate.h"
#include "odeditor/tolvextreewidget.h"

#include <QFontDatabase>
#include <QHeaderView>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QScrollArea>
#include <QShowEvent>
#include <QSplitter>
#include <QVBoxLayout>

namespace {

constexpr int treeWidth = 340;
constexpr int paneWidth = 560;

QFont fixedFont()
{
    const QString wanted = QStringLiteral("Courier New");
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (QFontDatabase::hasFamily(wanted))
        font.setFamily(wanted);
    return font;
}

} // namespace

ObjectDictionaryForm::ObjectDictionaryForm(QWidget *parent)
    : BaseMainForm(parent), m_view(new TolvexTreeWidget(QStringLiteral("treeWidget"), this)),
      m_filter(new QLineEdit(this)), m_splitter(new QSplitter(this)),
      m_tree(new DictionaryTree(*m_view))
{
    makeWidgets();
    makeShortcuts();
    m_paneTimer.setSingleShot(true);
    m_paneTimer.setInterval(0);
    connect(&m_paneTimer, &QTimer::timeout, this, [this] {
        if (m_pane != nullptr)
            m_pane->updateData();
    });
    connect(m_view, &QTreeWidget::itemClicked, this,
            &ObjectDictionaryForm::on_treeWidget_itemClicked);
    connect(m_view, &QTreeWidget::itemActivated, this,
            &ObjectDictionaryForm::on_treeWidget_itemActivated);
    connect(m_view, &TolvexTreeWidget::itemSelectionHasChanged, this,
            [this] { showRow(m_tree->current()); });
    connect(m_view, &TolvexTreeWidget::aboutToExpandAll, m_tree, &DictionaryTree::prepareAll);
    connect(m_view, &QTreeWidget::customContextMenuRequested, this,
            &ObjectDictionaryForm::displayContextMenu);
    connect(m_view, &QTreeWidget::itemSelectionChanged, this, &BaseMainForm::actionsChanged);
    connect(m_view, &QTreeWidget::currentItemChanged, this, &BaseMainForm::actionsChanged);
    connect(m_filter, &QLineEdit::textChanged, this,
            &ObjectDictionaryForm::on_leFilter_textChanged);
}

ObjectDictionaryForm::~ObjectDictionaryForm() = default;

void ObjectDictionaryForm::makeWidgets()
{
    m_filter->setObjectName(QStringLiteral("leFilter"));
    m_filter->setPlaceholderText(QStringLiteral("Type here to filter"));
    m_filter->setAccessibleName(tr("Filter of the objects"));
    m_filter->setClearButtonEnabled(true);
    m_view->setAccessibleName(tr("Object dictionary"));
    m_view->setFont(fixedFont());
    m_view->setHeaderHidden(true);
    m_view->setUniformRowHeights(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::EditKeyPressed);
    m_view->setExpandsOnDoubleClick(true);
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setResizeContentsPrecision(0);
    m_view->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    auto *delegate = new RenameDelegate(m_view);
    delegate->setNames([this](const TreeRow &row) { return storedName(row); },
                       [this](const TreeRow &row, const QString &name) { rename(row, name); });
    m_view->setItemDelegate(delegate);

    auto *left = new QWidget(this);
    auto *leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->addWidget(m_filter);
    leftLayout->addWidget(m_view);
    m_splitter->setObjectName(QStringLiteral("splitter"));
    m_splitter->addWidget(left);
    m_splitter->setChildrenCollapsible(false);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);
    setFocusProxy(m_view);
}

bool ObjectDictionaryForm::setDatabase(const std::shared_ptr<ObjectDataBase> &database)
{
    dropPane();
    if (!BaseMainForm::setDatabase(database))
        return false;
    m_tree->forget();
    setLine(line());
    return true;
}

void ObjectDictionaryForm::setLine(quint8 line)
{
    lineHandle(line);
}

void ObjectDictionaryForm::lineHandle(quint8 currentLine)
{
    if (currentLine != line()) {
        saveData();
        dropPane();
        BaseMainForm::setLine(currentLine);
    }
    m_isStale = true;
    if (isVisible())
        updateAllTree();
}

void ObjectDictionaryForm::showEvent(QShowEvent *event)
{
    BaseMainForm::showEvent(event);
    if (m_isStale)
        updateAllTree();
}

EditContext ObjectDictionaryForm::editContext() const
{
    return editContextOf(context(), line(), m_expert);
}

// --- The pane -----------------------------------------------------------------------------------

void ObjectDictionaryForm::on_treeWidget_itemClicked(QTreeWidgetItem *item, int)
{
    showRow(DictionaryTree::rowOf(item));
}

void ObjectDictionaryForm::on_treeWidget_itemActivated(QTreeWidgetItem *item, int)
{
    showRow(DictionaryTree::rowOf(item));
}

void ObjectDictionaryForm::on_treeWidget_activated(const QModelIndex &index)
{
    if (index.isValid())
        showRow(m_tree->current());
}

void ObjectDictionaryForm::showRow(const TreeRow &row)
{
    const bool isObject =
        row.level == TreeRow::Level::Object || row.level == TreeRow::Level::SubIndex;
    const quint16 segment = row.level == TreeRow::Level::Segment ? row.index : quint16(0);
    const quint16 index = isObject ? row.index : quint16(0);
    const quint8 subindex =
        row.level == TreeRow::Level::SubIndex ? row.subindex : BaseTreeForm::noSubindex;
    if (database() == nullptr || row.level == TreeRow::Level::None ||
        (m_pane != nullptr && segment == m_shownSegment && index == m_shownIndex &&
         subindex == m_shownSubindex))
        return;
    saveData();
    dropPane();
    m_shownSegment = segment;
    m_shownIndex = index;
    m_shownSubindex = subindex;
    openPane();
}

BaseTreeForm *ObjectDictionaryForm::makePane()
{
    if (m_shownIndex == 0) {
        auto *pane = new ManufacturerSegmentForm(this);
        connect(pane, &ManufacturerSegmentForm::addWanted, this, &ObjectDictionaryForm::addObject);
        connect(pane, &ManufacturerSegmentForm::addImportedWanted, this,
                &ObjectDictionaryForm::addImported);
        connect(pane, &ManufacturerSegmentForm::importWanted, this,
                &ObjectDictionaryForm::importWanted);
        return pane;
    }
    return m_shownSubindex == BaseTreeForm::noSubindex ? ObjectPanes::forObject(this)
                                                       : ObjectPanes::forSubIndex(this);
}

void ObjectDictionaryForm::openPane()
{
    m_pane = makePane();
    const quint16 index = m_shownIndex != 0 ? m_shownIndex : m_shownSegment;
    m_pane->open(context(), {.line = line(),
                             .index = index,
                             .subindex = m_shownSubindex,
                             .canEdit = true, // of what, the rights tell
                             .expert = m_expert});
    const QList<int> sizes = m_splitter->sizes();
    m_splitter->addWidget(m_pane);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setSizes(sizes.size() > 1 ? sizes : QList<int>{treeWidth, paneWidth});
    m_pane->updateData();
    m_pane->show();
}

/// Deletes the pane; what it holds is not saved.
void ObjectDictionaryForm::dropPane()
{
    m_paneTimer.stop();
    if (m_pane != nullptr) {
        // It may be the sender of what is going on.
        m_pane->hide();
        m_pane->setParent(nullptr);
        m_pane->deleteLater();
        m_pane = nullptr;
    }
    m_shownSegment = 0;
    m_shownIndex = 0;
    m_shownSubindex = BaseTreeForm::noSubindex;
}

void ObjectDictionaryForm::saveData()
{
    if (m_pane != nullptr && database() != nullptr)
        m_pane->saveData();
}

void ObjectDictionaryForm::updatePaneSoon()
{
    if (m_pane != nullptr)
        m_paneTimer.start();
}

void ObjectDictionaryForm::libraryChanged()
{
    if (m_shownIndex == 0)
        updatePaneSoon();
}

void ObjectDictionaryForm::handleExpertMode(bool expertModeActive)
{
    if (expertModeActive == m_expert)
        return;
    saveData();
    m_expert = expertModeActive;
    const quint16 index = m_shownIndex;
    const quint8 subindex = m_shownSubindex;
    const quint16 segment = m_shownSegment;
    if (m_pane != nullptr) {
        dropPane();
        m_shownIndex = index;
        m_shownSubindex = subindex;
        m_shownSegment = segment;
        openPane();
    }
    emit expertModeChanged(expertModeActive);
    emit actionsChanged();
}

// --- Changes of the store -----------------------------------------------------------------------

void ObjectDictionaryForm::updateData(ObjectDataBase::ChangeSet modification)
{
    const bool isWhole = modification.kind == ObjectDataBase::ProjectReplaced;
    if (database() == nullptr || (!isWhole && modification.line != line()))
        return;
    followTree(modification);
    followPane(modification);
}

void ObjectDictionaryForm::followTree(const ObjectDataBase::ChangeSet &change)
{
    if (change.kind == ObjectDataBase::ProjectReplaced) {
        m_isStale = true;
        if (isVisible())
            updateAllTree();
        return;
    }
    if (m_isStale)
        return;
    switch (change.kind) {
    case ObjectDataBase::IndexAdded:
        m_tree->updateObject(change.index);
        break;
    case ObjectDataBase::SubIndexAdded:
        // Subindex 0 stands for several of the object.
        if (change.subindex == 0)
            m_tree->updateSubIndices(change.index);
        else
            m_tree->updateSubIndex(change.index, change.subindex);
        break;
    case ObjectDataBase::IndexDeleted:
        m_tree->removeObject(change.index);
        break;
    case ObjectDataBase::SubIndexDeleted:
        m_tree->updateSubIndices(change.index);
        break;
    case ObjectDataBase::NodeDeleted:
        m_tree->reload();
        break;
    default:
        break;
    }
}

/// What is gone loses its pane unsaved, what has changed is shown as it is.
void ObjectDictionaryForm::followPane(const ObjectDataBase::ChangeSet &change)
{
    const bool concernsLine = change.kind == ObjectDataBase::ProjectReplaced ||
                              change.kind == ObjectDataBase::NodeDeleted;
    if (m_pane == nullptr)
        return;
    if (m_shownIndex == 0) {
        if (concernsLine)
            updatePaneSoon();
        return;
    }
    if (!concernsLine && change.index != m_shownIndex)
        return;
    const bool isGone = !database()->indexExists(line(), m_shownIndex) ||
                        (m_shownSubindex != BaseTreeForm::noSubindex &&
                         !database()->subIndexExists(line(), m_shownIndex, m_shownSubindex));
    if (isGone)
        dropPane();
    else
        updatePaneSoon();
}

void ObjectDictionaryForm::updateAllTree()
{
    qDebug("The tree of the object dictionary is made anew.");
    m_isStale = false;
    if (m_tree->isShowing(database(), line())) {
        m_tree->reload();
    } else {
        m_tree->show(database(), line());
        if (m_view->currentItem() == nullptr)
            m_tree->select({TreeRow::ofSegment(ObjectRanges::communication.low)});
        showRow(m_tree->current());
    }
    emit actionsChanged();
}

void ObjectDictionaryForm::focusFilter()
{
    m_filter->setFocus(Qt::ShortcutFocusReason);
    m_filter->selectAll();
}

void ObjectDictionaryForm::on_leFilter_textChanged(const QString &filter)
{
    m_tree->setFilter(filter);
    emit actionsChanged();
}

// --- Going to an object -------------------------------------------------------------------------

void ObjectDictionaryForm::gotoIndex(ushort index)
{
    showRows({TreeRow::ofObject(index)});
    if (m_shownIndex != index)
        context().tell(
            tr("There is no object %1 on line %2.").arg(IndexText::hex(index)).arg(line()));
}

void ObjectDictionaryForm::gotoSubIndex(ushort index, quint8 subindex)
{
    if (m_isStale)
        updateAllTree();
    if (m_tree->find(TreeRow::ofSubIndex(index, subindex)) == nullptr) {
        gotoIndex(index);
        return;
    }
    showRows({TreeRow::ofSubIndex(index, subindex)});
}

/// Selects rows and shows the first of them; a filter that hides it goes.
void ObjectDictionaryForm::showRows(const QList<TreeRow> &rows)
{
    if (m_isStale)
        updateAllTree();
    for (const TreeRow &row : rows) {
        const QTreeWidgetItem *item = m_tree->find(row);
        if (item == nullptr)
            continue;
        const QTreeWidgetItem *object =
            row.level == TreeRow::Level::SubIndex ? item->parent() : item;
        if (object->isHidden())
            m_filter->clear();
        m_tree->select(rows);
        showRow(m_tree->current());
        return;
    }
}
