#include "odeditor/attributetable.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QHeaderView>
#include <QSignalBlocker>
#include <QWheelEvent>

namespace {

constexpr int labelColumn = 0;
constexpr int valueColumn = 1;

/// The wheel scrolls the table under it, and changes no value by the way.
class QuietComboBox : public QComboBox
{
public:
    explicit QuietComboBox(QWidget *parent) : QComboBox(parent) { setFocusPolicy(Qt::StrongFocus); }

protected:
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }
};

} // namespace

AttributeTable::AttributeTable(QWidget *parent) : QTableWidget(0, 2, parent)
{
    setHorizontalHeaderLabels({tr("Attribute"), tr("Value")});
    horizontalHeader()->setSectionResizeMode(labelColumn, QHeaderView::ResizeToContents);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    verticalHeader()->hide();
    setSelectionMode(SingleSelection);
    setEditTriggers(DoubleClicked | SelectedClicked | EditKeyPressed | AnyKeyPressed);
    setTabKeyNavigation(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
}

void AttributeTable::setAttributes(const QStringList &labels)
{
    const QSignalBlocker blocker(this);
    setRowCount(int(labels.size()));
    for (int row = 0; row < rowCount(); ++row) {
        auto *label = new QTableWidgetItem(labels.at(row));
        label->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        setItem(row, labelColumn, label);
        setItem(row, valueColumn, new QTableWidgetItem);
    }
}

void AttributeTable::setDescribe(const WidgetDelegate::Describe &describe)
{
    m_delegate = new WidgetDelegate(describe, this);
    setItemDelegateForColumn(valueColumn, m_delegate);
    connect(m_delegate, &WidgetDelegate::refused, this, &AttributeTable::refused);
}

void AttributeTable::showRow(int row, const Look &look)
{
    const QSignalBlocker blocker(this);
    QTableWidgetItem *label = item(row, labelColumn);
    QFont labelFont = font();
    labelFont.setBold(look.isChanged);
    label->setFont(labelFont);
    label->setToolTip(look.isChanged ? tr("Changed; it is written when you go on.") : QString());

    QTableWidgetItem *value = item(row, valueColumn);
    QFont valueFont =
        look.isFixedWidth ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : font();
    valueFont.setPointSizeF(font().pointSizeF());
    value->setFont(valueFont);
    value->setText(look.fill ? QString() : look.text);
    value->setToolTip(look.refusal);
    value->setData(Qt::CheckStateRole, look.checked
                                           ? QVariant(*look.checked ? Qt::Checked : Qt::Unchecked)
                                           : QVariant());
    Qt::ItemFlags flags = Qt::ItemIsSelectable;
    if (look.refusal.isEmpty()) {
        flags |= Qt::ItemIsEnabled;
        if (look.checked)
            flags |= Qt::ItemIsUserCheckable;
        if (look.hasText && !look.fill)
            flags |= Qt::ItemIsEditable;
    }
    value->setFlags(flags);
    showChoice(row, look);
}

void AttributeTable::showChoice(int row, const Look &look)
{
    QComboBox *box = combo(row);
    if (!look.fill) {
        if (box != nullptr)
            removeCellWidget(row, valueColumn);
        return;
    }
    if (box == nullptr) {
        box = new QuietComboBox(this);
        box->setAccessibleName(item(row, labelColumn)->text());
        box->setFrame(false);
        setCellWidget(row, valueColumn, box);
        connect(box, &QComboBox::activated, this,
                [this, row, box] { emit chosen(row, box->currentData()); });
    }
    const QSignalBlocker blocker(box);
    look.fill(*box);
    box->setEnabled(look.refusal.isEmpty());
    box->setToolTip(look.refusal);
}

QComboBox *AttributeTable::combo(int row) const
{
    return qobject_cast<QComboBox *>(cellWidget(row, valueColumn));
}

void AttributeTable::commitOpenEditor()
{
    if (m_delegate != nullptr)
        m_delegate->commitOpenEditor();
}
