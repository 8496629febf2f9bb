#include "odeditor/manufacturersegmentform.h"

#include "canopen/indextext.h"
#include "dictionary/objectedits.h"
#include "dictionary/segments.h"
#include "odeditor/editing.h"
#include "store/usersettings.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QCommandLinkButton>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>

ManufacturerSegmentForm::ManufacturerSegmentForm(QWidget *parent)
    : BaseTreeForm(parent), m_number(new QLineEdit(QStringLiteral("0x3000"), this)),
      m_objectType(new QComboBox(this)), m_hint(new QLabel(this)), m_imported(new QGroupBox(this)),
      m_file(new QLabel(this)), m_objects(new QComboBox(this)),
      m_addImported(new QPushButton(QStringLiteral("Add"), this))
{
    new QVBoxLayout(this);
    makeNewObject();
    makeImported();
    auto *import = new QCommandLinkButton(
        tr("Import objects of a file"),
        tr("EDS, DCF, XDD, CSV and ICSV files, standard profiles and other projects."), this);
    import->setObjectName(QStringLiteral("commandLinkButton"));
    connect(import, &QPushButton::clicked, this, &ManufacturerSegmentForm::importWanted);
    layout()->addWidget(import);
    static_cast<QVBoxLayout *>(layout())->addStretch();
}

void ManufacturerSegmentForm::makeNewObject()
{
    auto *group = new QGroupBox(QStringLiteral("Add new object"), this);
    m_number->setObjectName(QStringLiteral("lineEdit"));
    m_number->setToolTip(tr("Index of the new object, such as 0x3000"));
    m_objectType->setObjectName(QStringLiteral("cbObjectType"));
    m_objectType->addItems(
        {QStringLiteral("Variable"), QStringLiteral("Record"), QStringLiteral("Array")});
    m_hint->setObjectName(QStringLiteral("lblHint"));
    m_hint->setWordWrap(true);
    m_hint->hide();
    auto *button = new QPushButton(QStringLiteral("Add"), this);
    button->setObjectName(QStringLiteral("btnAddObject"));
    auto *form = new QFormLayout(group);
    form->addRow(tr("&Index:"), m_number);
    form->addRow(tr("&Object type:"), m_objectType);
    form->addRow(QString(), m_hint);
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    form->addRow(QString(), button);
    connect(button, &QPushButton::clicked, this, &ManufacturerSegmentForm::add);
    connect(m_number, &QLineEdit::returnPressed, this, &ManufacturerSegmentForm::add);
    connect(m_number, &QLineEdit::textChanged, m_hint, &QLabel::hide);
    layout()->addWidget(group);
}

void ManufacturerSegmentForm::makeImported()
{
    m_imported->setTitle(QStringLiteral("Add imported object"));
    m_file->setObjectName(QStringLiteral("lblLastFileName"));
    m_file->setWordWrap(true);
    m_file->setTextFormat(Qt::PlainText);
    m_objects->setObjectName(QStringLiteral("cbObjectList"));
    m_objects->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_addImported->setObjectName(QStringLiteral("btnAdd"));
    auto *form = new QFormLayout(m_imported);
    form->addRow(tr("Last file:"), m_file);
    form->addRow(tr("O&bject:"), m_objects);
    m_addImported->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    form->addRow(QString(), m_addImported);
    connect(m_addImported, &QPushButton::clicked, this, &ManufacturerSegmentForm::addSelected);
    layout()->addWidget(m_imported);
}

void ManufacturerSegmentForm::updateData()
{
    const QString path = UserSettings::general(QStringLiteral("importpath")).toString();
    m_file->setText(path.isEmpty() ? tr("none") : QFileInfo(path).fileName());
    m_file->setToolTip(QDir::toNativeSeparators(path));

    const QSignalBlocker blocker(m_objects);
    const QVariant chosen = m_objects->currentData();
    const DictionarySegment *segment = segmentOf(m_index);
    m_objects->clear();
    int first = -1;
    for (const auto &[index, name] :
         ObjectEdits::imported(editContextOf(context(), m_line, m_expert))) {
        if (first < 0 && segment != nullptr && segment->objects.contains(index))
            first = m_objects->count();
        m_objects->addItem(IndexText::titled(index, name), index);
    }
    const int kept = chosen.isValid() ? m_objects->findData(chosen) : -1;
    if (m_objects->count() > 0)
        m_objects->setCurrentIndex(kept >= 0 ? kept : std::max(0, first));
    m_objects->setEnabled(m_objects->count() > 0);
    m_addImported->setEnabled(m_objects->count() > 0);
}

void ManufacturerSegmentForm::add()
{
    bool isNumber = false;
    const uint index = m_number->text().trimmed().toUInt(&isNumber, 0);
    if (!isNumber) {
        m_hint->setText(tr("The index has to be a number, such as 0x3000."));
        m_hint->show();
        m_number->setFocus();
        return;
    }
    emit addWanted(index, m_objectType->currentText());
}

void ManufacturerSegmentForm::addSelected()
{
    if (m_objects->currentIndex() >= 0)
        emit addImportedWanted(quint16(m_objects->currentData().toUInt()));
}
