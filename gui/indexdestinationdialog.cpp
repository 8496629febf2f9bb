#include "gui/indexdestinationdialog.h"

#include "canopen/indextext.h"
#include "store/objectdatabase.h"
#include "ui_indexdestinationdialog.h"

#include <QPushButton>

#include <algorithm>

namespace {

constexpr int highestIndex = 0xFFFF;

quint16 freeIndex(const QSet<quint16> &present, quint16 wanted)
{
    for (int index = wanted; index <= highestIndex; ++index) {
        if (!present.contains(quint16(index)))
            return quint16(index);
    }
    for (int index = wanted; index > 0; --index) {
        if (!present.contains(quint16(index)))
            return quint16(index);
    }
    return wanted;
}

} // namespace

IndexDestinationDialog::IndexDestinationDialog(ObjectDataBase &store, quint8 line, quint16 wanted,
                                               const QString &name, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::IndexDestinationDialog>())
{
    ui->setupUi(this);
    const QList<quint16> present = store.getIndices(line);
    m_present = QSet<quint16>(present.begin(), present.end());
    ui->leIndex->setText(IndexText::hex(freeIndex(m_present, wanted)));
    ui->leIndex->selectAll();
    ui->leName->setText(name);
    ui->leName->setVisible(!name.isEmpty());
    ui->lblName->setVisible(!name.isEmpty());
    connect(ui->leIndex, &QLineEdit::textChanged, this, &IndexDestinationDialog::check);
    connect(ui->leName, &QLineEdit::textChanged, this, &IndexDestinationDialog::check);
    check();
}

IndexDestinationDialog::~IndexDestinationDialog() = default;

void IndexDestinationDialog::setAllowedRange(quint16 low, quint16 high)
{
    m_low = low;
    m_high = high;
    check();
}

void IndexDestinationDialog::setFollowers(int count, int distanceOfLast)
{
    m_followers = count;
    m_distanceOfLast = distanceOfLast;
    check();
}

QString IndexDestinationDialog::name() const
{
    return ui->leName->text().trimmed();
}

void IndexDestinationDialog::check()
{
    bool isNumber = false;
    const uint index = ui->leIndex->text().trimmed().toUInt(&isNumber, 0);
    const bool isAllowed = isNumber && index >= m_low && index <= m_high &&
                           index + uint(m_distanceOfLast) <= uint(m_high);
    const bool isNamed = ui->leName->isHidden() || !name().isEmpty();
    if (isAllowed)
        m_target = quint16(index);
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(isAllowed && isNamed);

    QStringList hints;
    if (!isAllowed)
        hints.append(tr("The index has to be a number from %1 to %2.")
                         .arg(IndexText::hex(m_low),
                              IndexText::hex(quint16(std::max(0, m_high - m_distanceOfLast)))));
    else if (m_present.contains(m_target))
        hints.append(
            tr("Object %1 already exists and will be replaced.").arg(IndexText::hex(m_target)));
    if (!isNamed)
        hints.append(tr("The object needs a name."));
    if (m_followers > 0)
        hints.append(tr("%1 more objects go along at the same distance.").arg(m_followers));
    ui->lblHint->setText(hints.join(u'\n'));
}
