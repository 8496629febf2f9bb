#include "odeditor/subindexform.h"

#include "canopen/indextext.h"
#include "dictionary/entryrules.h"
#include "dictionary/recordedits.h"
#include "gui/guihelper.h"
#include "odeditor/attributetable.h"
#include "odeditor/editing.h"
#include "odeditor/entryfields.h"
#include "odeditor/metadataform.h"
#include "store/usersettings.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <span>

namespace {

enum class Shown {
    Always,
    RarelyUsed, ///< if the user has switched on `rarelyused`
    IfStored,   ///< that, or where there is a value
    OfDomain    ///< of domains, which have no implementation
};

struct FormRow
{
    SubIndexField field;
    const char *label;
    Shown shown = Shown::Always;
    bool isRarelyUsed = false;
};

constexpr std::array attributeRows{
    FormRow{SubIndexField::Name, "Name"},
    FormRow{SubIndexField::DataType, "Data Type"},
    FormRow{SubIndexField::AccessType, "Access Type"},
    FormRow{SubIndexField::LowLimit, "Lower Limit"},
    FormRow{SubIndexField::HighLimit, "Upper Limit"},
    FormRow{SubIndexField::PdoMapping, "PDO Mapping"},
    FormRow{SubIndexField::DefaultValue, "Defaultvalue"},
    FormRow{SubIndexField::CurrentValue, "Current value", Shown::IfStored},
    FormRow{SubIndexField::LimitCheck, "Limit Check"},
    FormRow{SubIndexField::RefuseRead, "Refuse read on Scan", Shown::RarelyUsed},
    FormRow{SubIndexField::RefuseWrite, "Refuse write on Download", Shown::RarelyUsed},
    FormRow{SubIndexField::DefaultInEds, "Defaultvalue in EDS"},
    FormRow{SubIndexField::Size, "Size in Bytes", Shown::OfDomain},
    FormRow{SubIndexField::Shared, "Shared in all lines", Shown::OfDomain, true},
    FormRow{SubIndexField::NonVolatile, "Non-volatile storage", Shown::OfDomain, true},
};

constexpr std::array implementationRows{
    FormRow{SubIndexField::Implementation, "Implementation Type"},
    FormRow{SubIndexField::VariableName, "Variable Name"},
    FormRow{SubIndexField::Size, "Size in Bytes"},
    FormRow{SubIndexField::Shared, "Shared in all lines", Shown::RarelyUsed},
    FormRow{SubIndexField::NonVolatile, "Non-volatile storage", Shown::RarelyUsed},
};

bool hasRarelyUsed()
{
    return UserSettings::general(QStringLiteral("rarelyused"), false).toBool();
}

QStringList labels(std::span<const FormRow> rows)
{
    QStringList texts;
    for (const FormRow &row : rows)
        texts.append(QCoreApplication::translate("SubIndexForm", row.label));
    return texts;
}

std::span<const FormRow> rowsOf(bool isImplementation)
{
    if (isImplementation)
        return implementationRows;
    return attributeRows;
}

} // namespace

SubIndexForm::SubIndexForm(QWidget *parent) : BaseTreeForm(parent)
{
    buildWidgets();
    connectTable(m_attributes);
    connectTable(m_implementation);
    connect(m_implementation, &QTableWidget::itemChanged, this,
            [this](QTableWidgetItem *item) { takeItem(m_implementation, item); });
    connect(m_attributes, &QWidget::customContextMenuRequested, this,
            &SubIndexForm::displayContextMenuAttributes);
    connect(m_implementation, &QWidget::customContextMenuRequested, this,
            &SubIndexForm::displayContextMenuImplementation);
    connect(m_description, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_isFilling)
            m_record.description = m_description->toPlainText();
    });
    QMetaObject::connectSlotsByName(this);
}

