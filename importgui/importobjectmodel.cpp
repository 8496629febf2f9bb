#include "importgui/importobjectmodel.h"

#include "canopen/indextext.h"
#include "gui/lineicon.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QIcon>
#include <QPalette>
#include <QPixmap>

namespace {

/// Red that can be read on the window's background.
QColor existingColour()
{
    const bool isDark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    return isDark ? QColor(0xFF, 0x8A, 0x80) : QColor(0xC0, 0x1C, 0x28);
}

/// The sign of what exists, in a colour that can be read on a selected row too.
QIcon existingIcon()
{
    static QIcon icon;
    static QColor colour;
    if (const QColor wanted = existingColour(); colour != wanted) {
        colour = wanted;
        const QString name = QStringLiteral("warning");
        constexpr QSize size(2 * ImportObjectModel::iconExtent, 2 * ImportObjectModel::iconExtent);
        icon = QIcon(LineIcon::icon(name, colour).pixmap(size));
        icon.addPixmap(LineIcon::icon(name).pixmap(size, QIcon::Selected), QIcon::Selected);
    }
    return icon;
}

/// Keeps the texts of all rows in one column.
QIcon blankIcon()
{
    static const QIcon icon = [] {
        QPixmap pixmap(ImportObjectModel::iconExtent, ImportObjectModel::iconExtent);
        pixmap.fill(Qt::transparent);
        return QIcon(pixmap);
    }();
    return icon;
}

} // namespace

ImportObjectModel::ImportObjectModel(QObject *parent) : QAbstractListModel(parent) {}

void ImportObjectModel::setObjects(const QList<ObjectCargo::Object> &objects)
{
    beginResetModel();
    m_rows.clear();
    m_rows.reserve(objects.size());
    m_existing.clear();
    for (const ObjectCargo::Object &object : objects) {
        m_rows.append({object, {object.index, object.index, {}, {}}});
        if (object.exists)
            m_existing.insert(object.index);
    }
    m_checkedCount = 0;
    endResetModel();
    emit checkedCountChanged(0);
}

void ImportObjectModel::setExisting(const QSet<quint16> &existing)
{
    m_existing = existing;
    for (Row &row : m_rows)
        row.object.exists = existing.contains(row.item.target);
    if (!m_rows.isEmpty())
        emit dataChanged(index(0), index(int(m_rows.size()) - 1));
}

void ImportObjectModel::setItem(int row, const ImportedItem &item)
{
    Row &entry = m_rows[row];
    entry.item = item;
    entry.item.index = entry.object.index;
    entry.object.exists = m_existing.contains(item.target);
    emit dataChanged(index(row), index(row));
}

void ImportObjectModel::setChecked(const QList<int> &rows, bool checked)
{
    int first = int(m_rows.size());
    int last = -1;
    for (const int row : rows) {
        if (m_rows.at(row).isChecked == checked)
            continue;
        m_rows[row].isChecked = checked;
        m_checkedCount += checked ? 1 : -1;
        first = qMin(first, row);
        last = qMax(last, row);
    }
    if (last < 0)
        return;
    emit dataChanged(index(first), index(last), {Qt::CheckStateRole});
    emit checkedCountChanged(m_checkedCount);
}

QList<int> ImportObjectModel::checkedRows() const
{
    QList<int> rows;
    for (int row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row).isChecked)
            rows.append(row);
    }
    return rows;
}

QList<ImportedItem> ImportObjectModel::checkedItems() const
{
    QList<ImportedItem> items;
    for (const Row &row : m_rows) {
        if (row.isChecked)
            items.append(row.item);
    }
    return items;
}

int ImportObjectModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QString ImportObjectModel::text(const Row &row)
{
    QString text = IndexText::titled(row.object.index, row.object.name);
    if (row.item.target != row.object.index)
        text += tr("  (to %1)").arg(IndexText::hex(row.item.target));
    if (!row.item.subindices.isEmpty())
        text += tr("  (%n subindices)", nullptr, int(row.item.subindices.size()));
    return text;
}

QString ImportObjectModel::toolTip(const Row &row)
{
    if (!row.object.exists)
        return {};
    const QString object = IndexText::hex(row.item.target);
    return row.item.subindices.isEmpty()
               ? tr("%1 already exists in the project. The import overwrites it.").arg(object)
               : tr("%1 already exists in the project. The import overwrites the chosen "
                    "subindices.")
                     .arg(object);
}

QVariant ImportObjectModel::data(const QModelIndex &index, int role) const
{
    static const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return text(row);
    case Qt::CheckStateRole:
        return row.isChecked ? Qt::Checked : Qt::Unchecked;
    case Qt::FontRole:
        return fixed;
    case Qt::ForegroundRole:
        return row.object.exists ? QVariant(existingColour()) : QVariant();
    case Qt::DecorationRole:
        return row.object.exists ? existingIcon() : blankIcon();
    case Qt::ToolTipRole:
        return toolTip(row);
    case Qt::AccessibleTextRole:
        return row.object.exists ? text(row) + u' ' + tr("(already exists)") : text(row);
    case IndexRole:
        return row.object.index;
    case ExistsRole:
        return row.object.exists;
    default:
        return {};
    }
}

bool ImportObjectModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole)
        return false;
    setChecked({index.row()}, value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags ImportObjectModel::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index) | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren;
}

// --- Filter -------------------------------------------------------------------------------------

void ImportObjectFilter::setText(const QString &text)
{
    m_text = text.trimmed();
    invalidateFilter();
}

void ImportObjectFilter::setSegment(quint16 low, quint16 high)
{
    m_low = low;
    m_high = high;
    invalidateFilter();
}

QList<int> ImportObjectFilter::shownRows() const
{
    QList<int> rows;
    rows.reserve(rowCount());
    for (int row = 0; row < rowCount(); ++row)
        rows.append(mapToSource(index(row, 0)).row());
    return rows;
}

bool ImportObjectFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    const QModelIndex index = sourceModel()->index(row, 0, parent);
    const int object = index.data(ImportObjectModel::IndexRole).toInt();
    return object >= m_low && object <= m_high &&
           (m_text.isEmpty() || index.data().toString().contains(m_text, Qt::CaseInsensitive));
}
