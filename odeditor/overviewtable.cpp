#include "odeditor/overviewtable.h"

#include "dictionary/objectwalk.h"
#include "odeditor/entryfields.h"

#include <QFontDatabase>
#include <QHeaderView>

#include <algorithm>
#include <array>

namespace {

constexpr int subColumn = 0;

struct Column
{
    const char *title;
    SubIndexField field;
    int width;
};

constexpr std::array columns{
    Column{"Sub", SubIndexField::Name, 48}, // not a field
    Column{"Name", SubIndexField::Name, 144},
    Column{"DataType", SubIndexField::DataType, 112},
    Column{"Default", SubIndexField::DefaultValue, 72},
    Column{"Access", SubIndexField::AccessType, 88},
    Column{"PDO", SubIndexField::PdoMapping, 64},
    Column{"Impl.", SubIndexField::Implementation, 120},
    Column{"Has Default", SubIndexField::HasDefault, 88},
    Column{"Default in EDS", SubIndexField::DefaultInEds, 112},
};

SubIndexField fieldOf(int column)
{
    return columns[std::size_t(column)].field;
}

} // namespace

OverviewTable::OverviewTable(QWidget *parent) : QTableWidget(0, int(columns.size()), parent)
{
    QStringList titles;
    for (const Column &column : columns)
        titles.append(tr(column.title));
    setHorizontalHeaderLabels(titles);
    for (int column = 0; column < columnCount(); ++column)
        setColumnWidth(column, columns[std::size_t(column)].width);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->hide();
    setWordWrap(false);
    setTabKeyNavigation(false);
    setSelectionMode(ExtendedSelection);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setEditTriggers(NoEditTriggers);
    m_fixedFont = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    m_fixedFont.setPointSizeF(font().pointSizeF());
    m_delegate = new WidgetDelegate(
        [this](const QModelIndex &index) {
            return EntryFields::cell(fieldOf(index.column()),
                                     m_entries[std::size_t(index.row())].record, m_objectClass);
        },
        this);
    setItemDelegate(m_delegate);
    connect(m_delegate, &WidgetDelegate::refused, this, &OverviewTable::refused);
}

void OverviewTable::showObject(const DictionaryObject &object, const EditRights &rights)
{
    const std::vector<Entry> former = std::exchange(m_entries, {});
    m_index = object.index;
    m_objectClass = object.data.deviceclass;
    m_rights = rights;
    for (const DictionaryEntry &entry : object.entries) {
        const auto old = std::ranges::find(former, entry.subindex, &Entry::subindex);
        m_entries.push_back({entry.subindex, entry.data,
                             old != former.end()
                                 ? EntryFields::merged(old->shown, old->record, entry.data)
                                 : entry.data});
    }
    showAll();
}

void OverviewTable::showAll()
{
    setUpdatesEnabled(false);
    setRowCount(int(m_entries.size()));
    for (int row = 0; row < rowCount(); ++row)
        showRow(row);
    setUpdatesEnabled(true);
}

void OverviewTable::showRow(int row)
{
    m_isFilling = true;
    const Entry &entry = m_entries[std::size_t(row)];
    const bool isChanged = entry.record != entry.shown;
    for (int column = 0; column < columnCount(); ++column) {
        QTableWidgetItem *cell = item(row, column);
        if (cell == nullptr) {
            cell = new QTableWidgetItem;
            setItem(row, column, cell);
        }
        Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        if (column == subColumn) {
            cell->setText(QString::number(entry.subindex) +
                          (isChanged ? QStringLiteral(" *") : QString()));
            cell->setFont(m_fixedFont);
            cell->setToolTip(isChanged ? tr("modified") : QString());
            cell->setFlags(flags);
            continue;
        }
        const SubIndexField field = fieldOf(column);
        const EntryFields::Kind kind = EntryFields::kindOf(field);
        const QVariant value = EntryFields::value(field, entry.record);
        const QString refusal = m_isEditing ? this->refusal(row, column) : QString();
        QFont look = kind == EntryFields::Kind::Value ? m_fixedFont : font();
        look.setBold(isChanged && value != EntryFields::value(field, entry.shown));
        cell->setFont(look);
        cell->setText(EntryFields::text(field, entry.record));
        cell->setData(Qt::UserRole, value);
        cell->setToolTip(refusal);
        if (m_isEditing && refusal.isEmpty())
            flags |=
                kind == EntryFields::Kind::Check ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
        if (kind == EntryFields::Kind::Check)
            cell->setCheckState(value.toBool() ? Qt::Checked : Qt::Unchecked);
        cell->setFlags(flags);
    }
    m_isFilling = false;
}