void SubIndexForm::buildWidgets()
{
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("tabWidget"));
    auto *page = new QWidget;
    m_attributes = new AttributeTable(page);
    m_attributes->setObjectName(QStringLiteral("tblAttributes"));
    m_attributes->setAttributes(labels(attributeRows));
    m_implementation = new AttributeTable(page);
    m_implementation->setObjectName(QStringLiteral("tblImplementation"));
    m_implementation->setAttributes(labels(implementationRows));
    m_hint = new QLabel(
        tr("Additional attributes may be enabled in the settings dialog.") + QLatin1Char('\n') +
            tr("These are CiA 306 ObjFlags, a non-volatile storage flag and a flag for shared "
               "objects."),
        page);
    m_hint->setObjectName(QStringLiteral("lblHint"));
    m_hint->setWordWrap(true);
    auto *reset = new QPushButton(tr("Reset Changes"), page);
    reset->setObjectName(QStringLiteral("btnResetChanges"));
    reset->setToolTip(tr("Brings back the values that the project has."));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_hint, 1);
    buttons->addWidget(reset, 0, Qt::AlignTop);
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(m_attributes, 12);
    layout->addWidget(m_implementation, 5);
    layout->addLayout(buttons);
    m_tabs->addTab(page, tr("Attributes"));

    m_description = new QPlainTextEdit;
    m_description->setObjectName(QStringLiteral("txtDescription"));
    m_description->setTabChangesFocus(true);
    m_tabs->addTab(m_description, tr("Description"));
    if (UserSettings::general(QStringLiteral("metadata"), false).toBool()) {
        m_metaData = new MetaDataForm;
        m_tabs->addTab(m_metaData, tr("Meta data"));
        connect(m_metaData, &MetaDataForm::changed, this,
                [this] { m_record.metadata = m_metaData->metaData(); });
    }
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(m_tabs);
}

void SubIndexForm::connectTable(AttributeTable *table)
{
    table->setDescribe([this, table](const QModelIndex &index) {
        return EntryFields::cell(fieldOf(table, index.row()), m_record, m_object.deviceclass);
    });
    connect(table, &AttributeTable::refused, this, &SubIndexForm::tell);
    connect(table, &AttributeTable::chosen, this, [this, table](int row, const QVariant &value) {
        const SubIndexField field = fieldOf(table, row);
        if (field == SubIndexField::DataType)
            dataTypeChanged(table->combo(row)->currentIndex());
        else if (field == SubIndexField::Implementation)
            implementationChanged();
        else
            setField(field, value);
    });
}

void SubIndexForm::init(quint8 line, quint16 index, quint8 subindex,
                        const std::shared_ptr<ObjectDataBase> &store, bool canEdit, bool expert,
                        UndoManager *undo)
{
    FormContext context = m_context;
    context.project = store;
    context.undo = undo;
    open(context, {line, index, subindex, canEdit, expert});
}

void SubIndexForm::updateData()
{
    Record stored;
    if (database() == nullptr || !database()->getSubIndexData(m_line, m_index, m_subindex, stored))
        m_canEdit = false;
    if (database() == nullptr || !database()->getIndexData(m_line, m_index, m_object))
        m_object = {};
    m_record = m_isLoaded ? EntryFields::merged(m_shown, m_record, stored) : stored;
    m_shown = stored;
    m_isLoaded = true;
    showAll();
}

void SubIndexForm::saveData()
{
    if (!m_canEdit || !m_isLoaded)
        return;
    m_attributes->commitOpenEditor();
    m_implementation->commitOpenEditor();
    if (m_metaData != nullptr)
        m_metaData->commitOpenEditor();
    if (m_record == m_shown)
        return;
    const EditResult result = RecordEdits::saveEntries(editContextOf(m_context, m_line, m_expert),
                                                       m_index, {{m_subindex, m_record}});
    if (!result) {
        GuiHelper::showMessageBox(this, GuiHelper::boxTitle(),
                                  tr("Subindex %1 of %2 could not be changed.")
                                      .arg(m_subindex)
                                      .arg(IndexText::hex(m_index)),
                                  result.reason(), QMessageBox::Ok, QMessageBox::Warning);
        return;
    }
    m_isLoaded = false;
    updateData();
}

