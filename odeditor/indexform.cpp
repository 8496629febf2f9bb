#include "odeditor/indexform.h"

#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "dictionary/objectwalk.h"
#include "dictionary/recordedits.h"
#include "dictionary/subindexedits.h"
#include "gui/baseobjectmask.h"
#include "gui/guihelper.h"
#include "odeditor/attributetable.h"
#include "odeditor/editing.h"
#include "odeditor/entryfields.h"
#include "odeditor/metadataform.h"
#include "odeditor/objectclassfactory.h"
#include "odeditor/overviewtable.h"
#include "store/edition.h"
#include "store/projectsettings.h"
#include "store/usersettings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace {

struct FormRow
{
    ObjectField field;
    const char *label;
};

constexpr std::array formRows{
    FormRow{ObjectField::Name, "Name"},           FormRow{ObjectField::ObjectType, "Object Type"},
    FormRow{ObjectField::DataType, "Data Type"},  FormRow{ObjectField::Variable, "Variable"},
    FormRow{ObjectField::Values, "Values"},       FormRow{ObjectField::ObjectClass, "ObjectClass"},
    FormRow{ObjectField::FwSupport, "FWSupport"}, FormRow{ObjectField::Category, "Category"},
};

constexpr std::array objectTypes{CANopen::VAR,           CANopen::ARRAY,   CANopen::RECORD,
                                 CANopen::DOMAIN_OBJECT, CANopen::DEFTYPE, CANopen::DEFSTRUCT};

/// Device classes of the EnergyBus.
constexpr std::array deviceClasses{"ebc", "bat", "vc",  "sec",   "act",  "mcu",
                                   "lmd", "hmi", "man", "manup", "manua"};

constexpr quint16 deviceType = 0x1000;

bool isOn(const QString &key)
{
    return UserSettings::general(key, false).toBool();
}

bool isCompound(quint32 objectType)
{
    return objectType == CANopen::ARRAY || objectType == CANopen::RECORD;
}

/// Adds what is stored if it is none of the choices, and selects it.
void select(QComboBox &box, const QVariant &value, const QString &label)
{
    if (BaseTreeForm::selectComboItem(box, value))
        return;
    box.addItem(label.isEmpty() ? value.toString() : label, value);
    box.setCurrentIndex(box.count() - 1);
}

/// What is stored, with the fields that the user has changed since it was shown.
ObjectDataBase::INDEX_DATA_T merged(const ObjectDataBase::INDEX_DATA_T &shown,
                                    const ObjectDataBase::INDEX_DATA_T &edited,
                                    const ObjectDataBase::INDEX_DATA_T &stored)
{
    ObjectDataBase::INDEX_DATA_T result = stored;
    const auto take = [&](auto member) {
        if (shown.*member != edited.*member)
            result.*member = edited.*member;
    };
    using Data = ObjectDataBase::INDEX_DATA_T;
    take(&Data::name);
    take(&Data::datatype);
    take(&Data::objecttype);
    take(&Data::description);
    take(&Data::category);
    take(&Data::deviceclass);
    take(&Data::fwsupported);
    take(&Data::metadata);
    return result;
}

} // namespace

IndexForm::IndexForm(QWidget *parent) : BaseTreeForm(parent)
{
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("tabWidget"));
    m_tabs->addTab(buildAttributes(), tr("Attributes"));
    m_description = new QPlainTextEdit;
    m_description->setObjectName(QStringLiteral("txtDescription"));
    m_description->setTabChangesFocus(true);
    m_tabs->addTab(m_description, tr("Description"));
    m_tabs->addTab(buildOverview(), tr("Overview"));
    if (isOn(QStringLiteral("metadata"))) {
        m_metaData = new MetaDataForm;
        m_tabs->addTab(m_metaData, tr("Meta data"));
        connect(m_metaData, &MetaDataForm::changed, this,
                [this] { m_data.metadata = m_metaData->metaData(); });
    }
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tabs);
    connect(m_description, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_isFilling)
            m_data.description = m_description->toPlainText();
    });
    connect(m_tabs, &QTabWidget::currentChanged, this, &IndexForm::handleTab);
    QMetaObject::connectSlotsByName(this);
}

