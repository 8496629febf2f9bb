#include "odeditor/metadatainputdialog.h"

#include "odeditor/entryfields.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

MetaDataInputDialog::MetaDataInputDialog(const QStringList &keys, QWidget *parent)
    : QDialog(parent), m_keys(keys)
{
    setWindowTitle(tr("Add new entry"));
    m_key = new QLineEdit(this);
    m_key->setObjectName(QStringLiteral("edtKey"));
    m_value = new QLineEdit(this);
    m_value->setObjectName(QStringLiteral("edtValue"));
    m_warning = new QLabel(this);
    m_warning->setObjectName(QStringLiteral("lblWarning"));
    m_warning->setForegroundRole(QPalette::BrightText);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    auto *form = new QFormLayout(this);
    form->addRow(tr("Key"), m_key);
    form->addRow(tr("Value"), m_value);
    form->addRow(m_warning);
    form->addRow(buttons);
    constexpr int width = 420;
    setMinimumWidth(width);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_key, &QLineEdit::textChanged, this, &MetaDataInputDialog::check);
    connect(m_value, &QLineEdit::textChanged, this, &MetaDataInputDialog::check);
    check();
}

QString MetaDataInputDialog::key() const
{
    return m_key->text().trimmed();
}

QString MetaDataInputDialog::value() const
{
    return m_value->text();
}

void MetaDataInputDialog::check()
{
    constexpr qsizetype longest = 4096;
    QString fault = EntryFields::lineFault(key(), EntryFields::longestName);
    if (fault.isEmpty())
        fault = EntryFields::lineFault(value(), longest);
    if (m_keys.contains(key()))
        fault = tr("Key exists already");
    m_warning->setText(fault);
    m_ok->setEnabled(fault.isEmpty() && !key().isEmpty());
}
