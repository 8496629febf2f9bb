#include "tools/projectdiffdialog.h"

#include "canopen/linetype.h"
#include "tools/diffcolours.h"
#include "tools/rowcopy.h"
#include "ui_projectdiffdialog.h"

#include <QHeaderView>
#include <QMap>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QSplitter>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int itemRole = Qt::UserRole;
/// More than these are left folded, since nobody looks at them one by one.
constexpr int mostUnfolded = 30;

/// One line, so that the row keeps its height; the tool tip has the whole value.
QTableWidgetItem *makeCell(const QString &value)
{
    auto *cell = new QTableWidgetItem(value.simplified());
    cell->setToolTip(value.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>")));
    return cell;
}

void addRow(QTableWidget &table, const PropertyRow &row, bool marked)
{
    const int at = table.rowCount();
    table.insertRow(at);
    int column = 0;
    for (const QString &value : {row.property, row.current, row.other}) {
        QTableWidgetItem *cell = makeCell(value);
        if (marked) {
            QFont font = table.font();
            font.setBold(true);
            cell->setFont(font);
            cell->setForeground(DiffColours::ofText(DiffState::Different, table.palette()));
        }
        table.setItem(at, column++, cell);
    }
    table.setVerticalHeaderItem(at, new QTableWidgetItem(marked ? QStringLiteral("≠") : QString()));
}

void fitColumns(QTableWidget &table)
{
    constexpr int widestColumn = 320;
    // The last column takes the room that is left.
    for (int column = 0; column < table.columnCount() - 1; ++column) {
        table.resizeColumnToContents(column);
        table.setColumnWidth(column, qMin(table.columnWidth(column) + 12, widestColumn));
    }
}

bool isShownRow(const QTreeWidgetItem &row, const QString &text)
{
    return text.isEmpty() || row.text(0).contains(text, Qt::CaseInsensitive);
}

/// Hides what neither has the text itself nor stands below or above a row that has it.
bool filterRow(QTreeWidgetItem &row, const QString &text, bool parentMatches)
{
    const bool matches = parentMatches || isShownRow(row, text);
    bool shown = matches;
    for (int i = 0; i < row.childCount(); ++i)
        shown |= filterRow(*row.child(i), text, matches);
    row.setHidden(!shown);
    return shown;
}

bool isSame(const DiffItem &a, const DiffItem &b)
{
    return a.kind == b.kind && a.number == b.number && a.part == b.part &&
           a.direction == b.direction;
}

/// Selects the row of an item, if there is one that is unfolded.
void selectItem(QTreeWidget &tree, const DiffItem &item)
{
    for (QTreeWidgetItemIterator it(&tree); *it != nullptr; ++it) {
        const QVariant data = (*it)->data(0, itemRole);
        if (data.isValid() && isSame(data.value<DiffItem>(), item)) {
            tree.setCurrentItem(*it);
            return;
        }
    }
}

QTreeWidgetItem *addGroup(QTreeWidget &tree, const QString &title)
{
    auto *group = new QTreeWidgetItem(&tree, QStringList{title});
    group->setExpanded(true);
    return group;
}

} // namespace

ProjectDiffDialog::ProjectDiffDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::ProjectDiffDialog>())
{
    ui->setupUi(this);
    prepareViews();
}

ProjectDiffDialog::~ProjectDiffDialog() = default;

void ProjectDiffDialog::prepareViews()
{
    for (QTableWidget *table : findChildren<QTableWidget *>()) {
        RowCopy::enable(*table);
        table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 8);
        table->verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
        table->horizontalHeader()->setHighlightSections(false);
    }
    const std::array<std::pair<QTreeWidget *, QTableWidget *>, 3> pairs{
        {{ui->treeWidget, ui->tableWidget},
         {ui->treePGN, ui->tblPGN},
         {ui->treeCANID, ui->tblCANID}}};
    for (const auto &[tree, table] : pairs) {
        RowCopy::enable(*tree);
        connect(tree, &QTreeWidget::itemExpanded, this, &ProjectDiffDialog::addParts);
        QTableWidget *properties = table;
        connect(tree, &QTreeWidget::currentItemChanged, this,
                [this, properties](QTreeWidgetItem *row) { showPair(row, *properties); });
        if (auto *splitter = qobject_cast<QSplitter *>(tree->parentWidget()))
            splitter->setSizes({400, 500});
    }
    for (QTableWidget *table : {ui->tblGeneralSettings, ui->tblJ1939Settings}) {
        table->verticalHeader()->hide();
        table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
        table->setSortingEnabled(true);
    }
}

