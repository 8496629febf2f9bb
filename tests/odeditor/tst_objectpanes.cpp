#include "gui/guihelper.h"
#include "odeditor/attributetable.h"
#include "odeditor/indexform.h"
#include "odeditor/metadataform.h"
#include "odeditor/objectclassfactory.h"
#include "odeditor/overviewtable.h"
#include "odeditor/subindexform.h"
#include "store/undomanager.h"
#include "store/usersettings.h"

#include "canopen/cohelper.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Record = ObjectDataBase::SUBINDEX_DATA_T;

/// A project, a pane on it, and what the pane tells its user.
struct Desk : FormNavigator
{
    Desk() { store->createNewDataBase(); }

    template <typename Form>
    std::unique_ptr<Form> open(quint16 index, quint8 subindex = BaseTreeForm::noSubindex,
                               bool expert = true)
    {
        auto form = std::make_unique<Form>();
        form->resize(800, 600);
        form->open({.project = store, .navigator = this},
                   {.index = index, .subindex = subindex, .expert = expert});
        form->updateData();
        return form;
    }
    Record entry(quint16 index, quint8 subindex)
    {
        Record record;
        store->getSubIndexData(0, index, subindex, record);
        return record;
    }
    void gotoIndex(quint8, quint16) override {}
    void gotoSubIndex(quint8, quint16 index, quint8 sub) override { gone = {index, sub}; }
    void tell(const QString &text) override { told = text; }

    std::shared_ptr<ObjectDataBase> store = std::make_shared<ObjectDataBase>();
    std::pair<quint16, quint8> gone;
    QString told;
};

int rowOf(const AttributeTable *table, const QString &label)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        if (table->item(row, 0)->text() == label && !table->isRowHidden(row))
            return row;
    }
    return -1;
}

AttributeTable *table(QWidget &form, const QString &name = u"tblAttributes"_s)
{
    return form.findChild<AttributeTable *>(name);
}

QTableWidgetItem *cell(AttributeTable *table, const QString &label)
{
    return table->item(rowOf(table, label), 1);
}

void choose(AttributeTable *table, const QString &label, const QVariant &value)
{
    QComboBox *box = table->combo(rowOf(table, label));
    box->setCurrentIndex(box->findData(value));
    emit box->activated(box->currentIndex());
}

/// Types over a cell and presses Enter; gives the editor if it stays open.
QLineEdit *type(QTableWidget *table, int row, int column, const QString &text)
{
    table->setCurrentCell(row, column);
    table->editItem(table->item(row, column));
    const auto editors = table->viewport()->findChildren<QLineEdit *>();
    if (editors.isEmpty())
        return nullptr;
    QLineEdit *edit = editors.last();
    edit->selectAll();
    edit->insert(text);
    QTest::keyClick(edit, Qt::Key_Return);
    QCoreApplication::processEvents();
    return edit->isVisible() && !edit->hasAcceptableInput() ? edit : nullptr;
}

/// Objects with every data type, access, mapping, implementation and flag, and odd spellings.
void fillWithEverything(ObjectDataBase &store)
{
    static const QStringList access = {u"const"_s, u"ro"_s,  u"wo"_s, u"rw"_s,
                                       u"rwr"_s,   u"rww"_s, u"RW"_s, QString()};
    quint16 index = 0x2000;
    const auto add = [&](quint16 type, int n) {
        Record record;
        record.name = n % 3 == 0 ? QString() : u"It's \"%1\"\n"_s.arg(n);
        record.datatype = type;
        record.accesstype = access[n % access.size()];
        record.allowedaccesstypes = n % 2 == 0 ? u"ro,const"_s : QString();
        record.defaultvalue = n % 4 == 0 ? u" 0X0a\r\n"_s : QString::number(n);
        record.currentvalue = n % 5 == 0 ? u"7"_s : QString();
        record.pdomapping.setValue(static_cast<PDOMapping::PDOMappingType>(n % 5));
        record.lowlimit = n % 2 == 0 ? u"-0x5"_s : QString();
        record.size = quint32(n);
        for (bool Record::*flag : {&Record::defaultineds, &Record::limitineds, &Record::refuseread,
                                   &Record::refusewrite, &Record::dcfcomponent, &Record::cyclicread,
                                   &Record::sharedlines, &Record::managedbytsk, &Record::nvstorage})
            record.*flag = ++n % 3 == 0;
        record.implementation = quint8(n % 5);
        record.description = n % 2 == 0 ? u"a\r\nb  "_s : QString();
        record.category = quint8(n % 4);
        record.writedefaulttoeds = quint8(n % 4);
        record.wizardsource = 5;
        record.denotation = u"d"_s;
        record.signalid = 9;
        if (n % 2 == 0)
            record.metadata = {{u"subdefine"_s, u"X"_s}};
        store.addIndex(0, index,
                       {.name = record.name,
                        .datatype = quint16(n % 2 == 0 ? type : 0),
                        .objecttype = quint32(n % 8 + 2),
                        .description = record.description,
                        .category = quint16(n % 4),
                        .deviceclass = u"EtherCAT"_s,
                        .fwsupported = n % 2 == 0,
                        .metadata = record.metadata});
        store.addSubIndex(0, index, 0, record);
        store.addSubIndex(0, index, 3, record);
        ++index;
    };
    int n = 0;
    QList<quint16> types = COHelper::stringDataTypeIndexMap().keys();
    types << 0 << 999;
    for (const quint16 type : std::as_const(types)) {
        for (int variant = 0; variant < 3; ++variant)
            add(type, ++n);
    }
}

} // namespace