void SubIndexForm::showAll()
{
    m_isFilling = true;
    showTable(m_attributes);
    showTable(m_implementation);
    m_implementation->setVisible(m_record.datatype != CAN::DOMAIN_TYPE);
    m_hint->setVisible(!hasRarelyUsed());
    const bool mayDescribe = refusal(SubIndexField::Description).isEmpty();
    if (m_description->toPlainText() != m_record.description)
        m_description->setPlainText(m_record.description);
    m_description->setReadOnly(!mayDescribe);
    m_description->setToolTip(refusal(SubIndexField::Description));
    findChild<QPushButton *>(QStringLiteral("btnResetChanges"))->setEnabled(m_canEdit);
    if (m_metaData != nullptr) {
        m_metaData->setStore(m_context.project);
        m_metaData->setMetaData(m_record.metadata);
        m_metaData->setReadOnly(!mayDescribe);
    }
    m_isFilling = false;
}

void SubIndexForm::showTable(AttributeTable *table)
{
    const bool isImplementation = table == m_implementation;
    for (int row = 0; row < table->rowCount(); ++row) {
        table->setRowHidden(row, !isRowShown(table, row));
        if (table->isRowHidden(row))
            continue;
        const SubIndexField field = fieldOf(table, row);
        const EntryFields::Kind kind = EntryFields::kindOf(field);
        AttributeTable::Look look;
        look.text = EntryFields::text(field, m_record);
        look.refusal = refusal(field);
        look.isFixedWidth = kind == EntryFields::Kind::Value;
        look.isChanged = EntryFields::value(field, m_shown) != EntryFields::value(field, m_record);
        const bool isByStack =
            isImplementation && row < 2 && look.refusal == tr("Not editable - managed by stack");
        if (isByStack)
            look.text = look.refusal;
        else if (kind == EntryFields::Kind::Choice)
            look.fill = EntryFields::cell(field, m_record, m_object.deviceclass).fill;
        if (kind == EntryFields::Kind::Check) {
            look.checked = EntryFields::value(field, m_record).toBool();
            look.hasText = false;
        } else if (field == SubIndexField::DefaultValue) {
            look.checked = m_record.defaultineds;
            look.isChanged |= m_record.defaultineds != m_shown.defaultineds;
            if (look.refusal.isEmpty())
                look.text = m_record.defaultvalue;
        }
        table->showRow(row, look);
    }
}

bool SubIndexForm::isRowShown(const AttributeTable *table, int row) const
{
    const FormRow &form = rowsOf(table == m_implementation)[std::size_t(row)];
    switch (form.shown) {
    case Shown::RarelyUsed:
        return hasRarelyUsed();
    case Shown::IfStored:
        return hasRarelyUsed() || !m_shown.currentvalue.isEmpty() ||
               !m_record.currentvalue.isEmpty();
    case Shown::OfDomain:
        return m_record.datatype == CAN::DOMAIN_TYPE && (!form.isRarelyUsed || hasRarelyUsed());
    case Shown::Always:
        break;
    }
    return true;
}

QString SubIndexForm::refusal(SubIndexField field) const
{
    if (!m_canEdit)
        return tr("This can't be changed here.");
    return editContextOf(m_context, m_line, m_expert)
        .rights.edit(m_index, m_subindex, m_record, field)
        .reason();
}

SubIndexField SubIndexForm::fieldOf(const AttributeTable *table, int row) const
{
    return rowsOf(table == m_implementation)[std::size_t(row)].field;
}

int SubIndexForm::rowOf(const AttributeTable *table, SubIndexField field) const
{
    const auto rows = rowsOf(table == m_implementation);
    const auto found = std::ranges::find(rows, field, &FormRow::field);
    return int(found - rows.begin());
}

void SubIndexForm::on_tblAttributes_itemChanged(QTableWidgetItem *item)
{
    takeItem(m_attributes, item);
}

void SubIndexForm::takeItem(AttributeTable *table, QTableWidgetItem *item)
{
    if (m_isFilling || item->column() != 1)
        return;
    const SubIndexField field = fieldOf(table, item->row());
    const bool isChecked = item->checkState() == Qt::Checked;
    if (field == SubIndexField::LimitCheck)
        limitCheckChanged();
    else if (EntryFields::kindOf(field) == EntryFields::Kind::Check)
        setField(field, isChecked);
    else if (item->text() != EntryFields::text(field, m_record))
        setField(field, item->text());
    else if (field == SubIndexField::DefaultValue)
        setField(SubIndexField::HasDefault, isChecked);
}