int ProjectDiffDialog::compare(const std::shared_ptr<ObjectDataBase> &current,
                               const std::shared_ptr<ObjectDataBase> &other,
                               const QString &otherName)
{
    release();
    m_current = current;
    m_other = other;
    m_comparison = std::make_unique<ProjectComparison>(*current, *other);
    ui->lineEdit->setText(otherName);
    return m_comparison->differenceCount();
}

void ProjectDiffDialog::release()
{
    m_comparison.reset();
    m_current.reset();
    m_other.reset();
    m_filled = false;
    for (QTreeWidget *tree : {ui->treeWidget, ui->treePGN, ui->treeCANID})
        tree->clear();
    for (QTableWidget *table :
         {ui->tableWidget, ui->tblPGN, ui->tblCANID, ui->tblGeneralSettings, ui->tblJ1939Settings})
        table->setRowCount(0);
    const QSignalBlocker blocker(ui->cbLines);
    ui->cbLines->clear();
    // What was chosen for one comparison must not change what the next one counts or hides.
    ui->cbInternal->setChecked(false);
    ui->cbOnlyDifferences->setChecked(true);
    ui->edtFilter->clear();
}

void ProjectDiffDialog::showEvent(QShowEvent *event)
{
    fill();
    QDialog::showEvent(event);
}

void ProjectDiffDialog::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    // The shades of the states belong to the palette.
    if (event->type() == QEvent::PaletteChange && m_filled) {
        fillTrees();
        fillSettings();
    }
}

// --- Filling ------------------------------------------------------------------------------------

void ProjectDiffDialog::fill()
{
    if (m_filled || m_comparison == nullptr)
        return;
    m_filled = true;
    fillLines();
    fillTrees();
    fillSettings();
    showTabs();
    showResult();
    selectFirstDifference();
}

/// Begins with the first line that has a difference.
void ProjectDiffDialog::fillLines()
{
    const QSignalBlocker blocker(ui->cbLines);
    const QList<quint8> lines = m_comparison->lines();
    for (const quint8 line : lines)
        ui->cbLines->addItem(QStringLiteral("Line %1").arg(line), line);
    const auto differs = [](const QList<DiffItem> &items) {
        return std::any_of(items.begin(), items.end(),
                           [](const DiffItem &item) { return item.differences != 0; });
    };
    const auto first = std::find_if(lines.begin(), lines.end(), [&](quint8 line) {
        bool found = differs(m_comparison->objects(line));
        for (const quint8 direction : {ObjectDataBase::transmit, ObjectDataBase::receive}) {
            found = found || differs(m_comparison->pgns(line, direction)) ||
                    differs(m_comparison->canIds(line, direction));
        }
        return found;
    });
    ui->cbLines->setCurrentIndex(first == lines.end() ? 0 : int(first - lines.begin()));
}

void ProjectDiffDialog::fillTrees()
{
    if (m_comparison == nullptr)
        return;
    QMap<QTreeWidget *, DiffItem> selected;
    for (QTreeWidget *tree : {ui->treeWidget, ui->treePGN, ui->treeCANID}) {
        if (const QTreeWidgetItem *row = tree->currentItem())
            selected.insert(tree, row->data(0, itemRole).value<DiffItem>());
        tree->clear();
    }
    const quint8 line = shownLine();
    addItems(*ui->treeWidget, ui->treeWidget->invisibleRootItem(), m_comparison->objects(line));
    addItems(*ui->treePGN, addGroup(*ui->treePGN, QStringLiteral("Transmit PGNs")),
             m_comparison->pgns(line, ObjectDataBase::transmit));
    addItems(*ui->treePGN, addGroup(*ui->treePGN, QStringLiteral("Receive PGNs")),
             m_comparison->pgns(line, ObjectDataBase::receive));
    addItems(*ui->treeCANID, addGroup(*ui->treeCANID, QStringLiteral("Transmit CAN-IDs")),
             m_comparison->canIds(line, ObjectDataBase::transmit));
    addItems(*ui->treeCANID, addGroup(*ui->treeCANID, QStringLiteral("Receive CAN-IDs")),
             m_comparison->canIds(line, ObjectDataBase::receive));
    applyFilter();
    for (auto tree = selected.cbegin(); tree != selected.cend(); ++tree)
        selectItem(*tree.key(), *tree);
}

