#include "odeditor/metadataform.h"

#include "gui/guihelper.h"
#include "odeditor/entryfields.h"
#include "odeditor/metadatainputdialog.h"
#include "odeditor/widgetdelegate.h"

#include <QAction>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QSet>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QVBoxLayout>

#include <array>
#include <optional>

namespace {

enum Column : int { KeyColumn, ValueColumn };

constexpr qsizetype longestValue = 4096;

/// Keys that the generators read, with the texts of their menu entries.
constexpr std::array presets{
    std::pair{"eds_define", "Add eds_define"},
    std::pair{"objectdefine", "Add objectdefine"},
    std::pair{"subdefine", "Add subdefine"},
    std::pair{"eds_datatype", "Add eds_datatype"},
};

/// What `copyEntry` has kept.
std::optional<std::pair<QString, QString>> &keptEntry()
{
    static std::optional<std::pair<QString, QString>> entry;
    return entry;
}

} // namespace

MetaDataForm::MetaDataForm(QWidget *parent) : QWidget(parent)
{
    m_table = new QTableWidget(0, 2, this);
    m_table->setObjectName(QStringLiteral("tblMetaData"));
    m_table->setHorizontalHeaderLabels({tr("Key"), tr("Value")});
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    constexpr int keyWidth = 200;
    m_table->setColumnWidth(KeyColumn, keyWidth);
    m_table->verticalHeader()->hide();
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setTabKeyNavigation(false);
    m_table->setContextMenuPolicy(Qt::CustomContextMenu);
    m_delegate = new WidgetDelegate(
        [](const QModelIndex &) {
            return WidgetDelegate::Cell{.fault = [](const QString &text) {
                return EntryFields::lineFault(text, longestValue);
            }};
        },
        this);
    m_table->setItemDelegate(m_delegate);
    m_add = new QPushButton(tr("Add new entry"), this);
    m_add->setObjectName(QStringLiteral("btnAddEntry"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_table);
    layout->addWidget(m_add, 0, Qt::AlignRight);
    connect(m_table, &QTableWidget::cellChanged, this, &MetaDataForm::takeCell);
    connect(m_table, &QWidget::customContextMenuRequested, this, &MetaDataForm::displayContextMenu);
    QMetaObject::connectSlotsByName(this);
}

void MetaDataForm::setMetaData(const ObjectDataBase::MetaData &entries)
{
    if (m_entries == entries && m_table->rowCount() == entries.size())
        return;
    m_entries = entries;
    fill();
}

void MetaDataForm::setReadOnly(bool on)
{
    m_isReadOnly = on;
    m_add->setDisabled(on);
    m_table->setEditTriggers(on ? QAbstractItemView::NoEditTriggers
                                : QAbstractItemView::DoubleClicked |
                                      QAbstractItemView::EditKeyPressed |
                                      QAbstractItemView::AnyKeyPressed);
}

void MetaDataForm::commitOpenEditor()
{
    m_delegate->commitOpenEditor();
}

void MetaDataForm::fill()
{
    const QSignalBlocker blocker(m_table);
    m_table->setRowCount(int(m_entries.size()));
    int row = 0;
    for (auto entry = m_entries.cbegin(); entry != m_entries.cend(); ++entry, ++row) {
        auto *key = new QTableWidgetItem(entry.key());
        key->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        m_table->setItem(row, KeyColumn, key);
        m_table->setItem(row, ValueColumn, new QTableWidgetItem(entry.value()));
    }
}

void MetaDataForm::takeCell(int row, int column)
{
    if (column != ValueColumn)
        return;
    m_entries[m_table->item(row, KeyColumn)->text()] = m_table->item(row, column)->text();
    emit changed();
}

bool MetaDataForm::addEntry(const QString &key, const QString &value)
{
    if (m_isReadOnly || key.isEmpty() || m_entries.contains(key))
        return false;
    m_entries.insert(key, value);
    fill();
    m_table->setCurrentCell(int(std::distance(m_entries.cbegin(), m_entries.constFind(key))),
                            ValueColumn);
    emit changed();
    return true;
}

void MetaDataForm::on_btnAddEntry_clicked()
{
    MetaDataInputDialog dialog(m_entries.keys(), this);
    if (GuiHelper::execDialog(dialog) == QDialog::Accepted)
        addEntry(dialog.key(), dialog.value());
}

QString MetaDataForm::currentKey() const
{
    const QTableWidgetItem *item = m_table->item(m_table->currentRow(), KeyColumn);
    return item != nullptr ? item->text() : QString();
}

void MetaDataForm::deleteEntry()
{
    if (m_isReadOnly || m_entries.remove(currentKey()) == 0)
        return;
    fill();
    emit changed();
}

void MetaDataForm::copyEntry()
{
    const QString key = currentKey();
    if (!key.isEmpty())
        keptEntry() = {key, m_entries.value(key)};
}

void MetaDataForm::pasteEntry()
{
    if (const auto &entry = keptEntry())
        addEntry(entry->first, entry->second);
}

void MetaDataForm::insertExistingMetaData()
{
    const auto *action = qobject_cast<const QAction *>(sender());
    const QStringList entry = action != nullptr ? action->data().toStringList() : QStringList();
    if (entry.size() == 2)
        addEntry(entry[0], entry[1]);
}

QList<std::pair<QString, QString>> MetaDataForm::existingEntries() const
{
    constexpr qsizetype mostOffered = 30;
    QList<std::pair<QString, QString>> entries;
    QSet<std::pair<QString, QString>> seen;
    for (const quint8 line : m_store != nullptr ? m_store->getLines() : QList<quint8>()) {
        for (const ObjectDataBase::MetaData &map : m_store->getAllMetaData(line)) {
            for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
                const std::pair<QString, QString> found{entry.key(), entry.value()};
                if (m_entries.contains(found.first) || seen.contains(found))
                    continue;
                seen.insert(found);
                if (entries.size() < mostOffered)
                    entries.append(found);
            }
        }
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

void MetaDataForm::displayContextMenu(const QPoint &pos)
{
    QMenu menu(this);
    menu.addAction(tr("Add new entry"), this, &MetaDataForm::on_btnAddEntry_clicked)
        ->setDisabled(m_isReadOnly);
    menu.addAction(tr("Delete entry"), this, &MetaDataForm::deleteEntry)
        ->setEnabled(!m_isReadOnly && !currentKey().isEmpty());
    menu.addSeparator();
    menu.addAction(tr("Copy entry"), this, &MetaDataForm::copyEntry)
        ->setEnabled(!currentKey().isEmpty());
    menu.addAction(tr("Paste entry"), this, &MetaDataForm::pasteEntry)
        ->setEnabled(!m_isReadOnly && keptEntry() && !m_entries.contains(keptEntry()->first));
    menu.addSeparator();
    for (const auto &[key, label] : presets) {
        const QString name = QString::fromLatin1(key);
        menu.addAction(tr(label), this, [this, name] { addEntry(name); })
            ->setEnabled(!m_isReadOnly && !m_entries.contains(name));
    }
    const auto existing = existingEntries();
    QMenu *used = menu.addMenu(tr("Used in the project"));
    used->setDisabled(m_isReadOnly || existing.isEmpty());
    for (const auto &[key, value] : existing) {
        // An ampersand in a menu would underline what follows it.
        QString label = QStringLiteral("%1 = %2").arg(key, value.left(60));
        QAction *action = used->addAction(label.replace(u'&', QLatin1String("&&")), this,
                                          &MetaDataForm::insertExistingMetaData);
        action->setData(QStringList{key, value});
    }
    menu.exec(m_table->viewport()->mapToGlobal(pos));
}