QWidget *IndexForm::buildAttributes()
{
    auto *page = new QWidget;
    m_attributes = new AttributeTable(page);
    m_attributes->setObjectName(QStringLiteral("tblAttributes_2"));
    QStringList labels;
    for (const FormRow &row : formRows)
        labels.append(tr(row.label));
    m_attributes->setAttributes(labels);
    m_attributes->setDescribe([this](const QModelIndex &index) {
        const ObjectField field = formRows[std::size_t(index.row())].field;
        return WidgetDelegate::Cell{.fault = [this, field](const QString &text) {
            if (field == ObjectField::Values)
                return EntryFields::fault(SubIndexField::CurrentValue, m_zero, text);
            return EntryFields::lineFault(text, EntryFields::longestName);
        }};
    });
    connect(m_attributes, &AttributeTable::refused, this, &IndexForm::tell);
    connect(m_attributes, &AttributeTable::chosen, this, [this](int row, const QVariant &value) {
        choose(formRows[std::size_t(row)].field, value);
    });

    m_addSubIndex = new QPushButton(tr("Add SubIndex"), page);
    m_addSubIndex->setObjectName(QStringLiteral("btnAddSubIndex"));
    m_resetChanges = new QPushButton(tr("Reset Changes"), page);
    m_resetChanges->setObjectName(QStringLiteral("btnResetChanges_2"));
    m_resetChanges->setToolTip(tr("Brings back the values that the project has."));
    m_resetDefaults = new QPushButton(tr("Reset Defaults"), page);
    m_resetDefaults->setObjectName(QStringLiteral("btnResetDefaults"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_addSubIndex);
    buttons->addStretch();
    buttons->addWidget(m_resetChanges);
    buttons->addWidget(m_resetDefaults);
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(m_attributes);
    layout->addLayout(buttons);
    return page;
}

QWidget *IndexForm::buildOverview()
{
    auto *page = new QWidget;
    m_overview = new OverviewTable(page);
    m_overview->setObjectName(QStringLiteral("tblOverview"));
    connect(m_overview, &OverviewTable::refused, this, &IndexForm::tell);
    connect(m_overview, &QTableWidget::cellDoubleClicked, this, [this](int row) {
        if (!m_overview->isEditing() && m_context.navigator != nullptr)
            m_context.navigator->gotoSubIndex(m_line, m_index, m_overview->subindexAt(row));
    });
    m_expertEditing = new QPushButton(tr("Enable Expert In-Table Editing"), page);
    m_expertEditing->setObjectName(QStringLiteral("btnExpertEditing"));
    m_expertEditing->setCheckable(true);
    m_expertEditing->setToolTip(tr("Enable the expert editing mode. "));
    m_changes = new QLabel(page);
    m_changes->setObjectName(QStringLiteral("lblChanges"));
    m_reset = new QPushButton(tr("Reset current changes"), page);
    m_reset->setObjectName(QStringLiteral("btnReset"));
    auto *focus = new QCheckBox(tr("Focus Overview Tab"), page);
    focus->setObjectName(QStringLiteral("cbFocusOverview"));
    focus->setToolTip(tr("Objects open with this tab."));
    focus->setChecked(isOn(QStringLiteral("focusoverview")));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(focus);
    buttons->addStretch();
    buttons->addWidget(m_changes);
    buttons->addWidget(m_expertEditing);
    buttons->addWidget(m_reset);
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(m_overview);
    layout->addLayout(buttons);
    return page;
}

void IndexForm::init(quint8 line, quint16 index, const std::shared_ptr<ObjectDataBase> &store,
                     bool canEdit, bool expert, UndoManager *undo)
{
    FormContext context = m_context;
    context.project = store;
    context.undo = undo;
    open(context, {line, index, noSubindex, canEdit, expert});
}

EditRights IndexForm::rights() const
{
    return editContextOf(m_context, m_line, m_expert).rights;
}

void IndexForm::updateData()
{
    if (database() == nullptr)
        return;
    IndexRecord stored;
    if (!database()->getIndexData(m_line, m_index, stored))
        m_canEdit = false;
    Record zero;
    m_hasZero = database()->getSubIndexData(m_line, m_index, 0, zero);
    m_data = m_isLoaded ? merged(m_shown, m_data, stored) : stored;
    m_zero = m_isLoaded ? EntryFields::merged(m_shownZero, m_zero, zero) : zero;
    m_shown = stored;
    m_shownZero = zero;
    m_subCount = database()->getSubIndices(m_line, m_index).size();
    const bool isFirst = !std::exchange(m_isLoaded, true);
    m_isOverviewFilled = false;
    showAll();
    if (isFirst && m_mask == nullptr) {
        addMask();
        chooseFirstTab();
    }
    handleTab();
}

void IndexForm::addMask()
{
    if (m_index == deviceType && ProjectSettings(*database()).isOn("canfd_supported"))
        return;
    ObjectClassFactory factory;
    const quint16 profile = ObjectClassFactory::profileOf(*database(), m_line);
    m_mask = factory.createMask(m_line, m_index, profile, m_tabs);
    if (m_mask == nullptr)
        return;
    m_mask->open(m_context, {m_line, m_index, noSubindex, m_canEdit, m_expert});
    m_tabs->addTab(m_mask, tr("Mask"));
}

void IndexForm::chooseFirstTab()
{
    if (m_mask != nullptr && isOn(QStringLiteral("focusmask")))
        m_tabs->setCurrentWidget(m_mask);
    else if (isOn(QStringLiteral("focusoverview")))
        m_tabs->setCurrentWidget(m_overview->parentWidget());
}

void IndexForm::handleTab()
{
    if (m_mask != nullptr && m_tabs->currentWidget() == m_mask)
        m_mask->updateData();
    if (m_tabs->currentWidget() == m_overview->parentWidget() && !m_isOverviewFilled)
        fillOverview();
}

void IndexForm::fillOverview()
{
    if (database() == nullptr)
        return;
    // One statement in place of one for each subindex.
    if (!database()->isLineCached(m_line))
        database()->cacheAllSubs(m_line, m_index);
    const QSignalBlocker blocker(m_overview);
    m_overview->showObject(readDictionaryObject(*database(), m_line, m_index), rights());
    m_isOverviewFilled = true;
    showChanges();
}

QMap<quint8, IndexForm::Record> IndexForm::changedRecords() const
{
    QMap<quint8, Record> records = m_overview->changedRecords();
    if (m_hasZero && m_zero != m_shownZero)
        records[0] = EntryFields::merged(m_shownZero, m_zero, records.value(0, m_shownZero));
    return records;
}

void IndexForm::saveData()
{
    if (!m_canEdit || !m_isLoaded)
        return;
    m_attributes->commitOpenEditor();
    m_overview->commitOpenEditor();
    if (m_metaData != nullptr)
        m_metaData->commitOpenEditor();
    const QMap<quint8, Record> records = changedRecords();
    if (m_data != m_shown || !records.isEmpty()) {
        const EditResult result = RecordEdits::saveObject(
            editContextOf(m_context, m_line, m_expert), m_index, m_data, records);
        if (!result) {
            GuiHelper::showMessageBox(
                this, GuiHelper::boxTitle(),
                tr("Object %1 could not be changed.").arg(IndexText::hex(m_index)), result.reason(),
                QMessageBox::Ok, QMessageBox::Warning);
            return;
        }
        m_isLoaded = false;
        m_overview->reset();
        updateData();
    }
    if (m_mask != nullptr)
        m_mask->saveData();
}

void IndexForm::showAll()
{
    m_isFilling = true;
    for (int row = 0; row < m_attributes->rowCount(); ++row)
        showRow(row);
    const EditRights may = rights();
    const EditResult restructure = may.restructure(m_index);
    const bool mayAdd = m_canEdit && restructure && isCompound(m_data.objecttype);
    m_addSubIndex->setEnabled(mayAdd);
    m_addSubIndex->setToolTip(isCompound(m_data.objecttype)
                                  ? restructure.reason()
                                  : tr("Only arrays and records have further subindices."));
    m_resetChanges->setEnabled(m_canEdit);
    const bool hasModel = m_context.library != nullptr &&
                          m_context.library->indexExists(ObjectDataBase::stagingLine, m_index);
    m_resetDefaults->setEnabled(m_canEdit && hasModel);
    m_resetDefaults->setToolTip(
        hasModel ? tr("Gives the subindices the default values of the standard object.")
                 : tr("The library has no standard object with this index."));
    if (m_description->toPlainText() != m_data.description)
        m_description->setPlainText(m_data.description);
    m_description->setReadOnly(!m_canEdit);
    m_expertEditing->setEnabled(m_canEdit);
    if (m_metaData != nullptr) {
        m_metaData->setStore(m_context.project);
        m_metaData->setMetaData(m_data.metadata);
        m_metaData->setReadOnly(!m_canEdit);
    }
    m_isFilling = false;
    showChanges();
}

void IndexForm::showChanges()
{
    const bool isChanged = !m_overview->changedRecords().isEmpty();
    m_changes->setText(isChanged ? tr("modified") : QString());
    m_reset->setEnabled(isChanged);
}

quint16 IndexForm::dataType() const
{
    const bool isOfValue = m_data.datatype == 0 && !isCompound(m_data.objecttype) && m_hasZero;
    return isOfValue ? m_zero.datatype : m_data.datatype;
}

QString IndexForm::textOf(ObjectField field) const
{
    switch (field) {
    case ObjectField::Name:
        return m_data.name;
    case ObjectField::Variable:
        return m_hasZero ? m_zero.varname : QString();
    case ObjectField::Values:
        return isCompound(m_data.objecttype) ? tr("%n subindices", nullptr, int(m_subCount))
               : m_hasZero                   ? m_zero.currentvalue
                                             : QString();
    case ObjectField::ObjectClass:
        return m_data.deviceclass;
    default:
        return {};
    }
}

QString IndexForm::refusal(ObjectField field) const
{
    if (!m_canEdit)
        return tr("This can't be changed here.");
    const EditRights may = rights();
    const bool isOfZero = field == ObjectField::Variable || field == ObjectField::Values;
    if (isOfZero && !m_hasZero)
        return tr("The object has no subindex 0.");
    if (field == ObjectField::Variable)
        return may.edit(m_index, 0, m_zero, SubIndexField::VariableName).reason();
    if (field == ObjectField::Values) {
        if (isCompound(m_data.objecttype))
            return tr("The values stand at the subindices.");
        return may.edit(m_index, 0, m_zero, SubIndexField::CurrentValue).reason();
    }
    if (field == ObjectField::DataType && m_data.objecttype == CANopen::RECORD)
        return tr("Each subindex of a record has a data type of its own.");
    return may.edit(m_index, field).reason();
}

void IndexForm::showRow(int row)
{
    const ObjectField field = formRows[std::size_t(row)].field;
    AttributeTable::Look look;
    look.text = textOf(field);
    look.refusal = refusal(field);
    switch (field) {
    case ObjectField::Name:
        look.isChanged = m_data.name != m_shown.name;
        break;
    case ObjectField::ObjectType:
        look.isChanged = m_data.objecttype != m_shown.objecttype;
        look.fill = [this](QComboBox &box) {
            box.clear();
            for (const auto type : objectTypes)
                box.addItem(COHelper::objectCode2String(type), quint32(type));
            select(box, m_data.objecttype, QString());
        };
        break;
    case ObjectField::DataType:
        look.isChanged = m_data.datatype != m_shown.datatype;
        look.fill = [this](QComboBox &box) {
            BaseTreeForm::fillDataTypes(box, m_data.deviceclass);
            if (dataType() == 0)
                box.insertItem(0, QString(), quint16(0));
            select(box, dataType(), COHelper::index2DataTypeString(dataType()));
        };
        break;
    case ObjectField::Variable:
        look.isChanged = m_zero.varname != m_shownZero.varname;
        break;
    case ObjectField::Values:
        look.isChanged = m_zero.currentvalue != m_shownZero.currentvalue;
        look.isFixedWidth = !isCompound(m_data.objecttype);
        break;
    case ObjectField::ObjectClass:
        look.isChanged = m_data.deviceclass != m_shown.deviceclass;
        if (!Edition::isEnergyBus())
            break;
        look.fill = [this](QComboBox &box) {
            box.clear();
            box.addItem(QString(), QString());
            for (const char *name : deviceClasses)
                box.addItem(QString::fromLatin1(name), QString::fromLatin1(name));
            select(box, m_data.deviceclass, QString());
        };
        break;
    case ObjectField::FwSupport:
        look.isChanged = m_data.fwsupported != m_shown.fwsupported;
        look.checked = m_data.fwsupported;
        look.hasText = false;
        break;
    case ObjectField::Category:
        look.isChanged = m_data.category != m_shown.category;
        look.fill = [this](QComboBox &box) {
            box.clear();
            for (quint16 category = 0; category <= CANopen::Conditional; ++category)
                box.addItem(COHelper::category2String(quint8(category)), category);
            select(box, m_data.category, QString());
        };
        break;
    default:
        break;
    }
    m_attributes->showRow(row, look);
}

bool IndexForm::confirmLoss(quint32 objectType)
{
    const qsizetype lost =
        RecordEdits::lostSubindices(editContextOf(m_context, m_line, m_expert), m_index,
                                    static_cast<CANopen::ObjectCode>(objectType));
    if (lost == 0)
        return true;
    const int answer = GuiHelper::showMessageBox(
        this, {.title = GuiHelper::boxTitle(),
               .text = tr("A %1 has one value; %n subindex(es) of %2 would be deleted. Proceed?",
                          nullptr, int(lost))
                           .arg(COHelper::objectCode2String(objectType), IndexText::hex(m_index)),
               .informativeText = {},
               .buttons = QMessageBox::Yes | QMessageBox::No,
               .icon = QMessageBox::Question,
               .defaultButton = QMessageBox::No,
               .extraButtons = {}});
    return answer == QMessageBox::Yes;
}

void IndexForm::choose(ObjectField field, const QVariant &value)
{
    switch (field) {
    case ObjectField::ObjectType:
        if (value.toUInt() == m_data.objecttype || confirmLoss(value.toUInt()))
            m_data.objecttype = value.toUInt();
        break;
    case ObjectField::DataType:
        if (value.toUInt() != dataType())
            m_data.datatype = quint16(value.toUInt());
        break;
    case ObjectField::ObjectClass:
        m_data.deviceclass = value.toString();
        break;
    case ObjectField::Category:
        m_data.category = quint16(value.toUInt());
        break;
    default:
        break;
    }
    showAll();
}

void IndexForm::setText(ObjectField field, const QString &text)
{
    switch (field) {
    case ObjectField::Name:
        m_data.name = text;
        break;
    case ObjectField::Variable:
        m_zero.varname = text;
        break;
    case ObjectField::Values:
        m_zero.currentvalue = text;
        break;
    case ObjectField::ObjectClass:
        m_data.deviceclass = text;
        break;
    default:
        break;
    }
}

void IndexForm::on_tblAttributes_2_itemChanged(QTableWidgetItem *item)
{
    if (m_isFilling || item->column() != 1)
        return;
    const ObjectField field = formRows[std::size_t(item->row())].field;
    if (field == ObjectField::FwSupport)
        m_data.fwsupported = item->checkState() == Qt::Checked;
    else if (item->text() != textOf(field))
        setText(field, item->text());
    showAll();
}

void IndexForm::on_btnAddSubIndex_clicked()
{
    saveData();
    quint8 made = 0;
    const EditResult result =
        SubIndexEdits::addNext(editContextOf(m_context, m_line, m_expert), m_index, &made);
    tell(result ? tr("Subindex %1 of %2 was added.").arg(made).arg(IndexText::hex(m_index))
                : result.reason());
    updateData();
}

void IndexForm::on_btnResetChanges_2_clicked()
{
    m_data = m_shown;
    m_zero = m_shownZero;
    showAll();
}

void IndexForm::on_btnResetDefaults_clicked()
{
    saveData();
    const EditResult result =
        RecordEdits::resetDefaults(editContextOf(m_context, m_line, m_expert), m_index);
    tell(result ? tr("The default values are those of the standard object.") : result.reason());
    updateData();
}

void IndexForm::on_btnExpertEditing_clicked()
{
    m_overview->commitOpenEditor();
    const QSignalBlocker blocker(m_overview);
    m_overview->setEditing(m_expertEditing->isChecked());
}

void IndexForm::on_btnReset_clicked()
{
    const QSignalBlocker blocker(m_overview);
    m_overview->reset();
    showChanges();
}

void IndexForm::on_cbFocusOverview_clicked(bool checked)
{
    UserSettings::setGeneral(QStringLiteral("focusoverview"), checked);
}

void IndexForm::on_tblOverview_currentCellChanged(int row, int column, int, int)
{
    if (!m_overview->isEditing() || row < 0 || column <= 0)
        return;
    if (const QString reason = m_overview->refusal(row, column); !reason.isEmpty())
        tell(reason);
}

void IndexForm::on_tblOverview_cellChanged(int row, int column)
{
    m_overview->takeCell(row, column);
    showChanges();
}

void IndexForm::on_tblOverview_customContextMenuRequested(const QPoint &pos)
{
    QMenu menu(this);
    menu.addAction(tr("Copy values from 1st row to other rows"), this,
                   &IndexForm::copyValuesInOverview)
        ->setEnabled(m_overview->isEditing() && m_overview->currentColumn() > 0);
    menu.exec(m_overview->viewport()->mapToGlobal(pos));
}

void IndexForm::copyValuesInOverview()
{
    m_overview->copyDown(m_overview->currentColumn());
    showChanges();
}

void IndexForm::tell(const QString &text)
{
    m_context.tell(text);
}