void ProjectDiffDialog::addItems(QTreeWidget &tree, QTreeWidgetItem *group,
                                 const QList<DiffItem> &items)
{
    QList<QTreeWidgetItem *> rows;
    QList<QTreeWidgetItem *> toUnfold;
    for (const DiffItem &item : items) {
        if (item.state == DiffState::Equal && ui->cbOnlyDifferences->isChecked())
            continue;
        QTreeWidgetItem *row = makeRow(item);
        // Parts are read when the row is unfolded.
        row->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
        rows.append(row);
        if (item.state == DiffState::Different)
            toUnfold.append(row);
    }
    group->addChildren(rows); // the tree owns them
    if (toUnfold.size() > mostUnfolded)
        return;
    for (QTreeWidgetItem *row : std::as_const(toUnfold))
        tree.expandItem(row);
}

QTreeWidgetItem *ProjectDiffDialog::makeRow(const DiffItem &item)
{
    auto *row = new QTreeWidgetItem(QStringList{item.text()});
    row->setData(0, itemRole, QVariant::fromValue(item));
    row->setToolTip(0, item.text());
    row->setForeground(0, DiffColours::ofText(item.state, palette()));
    row->setIcon(0, DiffColours::patch(item.state, palette()));
    return row;
}

void ProjectDiffDialog::addParts(QTreeWidgetItem *row)
{
    const QVariant data = row->data(0, itemRole);
    if (!data.isValid() || m_comparison == nullptr ||
        row->childIndicatorPolicy() != QTreeWidgetItem::ShowIndicator)
        return;
    row->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
    for (const DiffItem &part : m_comparison->parts(data.value<DiffItem>())) {
        if (part.state != DiffState::Equal || !ui->cbOnlyDifferences->isChecked())
            row->addChild(makeRow(part));
    }
    applyFilter();
}

void ProjectDiffDialog::fillSettings()
{
    if (m_comparison == nullptr)
        return;
    for (QTableWidget *table : {ui->tblGeneralSettings, ui->tblJ1939Settings}) {
        table->setSortingEnabled(false);
        table->setRowCount(0);
    }
    for (const SettingDifference &setting : m_comparison->settings()) {
        const bool j1939 = setting.table == SettingDifference::Table::J1939;
        addRow(j1939 ? *ui->tblJ1939Settings : *ui->tblGeneralSettings,
               {setting.property(), setting.current, setting.other, true}, false);
    }
    for (QTableWidget *table : {ui->tblGeneralSettings, ui->tblJ1939Settings}) {
        fitColumns(*table);
        table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
        table->setSortingEnabled(true);
    }
    applyFilter();
}

/// The tabs of the protocols that the lines have, and of those with something to see.
void ProjectDiffDialog::showTabs()
{
    bool canopen = false;
    bool j1939 = false;
    bool rawCan = false;
    for (const quint8 line : m_comparison->lines()) {
        for (ObjectDataBase *store : {m_current.get(), m_other.get()}) {
            const LineType &type = LineType::of(store->getLineType(line));
            canopen |= type.hasCANopen;
            j1939 |= type.hasJ1939;
            rawCan |= type.hasRawCan;
        }
    }
    const auto show = [&](QWidget *page, bool shown) {
        ui->tabWidget->setTabVisible(ui->tabWidget->indexOf(page),
                                     shown || countShownIn(page) != 0);
    };
    show(ui->tabObjects, canopen);
    show(ui->tabPgns, j1939);
    show(ui->tabCanIds, rawCan);
    show(ui->tabGeneral, true);
    show(ui->tabJ1939, j1939);
}

/// Items or rows of a page, without the captions of its groups.
int ProjectDiffDialog::countShownIn(const QWidget *page) const
{
    const auto grouped = [](const QTreeWidget &tree) {
        int count = 0;
        for (int i = 0; i < tree.topLevelItemCount(); ++i)
            count += tree.topLevelItem(i)->childCount();
        return count;
    };
    if (page == ui->tabObjects)
        return ui->treeWidget->topLevelItemCount();
    if (page == ui->tabPgns)
        return grouped(*ui->treePGN);
    if (page == ui->tabCanIds)
        return grouped(*ui->treeCANID);
    return page == ui->tabJ1939 ? ui->tblJ1939Settings->rowCount()
                                : ui->tblGeneralSettings->rowCount();
}