class TestObjectPanes : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        UserSettings().clear();
        GuiHelper::takeShownBoxes();
    }

    void lookingChangesNothing_data()
    {
        QTest::addColumn<bool>("isOn");
        QTest::addRow("plain") << false;
        QTest::addRow("all settings") << true;
    }
    void lookingChangesNothing()
    {
        QFETCH(bool, isOn);
        for (const QString &key : {u"rarelyused"_s, u"metadata"_s, u"ignoretsk"_s})
            UserSettings::setGeneral(key, isOn);
        Desk desk;
        fillWithEverything(*desk.store);
        const QString before = desk.store->contentHash();
        for (const quint16 index : desk.store->getIndices(0, 0x2000)) {
            const auto object = desk.open<IndexForm>(index);
            auto *tabs = object->findChild<QTabWidget *>(u"tabWidget"_s);
            for (int tab = 0; tab < tabs->count(); ++tab)
                tabs->setCurrentIndex(tab);
            object->findChild<QPushButton *>(u"btnExpertEditing"_s)->click();
            auto *overview = object->findChild<OverviewTable *>();
            overview->editItem(overview->item(0, 1));
            object->saveData();
            for (const quint8 subindex : desk.store->getSubIndices(0, index)) {
                const auto sub = desk.open<SubIndexForm>(index, subindex);
                QTableWidgetItem *value = cell(table(*sub), u"Defaultvalue"_s);
                if (value->flags().testFlag(Qt::ItemIsEditable))
                    table(*sub)->editItem(value);
                sub->saveData();
            }
        }
        QCOMPARE(desk.store->contentHash(), before);
        QVERIFY(GuiHelper::takeShownBoxes().isEmpty());
    }

    void subIndexWritesWhatWasChanged()
    {
        UserSettings::setGeneral(u"metadata"_s, true);
        Desk desk;
        desk.store->addIndex(0, 0x2000, {.name = u"Motor"_s, .datatype = CAN::UNSIGNED16});
        const Record before{.name = u"Motor"_s,
                            .datatype = CAN::UNSIGNED16,
                            .accesstype = u"rw"_s,
                            .defaultvalue = u"0x10"_s,
                            .denotation = u"kept"_s,
                            .signalid = 4,
                            .metadata = {{u"subdefine"_s, u"M"_s}}};
        desk.store->addSubIndex(0, 0x2000, 0, before);
        desk.store->addIndex(0, 0x1A00, {.objecttype = CANopen::RECORD});
        desk.store->addSubIndex(0, 0x1A00, 1,
                                {.datatype = CAN::UNSIGNED32, .defaultvalue = u"0x20000010"_s});

        const auto form = desk.open<SubIndexForm>(0x2000, 0);
        AttributeTable *attributes = table(*form);
        attributes->setCurrentCell(rowOf(attributes, u"Defaultvalue"_s), 1);
        form->convertHexDec();
        QCOMPARE(cell(attributes, u"Defaultvalue"_s)->text(), u"16"_s);
        choose(attributes, u"Data Type"_s, CAN::UNSIGNED8);
        cell(attributes, u"Limit Check"_s)->setCheckState(Qt::Checked);
        QVERIFY(form->findChild<MetaDataForm *>()->addEntry(u"eds_define"_s, u"E"_s));
        QCOMPARE(desk.entry(0x2000, 0), before); // not before it is left
        form->saveData();

        Record after = before;
        after.defaultvalue = u"16"_s;
        after.datatype = CAN::UNSIGNED8;
        after.lowlimit = u"0"_s;
        after.uplimit = u"255"_s;
        after.limitineds = after.changedbyuser = true;
        after.metadata.insert(u"eds_define"_s, u"E"_s);
        QCOMPARE(desk.entry(0x2000, 0), after);
        QCOMPARE(desk.entry(0x1A00, 1).defaultvalue, u"0x20000008"_s);

        const int row = rowOf(attributes, u"Defaultvalue"_s);
        QVERIFY(type(attributes, row, 1, u"0x20"_s) == nullptr);
        form->on_btnResetChanges_clicked();
        form->saveData();
        QCOMPARE(desk.entry(0x2000, 0), after);
        type(attributes, row, 1, u"0x20"_s);
        form->saveData();
        QCOMPARE(desk.entry(0x2000, 0).defaultvalue, u"0x20"_s);
        QVERIFY(desk.entry(0x2000, 0).defaultineds); // typed, so there is one

        choose(attributes, u"Data Type"_s, CAN::DOMAIN_TYPE);
        QVERIFY(table(*form, u"tblImplementation"_s)->isHidden());
        form->saveData();
        QCOMPARE(desk.entry(0x2000, 0).varname, u"v_81920"_s);
    }

    void whatAPaneWritesIsOneStep()
    {
        Desk desk;
        desk.store->addIndex(0, 0x2000, {.name = u"Motor"_s, .objecttype = CANopen::ARRAY});
        desk.store->addSubIndex(0, 0x2000, 0, {.defaultvalue = u"1"_s});
        desk.store->addSubIndex(0, 0x2000, 1, {.datatype = CAN::UNSIGNED8});
        UndoManager undo;
        undo.setDatabase(desk.store);
        const QString before = desk.store->contentHash();
        const auto form = desk.open<IndexForm>(0x2000);
        AttributeTable *attributes = table(*form, u"tblAttributes_2"_s);
        cell(attributes, u"Name"_s)->setText(u"Pump"_s);
        choose(attributes, u"Data Type"_s, CAN::UNSIGNED32);
        form->saveData();
        QCOMPARE(desk.entry(0x2000, 1).datatype, CAN::UNSIGNED32);
        QVERIFY(desk.store->contentHash() != before);
        undo.undo();
        QCOMPARE(desk.store->contentHash(), before);
        QVERIFY(!undo.canUndo());
    }

    void badInputIsToldAndNotTaken_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("text");
        QTest::addRow("no number") << u"Defaultvalue"_s << u"ten"_s;
        QTest::addRow("line break") << u"Name"_s << u"two\nlines"_s;
        QTest::addRow("endless") << u"Name"_s << QString(20000, u'x');
    }
    void badInputIsToldAndNotTaken()
    {
        QFETCH(QString, label);
        QFETCH(QString, text);
        Desk desk;
        desk.store->addIndex(0, 0x2000, {.name = u"Motor"_s});
        desk.store->addSubIndex(0, 0x2000, 0, {.name = u"Motor"_s, .datatype = CAN::UNSIGNED8});
        const QString before = desk.store->contentHash();
        const auto form = desk.open<SubIndexForm>(0x2000, 0);
        form->show();
        AttributeTable *attributes = table(*form);
        const QLineEdit *edit = type(attributes, rowOf(attributes, label), 1, text);
        QVERIFY(edit != nullptr); // still there to be mended
        QCOMPARE(edit->text(), text);
        QVERIFY(!desk.told.isEmpty());
        form->saveData();
        QCOMPARE(desk.store->contentHash(), before);
    }

    void rightsShowInTheRows()
    {
        Desk desk;
        for (const quint16 index : {0x1017, 0x1018}) {
            desk.store->addIndex(0, index, {.datatype = CAN::UNSIGNED16});
            desk.store->addSubIndex(0, index, 0, {.datatype = CAN::UNSIGNED16});
        }
        const auto heartbeat = desk.open<SubIndexForm>(0x1017, 0, false);
        const QTableWidgetItem *kind =
            cell(table(*heartbeat, u"tblImplementation"_s), u"Implementation Type"_s);
        QCOMPARE(kind->text(), u"Not editable - managed by stack"_s);
        QVERIFY(!(kind->flags() & Qt::ItemIsEnabled));
        QVERIFY(!(cell(table(*heartbeat), u"Name"_s)->flags() & Qt::ItemIsEnabled));
        QVERIFY(cell(table(*heartbeat), u"Defaultvalue"_s)->flags() & Qt::ItemIsEditable);
        const auto identity = desk.open<SubIndexForm>(0x1018, 0, true);
        AttributeTable *rows = table(*identity, u"tblImplementation"_s);
        QVERIFY(rows->combo(rowOf(rows, u"Implementation Type"_s))->isEnabled());
    }

    void objectsAndTheirTableAreEdited()
    {
        Desk desk;
        desk.store->addIndex(
            0, 0x2000,
            {.name = u"Motor"_s, .objecttype = CANopen::RECORD, .metadata = {{u"k"_s, u"v"_s}}});
        for (const quint8 sub : {0, 1, 2}) {
            desk.store->addSubIndex(0, 0x2000, sub,
                                    {.name = u"Sensor %1"_s.arg(sub),
                                     .datatype = CAN::UNSIGNED8,
                                     .defaultvalue = u"2"_s,
                                     .denotation = u"kept"_s});
        }
        const auto form = desk.open<IndexForm>(0x2000);
        AttributeTable *attributes = table(*form, u"tblAttributes_2"_s);
        cell(attributes, u"Name"_s)->setText(u"Pump"_s);
        form->findChild<QTabWidget *>(u"tabWidget"_s)->setCurrentIndex(2);
        auto *overview = form->findChild<OverviewTable *>();
        QCOMPARE(overview->rowCount(), 3);
        emit overview->cellDoubleClicked(2, 1);
        QCOMPARE(desk.gone, std::pair(quint16(0x2000), quint8(2)));
        form->findChild<QPushButton *>(u"btnExpertEditing"_s)->click();
        overview->item(0, 7)->setCheckState(Qt::Checked);
        overview->setCurrentCell(0, 7);
        form->copyValuesInOverview();
        QVERIFY(!overview->changedRecords().isEmpty());
        form->saveData();
        QCOMPARE(desk.store->getIndexName(0, 0x2000), u"Pump"_s);
        for (const quint8 sub : {0, 1, 2}) {
            QVERIFY(desk.entry(0x2000, sub).defaultineds && desk.entry(0x2000, sub).changedbyuser);
            QCOMPARE(desk.entry(0x2000, sub).denotation, u"kept"_s);
        }
        ObjectDataBase::INDEX_DATA_T data;
        desk.store->getIndexData(0, 0x2000, data);
        QCOMPARE(data.metadata.value(u"k"_s), u"v"_s);

        form->on_btnAddSubIndex_clicked();
        QCOMPARE(desk.entry(0x2000, 3).name, u"Sensor 3"_s);
        QCOMPARE(overview->rowCount(), 4);

        choose(attributes, u"Object Type"_s, quint32(CANopen::VAR)); // the default is No
        form->saveData();
        QCOMPARE(desk.store->getSubIndices(0, 0x2000).size(), 4);
        GuiHelper::queueAnswer(QMessageBox::Yes);
        choose(attributes, u"Object Type"_s, quint32(CANopen::VAR));
        form->saveData();
        QCOMPARE(desk.store->getSubIndices(0, 0x2000), QList<quint8>{0});
        QCOMPARE(desk.entry(0x2000, 0).name, u"Sensor 1"_s);
        QCOMPARE(GuiHelper::takeShownBoxes().size(), 2);
    }

    void largeObjectsOpenQuickly()
    {
        UserSettings::setGeneral(u"focusoverview"_s, true);
        Desk desk;
        desk.store->addIndex(0, 0x2000, {.objecttype = CANopen::RECORD});
        for (int sub = 0; sub < 255; ++sub)
            desk.store->addSubIndex(0, 0x2000, quint8(sub), {.datatype = CAN::UNSIGNED8});
        desk.open<IndexForm>(0x2000); // fonts and icons
        QElapsedTimer timer;
        timer.start();
        const auto form = desk.open<IndexForm>(0x2000);
        qInfo() << "object with its overview:" << timer.elapsed() << "ms";
        timer.start();
        desk.open<SubIndexForm>(0x2000, 1);
        qInfo() << "subindex:" << timer.elapsed() << "ms";
        QCOMPARE(form->findChild<OverviewTable *>()->rowCount(), 255);
    }

    void masksAreFoundByIndexAndProfile()
    {
        const std::array rows{ObjectClassFactory::Row{{0x1A00, 0x1BFF}, nullptr},
                              ObjectClassFactory::Row{{0x6000, 0x6000}, nullptr, quint16(454)}};
        QVERIFY(ObjectClassFactory::find(rows, 0x1BFF, 401) == rows.data());
        QVERIFY(ObjectClassFactory::find(rows, 0x6000, 401) == nullptr);
        QVERIFY(ObjectClassFactory::find(rows, 0x6000, 454) != nullptr);
    }
};

QTEST_MAIN(TestObjectPanes)
#include "tst_objectpanes.moc"
