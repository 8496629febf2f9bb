#include "odeditor/selectsubindexdialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>

SelectSubindexDialog::SelectSubindexDialog(const QList<quint8> &numbers, QWidget *parent)
    : QDialog(parent), m_numbers(new QComboBox(this))
{
    setWindowTitle(QStringLiteral("Select Sub index"));
    m_numbers->setObjectName(QStringLiteral("cbSubs"));
    for (const quint8 number : numbers)
        m_numbers->addItem(QString::number(number), number);
    auto *form = new QFormLayout(this);
    auto *label = new QLabel(QStringLiteral("Select new sub index:"), this);
    label->setBuddy(m_numbers);
    form->addRow(label, m_numbers);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

quint8 SelectSubindexDialog::subindex() const
{
    return quint8(m_numbers->currentData().toUInt());
}