void ProjectDiffDialog::showResult()
{
    const int count = m_comparison->differenceCount();
    ui->lblResult->setText(count == 0   ? QStringLiteral("No differences found.")
                           : count == 1 ? QStringLiteral("1 difference")
                                        : QStringLiteral("%1 differences").arg(count));
}

void ProjectDiffDialog::selectFirstDifference()
{
    for (int tab = 0; tab < ui->tabWidget->count(); ++tab) {
        if (ui->tabWidget->isTabVisible(tab) && countShownIn(ui->tabWidget->widget(tab)) != 0) {
            ui->tabWidget->setCurrentIndex(tab);
            break;
        }
    }
    for (QTreeWidget *tree : {ui->treeWidget, ui->treePGN, ui->treeCANID}) {
        QTreeWidgetItem *row = tree->topLevelItem(0);
        while (row != nullptr && row->childCount() != 0)
            row = row->child(0);
        if (row != nullptr)
            tree->setCurrentItem(row);
    }
    const QWidget *page = ui->tabWidget->currentWidget();
    QAbstractItemView *list = page->findChild<QTreeWidget *>();
    if (list == nullptr)
        list = page->findChild<QTableWidget *>();
    list->setFocus(Qt::OtherFocusReason);
}

void ProjectDiffDialog::showPair(QTreeWidgetItem *row, QTableWidget &table)
{
    table.setRowCount(0);
    const QVariant data = row != nullptr ? row->data(0, itemRole) : QVariant();
    if (!data.isValid() || m_comparison == nullptr)
        return;
    const auto item = data.value<DiffItem>();
    const bool isPair = item.state == DiffState::Equal || item.state == DiffState::Different;
    for (const PropertyRow &property : m_comparison->properties(item))
        addRow(table, property, isPair && property.differs);
    fitColumns(table);
}

void ProjectDiffDialog::applyFilter()
{
    const QString text = ui->edtFilter->text();
    for (int i = 0; i < ui->treeWidget->topLevelItemCount(); ++i)
        filterRow(*ui->treeWidget->topLevelItem(i), text, false);
    for (QTreeWidget *tree : {ui->treePGN, ui->treeCANID}) {
        for (int i = 0; i < tree->topLevelItemCount(); ++i) {
            QTreeWidgetItem *group = tree->topLevelItem(i);
            for (int row = 0; row < group->childCount(); ++row)
                filterRow(*group->child(row), text, false);
        }
    }
    for (QTableWidget *table : {ui->tblGeneralSettings, ui->tblJ1939Settings}) {
        for (int row = 0; row < table->rowCount(); ++row) {
            const QTableWidgetItem *cell = table->item(row, 0);
            table->setRowHidden(row, cell != nullptr &&
                                         !cell->text().contains(text, Qt::CaseInsensitive));
        }
    }
}

quint8 ProjectDiffDialog::shownLine() const
{
    return quint8(ui->cbLines->currentData().toUInt());
}

// --- Choices ------------------------------------------------------------------------------------

void ProjectDiffDialog::on_cbInternal_clicked(bool checked)
{
    if (m_comparison == nullptr)
        return;
    m_comparison->setInternal(checked);
    fillTrees();
    showTabs();
    showResult();
}

void ProjectDiffDialog::on_cbOnlyDifferences_clicked()
{
    fillTrees();
}

void ProjectDiffDialog::on_cbLines_currentIndexChanged(int)
{
    fillTrees();
}

void ProjectDiffDialog::on_edtFilter_textChanged()
{
    applyFilter();
}

void ProjectDiffDialog::on_treeWidget_itemActivated(QTreeWidgetItem *item, int)
{
    showPair(item, *ui->tableWidget);
}

void ProjectDiffDialog::on_treeWidget_itemClicked(QTreeWidgetItem *item, int)
{
    showPair(item, *ui->tableWidget);
}

void ProjectDiffDialog::on_treePGN_itemActivated(QTreeWidgetItem *item, int)
{
    showPair(item, *ui->tblPGN);
}

void ProjectDiffDialog::on_treePGN_itemClicked(QTreeWidgetItem *item, int)
{
    showPair(item, *ui->tblPGN);
}

void ProjectDiffDialog::on_treeCANID_itemActivated(QTreeWidgetItem *item, int)
{
    showPair(item, *ui->tblCANID);
}

void ProjectDiffDialog::on_treeCANID_itemClicked(QTreeWidgetItem *item, int)
{
    showPair(item, *ui->tblCANID);
}
