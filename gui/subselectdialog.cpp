#include "gui/subselectdialog.h"

#include "canopen/indextext.h"
#include "store/objectdatabase.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int highestSubindex = 254; ///< 255 describes the structure of the object (CiA 301)
constexpr quint8 firstScratchLine = 240;
constexpr int listWidth = 360;
constexpr int listHeight = 300;

} // namespace

SubSelectDialog::SubSelectDialog(const QString &objectText,
                                 const QList<std::pair<quint8, QString>> &subindices,
                                 const QList<quint8> &chosen, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Select subindices"));
    auto *layout = new QVBoxLayout(this);
    auto *label =
        new QLabel(tr("&Subindices of %1:").arg(QString(objectText).replace(u'&', "&&")), this);
    label->setWordWrap(true);
    layout->addWidget(label);
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("lwSubIndices"));
    m_list->setMinimumSize(listWidth, listHeight);
    label->setBuddy(m_list);
    for (const auto &[number, name] : subindices) {
        auto *item = new QListWidgetItem(QStringLiteral("%1 - %2").arg(number).arg(name), m_list);
        item->setData(Qt::UserRole, number);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        const bool isChosen = chosen.isEmpty() || chosen.contains(number);
        item->setCheckState(isChosen ? Qt::Checked : Qt::Unchecked);
    }
    m_list->setCurrentRow(0);
    layout->addWidget(m_list);
    addButtons();
    QPushButton *all = m_buttons->addButton(tr("Select &all"), QDialogButtonBox::ActionRole);
    QPushButton *none = m_buttons->addButton(tr("Select &none"), QDialogButtonBox::ActionRole);
    connect(all, &QPushButton::clicked, this, [this] { setAllChecked(Qt::Checked); });
    connect(none, &QPushButton::clicked, this, [this] { setAllChecked(Qt::Unchecked); });
    connect(m_list, &QListWidget::itemChanged, this, &SubSelectDialog::updateOk);
    updateOk();
}

SubSelectDialog::SubSelectDialog(ObjectDataBase &store, quint8 line, quint16 index, QWidget *parent)
    : QDialog(parent), m_store(&store)
{
    setWindowTitle(tr("Select target"));
    auto *form = new QFormLayout(this);
    const auto add = [&](const QString &label, const QString &name) {
        auto *combo = new QComboBox(this);
        combo->setObjectName(name);
        combo->setMinimumWidth(listWidth);
        combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        form->addRow(label, combo);
        return combo;
    };
    m_line = add(tr("&Line:"), QStringLiteral("cbLine"));
    m_object = add(tr("&Object:"), QStringLiteral("cbObject"));
    m_subindex = add(tr("&Subindex:"), QStringLiteral("cbSubIndex"));
    QList<quint8> lines = store.getLines();
    std::sort(lines.begin(), lines.end());
    for (const quint8 number : std::as_const(lines)) {
        if (number < firstScratchLine)
            m_line->addItem(tr("Line %1").arg(number), number);
    }
    m_line->setCurrentIndex(m_line->findData(line));
    addButtons();
    fillObjects();
    m_object->setCurrentIndex(std::max(0, m_object->findData(index)));
    fillSubindices();
    connect(m_line, &QComboBox::currentIndexChanged, this, &SubSelectDialog::fillObjects);
    connect(m_object, &QComboBox::currentIndexChanged, this, &SubSelectDialog::fillSubindices);
}

void SubSelectDialog::addButtons()
{
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    if (auto *form = qobject_cast<QFormLayout *>(layout()))
        form->addRow(m_buttons);
    else
        layout()->addWidget(m_buttons);
}

void SubSelectDialog::setAllChecked(Qt::CheckState state)
{
    for (int row = 0; row < m_list->count(); ++row)
        m_list->item(row)->setCheckState(state);
}

void SubSelectDialog::fillObjects()
{
    const QSignalBlocker blocker(m_object);
    m_object->clear();
    const QList<quint16> indices = m_store->getIndices(targetLine());
    for (const quint16 index : indices) {
        ObjectDataBase::INDEX_DATA_T data;
        if (m_store->getIndexData(targetLine(), index, data) &&
            (data.objecttype == CANopen::ARRAY || data.objecttype == CANopen::RECORD))
            m_object->addItem(IndexText::titled(index, data.name), index);
    }
    fillSubindices();
}

void SubSelectDialog::fillSubindices()
{
    m_subindex->clear();
    if (m_object->count() > 0) {
        const QList<quint8> present = m_store->getSubIndices(targetLine(), targetIndex());
        for (int subindex = 1; subindex <= highestSubindex; ++subindex) {
            if (!present.contains(quint8(subindex)))
                m_subindex->addItem(QString::number(subindex), subindex);
        }
        // Behind the last one is where a new one mostly belongs.
        const int behind = present.isEmpty() ? 1 : present.last() + 1;
        m_subindex->setCurrentIndex(std::max(0, m_subindex->findData(behind)));
    }
    updateOk();
}

void SubSelectDialog::updateOk()
{
    bool isAnswered = false;
    if (m_list != nullptr) {
        for (int row = 0; row < m_list->count(); ++row)
            isAnswered |= m_list->item(row)->checkState() == Qt::Checked;
    } else {
        isAnswered = m_subindex->currentIndex() >= 0;
    }
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(isAnswered);
}

QList<quint8> SubSelectDialog::chosenSubindices() const
{
    QList<quint8> chosen;
    for (int row = 0; m_list != nullptr && row < m_list->count(); ++row) {
        const QListWidgetItem *item = m_list->item(row);
        if (item->checkState() == Qt::Checked)
            chosen.append(quint8(item->data(Qt::UserRole).toUInt()));
    }
    return m_list != nullptr && chosen.size() == m_list->count() ? QList<quint8>() : chosen;
}

quint8 SubSelectDialog::targetLine() const
{
    return m_line != nullptr ? quint8(m_line->currentData().toUInt()) : quint8(0);
}

quint16 SubSelectDialog::targetIndex() const
{
    return m_object != nullptr ? quint16(m_object->currentData().toUInt()) : quint16(0);
}

quint8 SubSelectDialog::targetSubindex() const
{
    return m_subindex != nullptr ? quint8(m_subindex->currentData().toUInt()) : quint8(0);
}