QString OverviewTable::refusal(int row, int column) const
{
    if (row < 0 || row >= int(m_entries.size()) || column <= subColumn)
        return tr("The number of a subindex is changed in the tree.");
    const Entry &entry = m_entries[std::size_t(row)];
    return m_rights.edit(m_index, entry.subindex, entry.record, fieldOf(column)).reason();
}

quint8 OverviewTable::subindexAt(int row) const
{
    return m_entries[std::size_t(row)].subindex;
}

void OverviewTable::setEditing(bool on)
{
    m_isEditing = on;
    setEditTriggers(on ? DoubleClicked | EditKeyPressed | AnyKeyPressed
                       : EditTriggers(NoEditTriggers));
    showAll();
}

void OverviewTable::commitOpenEditor()
{
    m_delegate->commitOpenEditor();
}

QMap<quint8, OverviewTable::Record> OverviewTable::changedRecords() const
{
    QMap<quint8, Record> records;
    for (const Entry &entry : m_entries) {
        if (entry.record != entry.shown)
            records.insert(entry.subindex, entry.record);
    }
    return records;
}

void OverviewTable::reset()
{
    for (Entry &entry : m_entries)
        entry.record = entry.shown;
    showAll();
}

void OverviewTable::takeCell(int row, int column)
{
    if (m_isFilling || column <= subColumn || row >= int(m_entries.size()))
        return;
    const QTableWidgetItem *cell = item(row, column);
    const SubIndexField field = fieldOf(column);
    Record &record = m_entries[std::size_t(row)].record;
    switch (EntryFields::kindOf(field)) {
    case EntryFields::Kind::Check:
        EntryFields::set(field, record, cell->checkState() == Qt::Checked);
        break;
    case EntryFields::Kind::Choice:
        EntryFields::set(field, record, cell->data(Qt::UserRole));
        break;
    default:
        if (cell->text() != EntryFields::text(field, record))
            EntryFields::set(field, record, cell->text());
        break;
    }
    showRow(row);
}

void OverviewTable::copyDown(int column)
{
    if (!m_isEditing || column <= subColumn || m_entries.empty())
        return;
    std::vector<int> rows;
    for (int row = 0; row < rowCount(); ++row) {
        if (selectionModel()->rowIntersectsSelection(row, QModelIndex()))
            rows.push_back(row);
    }
    if (rows.size() < 2) {
        rows.clear();
        for (int row = 0; row < rowCount(); ++row)
            rows.push_back(row);
    }
    const SubIndexField field = fieldOf(column);
    const Record &first = m_entries[std::size_t(rows.front())].record;
    const QVariant value = EntryFields::value(field, first);
    const QString text = value.toString();
    qsizetype leftOut = 0;
    for (const int row : rows) {
        Record &record = m_entries[std::size_t(row)].record;
        if (EntryFields::value(field, record) == value)
            continue;
        const bool fits = EntryFields::kindOf(field) != EntryFields::Kind::Value ||
                          EntryFields::fault(field, record, text).isEmpty();
        const bool isAllowed =
            field != SubIndexField::AccessType || offeredAccessTypes(record).contains(text);
        if (!refusal(row, column).isEmpty() || !fits || !isAllowed) {
            ++leftOut;
            continue;
        }
        EntryFields::set(field, record, value);
    }
    showAll();
    if (leftOut > 0)
        emit refused(
            tr("%n row(s) can't have this value and stay as they are.", nullptr, int(leftOut)));
}