void SubIndexForm::setField(SubIndexField field, const QVariant &value)
{
    EntryFields::set(field, m_record, value);
    showAll();
}

void SubIndexForm::dataTypeChanged(int index)
{
    const QComboBox *box = m_attributes->combo(rowOf(m_attributes, SubIndexField::DataType));
    if (box != nullptr && index >= 0 && index < box->count())
        setField(SubIndexField::DataType, box->itemData(index));
}

void SubIndexForm::limitCheckChanged()
{
    const QTableWidgetItem *item =
        m_attributes->item(rowOf(m_attributes, SubIndexField::LimitCheck), 1);
    setField(SubIndexField::LimitCheck, item->checkState() == Qt::Checked);
}

void SubIndexForm::implementationChanged()
{
    const QComboBox *box =
        m_implementation->combo(rowOf(m_implementation, SubIndexField::Implementation));
    if (box != nullptr)
        setField(SubIndexField::Implementation, box->currentData());
}

void SubIndexForm::on_btnResetChanges_clicked()
{
    m_record = m_shown;
    showAll();
}

void SubIndexForm::displayContextMenuAttributes(const QPoint &pos)
{
    QMenu menu(this);
    menu.setToolTipsVisible(true);
    const SubIndexField field = fieldOf(m_attributes, std::max(0, m_attributes->currentRow()));
    QAction *convert =
        menu.addAction(tr("Convert hex <-> dec"), this, &SubIndexForm::convertHexDec);
    convert->setToolTip(tr("Conversion from hex to dec or vice versa"));
    convert->setEnabled(EntryFields::kindOf(field) == EntryFields::Kind::Value &&
                        field != SubIndexField::Size && refusal(field).isEmpty());
    if (m_record.datatype == CAN::DOMAIN_TYPE) {
        menu.addAction(tr("Set size for current string"), this, &SubIndexForm::adjustSize)
            ->setEnabled(refusal(SubIndexField::Size).isEmpty());
    }
    menu.exec(m_attributes->viewport()->mapToGlobal(pos));
}

void SubIndexForm::displayContextMenuImplementation(const QPoint &pos)
{
    QMenu menu(this);
    menu.addAction(tr("Set size for current string"), this, &SubIndexForm::adjustSize)
        ->setEnabled(refusal(SubIndexField::Size).isEmpty());
    menu.exec(m_implementation->viewport()->mapToGlobal(pos));
}

void SubIndexForm::adjustSize()
{
    if (const QString reason = refusal(SubIndexField::Size); !reason.isEmpty()) {
        tell(reason);
        return;
    }
    setField(SubIndexField::Size,
             quint32(EntryRules::byteCount(m_record.datatype, m_record.defaultvalue)));
}

void SubIndexForm::convertHexDec()
{
    const int row = m_attributes->currentRow();
    if (row < 0)
        return;
    const SubIndexField field = fieldOf(m_attributes, row);
    if (EntryFields::kindOf(field) != EntryFields::Kind::Value)
        return;
    if (const QString reason = refusal(field); !reason.isEmpty()) {
        tell(reason);
        return;
    }
    const QString text = EntryFields::text(field, m_record);
    if (text.isEmpty())
        return;
    if (m_record.name.contains(u'$') || m_object.name.contains(u'$')) {
        tell(tr("Conversion cannot be used for indices with index masks."));
        return;
    }
    const std::optional<QString> converted = EntryRules::convertHexDec(text);
    if (!converted) {
        tell(tr("\"%1\" can't be converted; it stays as it is.").arg(text));
        return;
    }
    const bool hasDefault = m_record.defaultineds;
    EntryFields::set(field, m_record, *converted);
    m_record.defaultineds = hasDefault; // the same value in other words
    showAll();
}

void SubIndexForm::tell(const QString &text)
{
    m_context.tell(text);
}
