#include "compare/projectcomparison.h"
#include "compare/projectmerge.h"
#include "tests/support/rows.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Edit = void (*)(ObjectDataBase &);

void addObject(ObjectDataBase &store, quint16 index, const QString &name)
{
    store.addIndex(0, index, {.name = name, .objecttype = CANopen::RECORD});
    for (quint8 sub = 0; sub < 3; ++sub) {
        store.addSubIndex(0, index, sub,
                          {.name = u"%1 %2"_s.arg(name).arg(sub),
                           .datatype = CAN::UNSIGNED16,
                           .defaultvalue = QString::number(sub)});
    }
}

void addMessages(ObjectDataBase &store)
{
    for (const quint32 number : {0xFEEEU, 0xFEEFU}) {
        store.addPGN(0, number,
                     {.name = u"Engine"_s, .number = number, .direction = store.transmit});
        for (const quint32 spn : {110U, 111U}) {
            store.addSPN(0, number, store.transmit, spn,
                         {.name = u"Temp"_s, .pgn = number, .direction = 85, .spn = spn});
        }
    }
    store.addCANID(0, 0x181, {.id = 0x181, .name = u"Drive"_s, .direction = store.receive});
    store.addDataElement(0, 0x181, store.receive, 1, {.name = u"Speed"_s, .canId = 0x181});
}

/// Changes one member of a subindex.
template <auto member, auto value>
void change(ObjectDataBase &store)
{
    ObjectDataBase::SUBINDEX_DATA_T data;
    store.getSubIndexData(0, 0x2000, 1, data);
    data.*member = value;
    store.addSubIndex(0, 0x2000, 1, data);
}

using Sub = ObjectDataBase::SUBINDEX_DATA_T;

/// Everything that differs, a text each: rows of the trees with the state in words, their
/// differing properties, and the settings with both values.
QStringList differences(ProjectComparison &comparison)
{
    QStringList result;
    const auto add = [&](const QList<DiffItem> &items, const auto &self) -> void {
        for (const DiffItem &item : items) {
            if (item.state == DiffState::Equal)
                continue;
            result << item.text();
            if (item.state != DiffState::Different)
                continue;
            for (const PropertyRow &row : comparison.properties(item)) {
                if (row.differs)
                    result.last() += u": %1 %2/%3"_s.arg(row.property, row.current, row.other);
            }
            self(comparison.parts(item), self);
        }
    };
    for (const quint8 line : comparison.lines()) {
        add(comparison.objects(line), add);
        for (const quint8 direction : {ObjectDataBase::transmit, ObjectDataBase::receive}) {
            add(comparison.pgns(line, direction), add);
            add(comparison.canIds(line, direction), add);
        }
    }
    for (const SettingDifference &row : comparison.settings())
        result << u"%1 %2/%3"_s.arg(row.property(), row.current, row.other);
    return result;
}

/// Takes everything over, objects and messages by whole items or part by part.
bool takeAllOver(ProjectComparison &comparison, bool byParts)
{
    bool done = true;
    ObjectDataBase &current = comparison.current();
    const auto take = [&](const DiffItem &item) {
        done &= item.state == DiffState::Current
                    ? ProjectMerge::deleteItem(current, item)
                    : ProjectMerge::importItemDefault(current, comparison.other(), item);
    };
    const auto takeAll = [&](const QList<DiffItem> &items) {
        for (const DiffItem &item : items) {
            if (item.state == DiffState::Different && byParts) {
                for (const DiffItem &part : comparison.parts(item)) {
                    if (part.state != DiffState::Equal)
                        take(part);
                }
            } else if (item.state != DiffState::Equal) {
                take(item);
            }
        }
    };
    const QList<SettingDifference> settings = comparison.settings();
    for (const SettingDifference &setting : settings)
        done &= ProjectMerge::takeOverSetting(current, comparison.other(), setting);
    comparison.refresh();
    for (const quint8 line : comparison.lines()) {
        takeAll(comparison.objects(line));
        for (const quint8 direction : {ObjectDataBase::transmit, ObjectDataBase::receive}) {
            takeAll(comparison.pgns(line, direction));
            takeAll(comparison.canIds(line, direction));
        }
    }
    comparison.refresh();
    return done;
}

} // namespace

class TestProjectComparison : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(u"base.vxmp"_s);
    QString m_textPath = m_folder.filePath(u"base.vxmt"_s);

    static void fill(ObjectDataBase &store, bool withoutTextForm)
    {
        addObject(store, 0x2000, u"Speed"_s);
        addObject(store, 0x2001, u"Torque"_s);
        store.setGeneralSetting(u"bitwise_mapping"_s, u"0"_s);
        store.setGeneralSetting(u"line0type"_s, u"1"_s);
        store.setJ1939Setting(u"address"_s, u"5"_s);
        store.setMiscSetting(u"note"_s, u"it's"_s);
        if (withoutTextForm) {
            addMessages(store);
            store.setEnergyBusSetting(u"device_1"_s, u"bat"_s);
        }
    }

private slots:
    void initTestCase()
    {
        ObjectDataBase store;
        QVERIFY(store.createNewDataBase());
        fill(store, false);
        QVERIFY(store.saveDatabase(m_textPath));
        fill(store, true);
        QVERIFY(store.saveDatabase(m_path));
    }

    void findsEachKindOfDifference_data()
    {
        // What is found is a line each.
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("found");
        const auto row = [](const char *name, int count, const QString &found, Edit edit) {
            QTest::newRow(name) << edit << count << found;
        };
        const auto sub = [&](const char *name, const QString &property, Edit edit) {
            row(name, 1, "0x2000 - Speed - different\n1 - Speed 1 - different: " + property, edit);
        };
        using Store = ObjectDataBase;
        row("nothing", 0, "", [](Store &) {});
        row("object here", 1, "0x1fff - unnamed object - current",
            [](Store &s) { addObject(s, 0x1FFF, ""); });
        row("object there", 1, "0x2001 - Torque - other",
            [](Store &s) { s.deleteIndex(0, 0x2001); });
        row("object's record", 1, "0x2000 - RPM - different: Name RPM/Speed",
            [](Store &s) { s.setIndexName(0, 0x2000, "RPM"); });
        row("metadata of an object", 1, "0x2000 - Speed - different: MetaData: a /", [](Store &s) {
            s.addIndex(0, 0x2000,
                       {.name = "Speed", .objecttype = CANopen::RECORD, .metadata = {{"a", ""}}});
        });
        row("below the dictionary", 0, "", [](Store &s) { s.addIndex(0, 0x0FFF, {}); });
        row("subindex here", 1, "0x2000 - Speed - different\n9 - x - current",
            [](Store &s) { s.addSubIndex(0, 0x2000, 9, {.name = "x"}); });
        row("subindices there", 2,
            "0x2000 - Speed - different\n1 - Speed 1 - other\n2 - Speed 2 - other", [](Store &s) {
                s.deleteSubIndex(0, 0x2000, 1);
                s.deleteSubIndex(0, 0x2000, 2);
            });
        sub("default", "DefaultValue 7/1",
            [](Store &s) { s.setSubIndexDefaultValue(0, 0x2000, 1, "7"); });
        sub("type", "DataType UNSIGNED8/UNSIGNED16",
            change<&Sub::datatype, quint16(CAN::UNSIGNED8)>);
        sub("implementation", "Implementation Variable/Managed Variable",
            change<&Sub::implementation, quint8(2)>);
        sub("non-volatile", "NonVolatileStorage yes/no", change<&Sub::nvstorage, true>);
        sub("shared", "SharedInAllLines yes/no", change<&Sub::sharedlines, true>);
        row("marks of the tool", 0, "", [](Store &s) {
            change<&Sub::changedbyuser, true>(s);
            change<&Sub::wizardsource, quint16(454)>(s);
        });
        row("PGN there", 1, "0xfeee - 65262 Engine - other",
            [](Store &s) { s.deletePGN(0, 0xFEEE, 85); });
        row("PGN's record", 1, "0xfeee - 65262 Engine - different: CycleTime 5/0", [](Store &s) {
            s.addPGN(0, 0xFEEE,
                     {.name = "Engine",
                      .number = 0xFEEE,
                      .cycleTime = 5,
                      .mappingCount = 2,
                      .direction = 85});
        });
        row("SPN moved and SPN there", 2,
            "0xfeee - 65262 Engine - different\n110 - Temp - different: BitPosition 8/0\n"
            "111 - Temp - other",
            [](Store &s) {
                s.addSPN(0, 0xFEEE, 85, 110, {.name = "Temp", .bitPosition = 8});
                s.deleteSPN(0, 0xFEEE, 111, 85);
            });
        row("CAN-ID here, extended", 1, "0x00000200 - 512 E - current",
            [](Store &s) { s.addCANID(0, 0x20000200, {.name = "E", .direction = 119}); });
        row("data elements", 2,
            "0x181 - 385 Drive - different\n1 - Speed - different: VariableName v/\n"
            "2 - Load - current",
            [](Store &s) {
                s.addDataElement(0, 0x181, 119, 1, {.name = "Speed", .varName = "v"});
                s.addDataElement(0, 0x181, 119, 2, {.name = "Load"});
            });
        row("settings", 6,
            "area a/\nbitwise_mapping 1/0\nZone z/\nEnergyBus: device_1 /bat\naddress /5\nProject: "
            "note a | b/it's",
            [](Store &s) {
                s.setGeneralSetting("bitwise_mapping", "1");
                s.setGeneralSetting("Zone", "z");
                s.setGeneralSetting("area", "a");
                s.setGeneralSetting("empty", QString());
                s.setJ1939Setting("address", "");
                s.setMiscSetting("note", "a | b");
                s.deleteEnergyBusSetting("device_1");
            });
        row("description", 1, "Description: VendorName_3 Me/", [](Store &s) {
            s.setDescriptionLine(3);
            s.setDescriptionSetting("VendorName", "Me");
        });
        row("what saving writes", 0, "", [](Store &s) {
            for (const auto &key : {"FileHash", "TamperLog", "SaveToolVersion", "SaveToolType",
                                    "PreviousToolVersion"})
                s.setMiscSetting(key, "x");
        });
        row("node and UDS", 4,
            "Line 0: prefix drv_/_\nLine 0: lssslave 1/0\nUDS line 0: 0x11 sessions 1,3/1\nUDS "
            "line 0: 0x87 active 1/0",
            [](Store &s) {
                s.setNodeSqlValue("0", "prefix", "drv_");
                s.setNodeSqlValue("0", "lssslave", 1);
                s.setUDSServiceSessions(0, UDS::SID::EcuReset, "1,3");
                s.setUDSServiceActive(0, UDS::SID::LinkControl, true);
            });
        row("line here, with what belongs to it", 1, "0x2000 - Speed - current\nLine 1 exists/",
            [](Store &s) {
                s.setGeneralSetting("line1type", "1");
                s.addNode(1, {});
                s.copyIndex(0, 0x2000, 1, 0x2000);
            });
        row("scratch lines", 0, "", [](Store &s) { s.addNode(254, {}), s.addNode(255, {}); });
    }

    /// Both ways round; and taking it all over leaves nothing.
    void findsEachKindOfDifference()
    {
        QFETCH(Edit, edit);
        QFETCH(int, count);
        QFETCH(QString, found);
        ObjectDataBase edited;
        ObjectDataBase saved;
        QVERIFY(edited.openDataBase(m_path) && saved.openDataBase(m_path));
        edit(edited);
        const QStringList hashes{edited.contentHash(), saved.contentHash()};
        const quint8 descriptionLine = edited.descriptionLine();

        ProjectComparison comparison(edited, saved);
        QCOMPARE(comparison.differenceCount(), count);
        QCOMPARE(differences(comparison).join(u'\n'), found);
        ProjectComparison reversed(saved, edited);
        QCOMPARE(reversed.differenceCount(), count);
        QCOMPARE(differences(reversed).size(), differences(comparison).size());
        QCOMPARE((QStringList{edited.contentHash(), saved.contentHash()}), hashes);
        QCOMPARE(edited.descriptionLine(), descriptionLine);

        QVERIFY(takeAllOver(comparison, false));
        QCOMPARE(differences(comparison), QStringList());
        edit(edited);
        reversed.refresh();
        QVERIFY(takeAllOver(reversed, true));
        QVERIFY(takeAllOver(reversed, false)); // records go over with the whole item alone
        QCOMPARE(differences(reversed), QStringList());
    }

    void internalMarksCountOnDemand()
    {
        ObjectDataBase edited;
        ObjectDataBase saved;
        QVERIFY(edited.openDataBase(m_path) && saved.openDataBase(m_path));
        change<&Sub::changedbyuser, true>(edited);
        ProjectComparison comparison(edited, saved);
        QVERIFY(differences(comparison).isEmpty());
        comparison.setInternal(true);
        QCOMPARE(differences(comparison).value(1),
                 u"1 - Speed 1 - different: ChangedByUser yes/no"_s);
        QCOMPARE(comparison.differenceCount(), 1);
    }

    void anEditTakenBackIsNoDifference_data()
    {
        addRows<QString>({{"database", m_path}, {"text", m_textPath}});
    }

    /// Rows and texts are then in another order than in the file.
    void anEditTakenBackIsNoDifference()
    {
        const auto [path] = row<QString>();
        ObjectDataBase edited;
        ObjectDataBase saved;
        QVERIFY(edited.openDataBase(path) && saved.openDataBase(path));
        ProjectComparison comparison(edited, saved);
        QCOMPARE(comparison.differenceCount(), 0);
        edited.deleteIndex(0, 0x2000);
        QCOMPARE(comparison.differenceCount(), 1);
        addObject(edited, 0x2000, u"Speed"_s);
        edited.setGeneralSetting(u"bitwise_mapping"_s, u"1"_s);
        edited.setGeneralSetting(u"bitwise_mapping"_s, u"0"_s);
        comparison.refresh();
        QVERIFY(edited.contentHash() != saved.contentHash());
        QCOMPARE(comparison.differenceCount(), 0);
        QCOMPARE(edited.wasExternallyModified(), false);
    }

    void importLeavesIgnoredProperties()
    {
        ObjectDataBase current;
        ObjectDataBase other;
        QVERIFY(current.openDataBase(m_path) && other.openDataBase(m_path));
        const Sub changed{
            .name = u"N"_s, .datatype = CAN::UNSIGNED8, .defaultvalue = u"9"_s, .varname = u"v"_s};
        other.addSubIndex(0, 0x2000, 1, changed);
        other.addSubIndex(0, 0x2000, 9, changed);
        other.setIndexName(0, 0x2000, u"RPM"_s);
        ProjectComparison comparison(current, other);
        const DiffItem object = comparison.objects(0).value(0);
        const DiffItem part = comparison.parts(object).value(1);
        QCOMPARE(part.part, 1U);

        const auto here = [&](quint8 subindex) {
            Sub data;
            current.getSubIndexData(0, 0x2000, subindex, data);
            return QStringList{data.name, QString::number(data.datatype), data.defaultvalue,
                               data.varname};
        };
        QVERIFY(ProjectMerge::importItem(current, other, part, {.name = true, .varName = true}));
        QCOMPARE(here(1), (QStringList{u"Speed 1"_s, u"5"_s, u"9"_s, u""_s}));
        QVERIFY(
            ProjectMerge::importItem(current, other, object, {.name = true, .defaultValue = true}));
        QCOMPARE(here(1), (QStringList{u"Speed 1"_s, u"5"_s, u"9"_s, u"v"_s}));
        QCOMPARE(here(9), (QStringList{u"N"_s, u"5"_s, u"9"_s, u"v"_s}));
        QCOMPARE(current.getIndexName(0, 0x2000), u"Speed"_s);
        QVERIFY(ProjectMerge::importItemDefault(current, other, object));
        QCOMPARE(here(1).value(0), u"N"_s);
        QCOMPARE(current.getIndexName(0, 0x2000), u"RPM"_s);
        comparison.refresh();
        QCOMPARE(comparison.differenceCount(), 0);

        // Nothing is taken over where writes are refused.
        current.setBlockUpdates(true);
        QVERIFY(!ProjectMerge::importItemDefault(current, other, object));
        QVERIFY(!ProjectMerge::deleteItem(current, object));
        QVERIFY(!ProjectMerge::takeOverSetting(current, other, {.key = u"bitwise_mapping"_s}));
        current.setBlockUpdates(false);
        QVERIFY(current.indexExists(0, 0x2000));
    }
};

QTEST_GUILESS_MAIN(TestProjectComparison)
#include "tst_projectcomparison.moc"
