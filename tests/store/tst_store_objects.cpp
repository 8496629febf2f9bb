#include "tests/support/records.h"
#include "tests/support/storefile.h"

#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace StoreTest;
using namespace TestRecords;
using Store = ObjectDataBase;

class TestStoreObjects : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }

    void init() { m_store = std::make_unique<TestStore>(); }

    void keepsEveryField()
    {
        const auto entry = filled<Store::SUBINDEX_DATA_T>();
        const auto object = filled<Store::INDEX_DATA_T>();
        QVERIFY(m_store->addSubIndex(0, 0x2000, 255, entry));
        QVERIFY(m_store->addIndex(0, 0xFFFF, object));
        for (int pass = 0; pass < 2; ++pass) {
            Store::SUBINDEX_DATA_T read;
            QVERIFY(m_store->getSubIndexData(0, 0x2000, 255, read));
            QCOMPARE(valuesOf(read), valuesOf(entry));
            QVERIFY(read == entry);
            Store::INDEX_DATA_T back;
            QVERIFY(m_store->getIndexData(0, 0xFFFF, back));
            QCOMPARE(valuesOf(back), valuesOf(object));
            QVERIFY(m_store->cacheAllSubs(0));
        }
    }

    void keepsAwkwardTexts()
    {
        const auto allSettings = [](Store &s, const QString &key) {
            return QStringList{s.getGeneralSetting(key), s.getDescriptionSetting(key),
                               s.getMiscSetting(key), s.getEnergyBusSetting(key),
                               s.getJ1939Setting(key)};
        };
        QTemporaryDir dir;
        const QString file = dir.filePath(u"a.vxmp"_s);
        for (int i = 0; i < awkwardTexts().size(); ++i) {
            const QString &text = awkwardTexts().at(i);
            const auto index = quint16(0x2000 + i);
            QVERIFY(m_store->addIndex(0, index, filled<Store::INDEX_DATA_T>(text)));
            // Whatever the data type, every text of a row survives.
            for (const quint16 type : {CAN::UNSIGNED8, CAN::VISIBLE_STRING}) {
                auto data = filled<Store::SUBINDEX_DATA_T>(text);
                data.datatype = type;
                QVERIFY(m_store->addSubIndex(0, index, quint8(type), data));
            }
            const QString key = u'k' + text;
            QVERIFY(m_store->setGeneralSetting(key, text) && m_store->setJ1939Setting(key, text));
            QVERIFY(m_store->setDescriptionSetting(key, text));
            QVERIFY(m_store->setMiscSetting(key, text) && m_store->setEnergyBusSetting(key, text));
            m_store->setUDSServiceUserLevels(0, UDS::SID(0x40 + i), text);
        }
        QVERIFY(
            m_store->addNode(1, {.name = awkwardTexts().at(2), .prefix = awkwardTexts().at(1)}));
        QVERIFY(m_store->saveDatabase(file));
        const auto other = std::make_unique<TestStore>(file);
        QVERIFY(!other->wasExternallyModified());
        Store::NODE_DATA_T node;
        QVERIFY(other->getNodeData(1, node));
        QCOMPARE(node.name, awkwardTexts().at(2));
        for (int i = 0; i < awkwardTexts().size(); ++i) {
            const QString &text = awkwardTexts().at(i);
            const auto index = quint16(0x2000 + i);
            Store::INDEX_DATA_T object;
            QVERIFY(other->getIndexData(0, index, object));
            QVERIFY(object == filled<Store::INDEX_DATA_T>(text));
            QVERIFY(other->findIndices(0, u"name"_s, text).contains(index));
            for (const quint16 type : {CAN::UNSIGNED8, CAN::VISIBLE_STRING}) {
                Store::SUBINDEX_DATA_T data;
                QVERIFY(other->getSubIndexData(0, index, quint8(type), data));
                QCOMPARE(std::exchange(data.datatype, filled<Store::SUBINDEX_DATA_T>().datatype),
                         type);
                QVERIFY(data == filled<Store::SUBINDEX_DATA_T>(text));
            }
            QCOMPARE(allSettings(*other, u'k' + text), QStringList(5, text));
            QCOMPARE(other->getUDSServiceUserLevels(0, UDS::SID(0x40 + i)), text);
        }
    }

    void brokenTextsHarmNothing()
    {
        const QString half = u"a"_s + QChar(0xD800) + u"'b"_s;
        const QString nul = u"a"_s + QChar(0) + u"'b"_s;
        for (const QString &text : {half, nul}) {
            QVERIFY(m_store->addSubIndex(0, 0x2000, 0, sub(text, text)));
            QVERIFY(m_store->setGeneralSetting(u"k"_s, text));
            QCOMPARE(m_store->getSubIndexDefaultValue(0, 0x2000, 0).right(2), u"'b"_s);
            QCOMPARE(m_store->getGeneralSetting(u"k"_s).right(2), u"'b"_s);
        }
    }

    void metadataFollowsItsRules()
    {
        const Store::MetaData map = {{u"a"_s, u"1"_s}};
        QVERIFY(m_store->addIndex(0, 0x2000, {.name = u"x"_s, .metadata = map}));
        QVERIFY(m_store->addIndex(0, 0x2000, {.name = u"y"_s}));
        Store::INDEX_DATA_T object;
        QVERIFY(m_store->getIndexData(0, 0x2000, object));
        QCOMPARE(object.name, u"y"_s);
        QCOMPARE(object.metadata, map);

        Store::SUBINDEX_DATA_T data = sub(u"x"_s);
        data.metadata = map;
        QVERIFY(m_store->addSubIndex(0, 0x2000, 1, data));
        const auto all = m_store->getAllMetaData(0);
        QCOMPARE(all.size(), 2);
        QCOMPARE(all.value({0x2000, -1}), map);
        QCOMPARE(all.value({0x2000, 1}), map);
        QVERIFY(m_store->addSubIndex(0, 0x2000, 1, sub(u"x"_s)));
        QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
        QVERIFY(data.metadata.isEmpty());
        for (const char *blob : {"0", "NULL", "x'00000000'", "x'0000000500'", "x'ffffffffffff'"}) {
            QVERIFY(
                m_store->executeSql(u"update SubObjects0 set metadata = "_s + QLatin1String(blob)));
            data.metadata = map;
            QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
            QVERIFY2(data.metadata.isEmpty(), blob);
        }
    }

    void batchIsSilent()
    {
        QVERIFY(m_store->addSubIndices({}));
        m_store->cacheAllSubs(0);
        QSignalSpy changes(m_store.get(), &Store::updateNotify);
        QList<Store::SubEntry> entries;
        for (int i = 0; i < 200; ++i)
            entries.append({0, 0x3000, quint8(i), sub(u"it's %1"_s.arg(i))});
        QVERIFY(m_store->addSubIndices(entries));
        QCOMPARE(changes.size(), 0);
        QCOMPARE(m_store->getSubIndices(0, 0x3000).size(), 200);
        QCOMPARE(m_store->getSubIndexName(0, 0x3000, 199), u"it's 199"_s);
        // A row that can't be written is told, and the others are.
        QVERIFY(m_store->executeSql(
            u"create trigger t before insert on SubObjects0 when new.objectindex = 0x3001 and "
            "new.subindex = 3 begin select raise(abort,'no'); end"_s));
        for (Store::SubEntry &entry : entries)
            entry.index = 0x3001;
        QVERIFY(!m_store->addSubIndices(entries));
        QCOMPARE(m_store->getSubIndices(0, 0x3001).size(), 199);
        QVERIFY(!m_store->executeSql(u"alter table Nodes add lssslave integer, x"_s));
        QVERIFY2(m_store->statementResults().first().contains("syntax error"_L1),
                 qPrintable(m_store->statementResults().first()));
        // No text has the id 0, even where a foreign row gives it one.
        QVERIFY(m_store->executeSql(u"insert into Strings values(0,'foreign')"_s));
        m_store->setObjectIndexSqlValue(u"Objects0"_s, u"9999"_s, u"category"_s, 1);
        QCOMPARE(m_store->getIndexName(0, 9999), QString());
        m_store->setIndexName(0, 9999, u"foreign"_s);
        QCOMPARE(m_store->getIndexName(0, 9999), u"foreign"_s);
    }

    void batchOfObjects()
    {
        batchOfObjects(false);
        init();
        batchOfObjects(true); // a table of another program, without the key
    }
    void batchOfObjects(bool withoutKey)
    {
        const Store::MetaData former = {{u"k"_s, u"v"_s}};
        const Store::MetaData later = {{u"l"_s, u"w"_s}};
        QVERIFY(m_store->addIndex(0, 0x2000, {.name = u"old"_s, .metadata = former}));
        if (withoutKey) {
            QVERIFY(m_store->executeSql(u"create table t as select * from Objects0"_s));
            QVERIFY(m_store->executeSql(u"drop table Objects0"_s));
            QVERIFY(m_store->executeSql(u"alter table t rename to Objects0"_s));
        }
        m_store->cacheAllSubs(0);
        QList<Store::IndexEntry> entries;
        for (int i = 0; i < 250; ++i)
            entries.append({0, quint16(0x2000 + i), {.name = u"it's %1"_s.arg(i)}});
        entries[7].data.metadata = later;
        entries.append({0, 0x2001, {.name = u"twice"_s, .category = 1}});
        QSignalSpy changes(m_store.get(), &Store::updateNotify);
        QVERIFY(m_store->addIndices(entries));
        QCOMPARE(changes.size(), entries.size());
        QCOMPARE(changes.last().first().value<Store::ChangeSet>().index, quint16(0x2001));
        QCOMPARE(m_store->getIndices(0).size(), 250);
        QCOMPARE(m_store->getIndexName(0, 0x20F9), u"it's 249"_s);
        QCOMPARE(m_store->getIndexName(0, 0x2001), u"twice"_s);
        Store::INDEX_DATA_T data;
        QVERIFY(m_store->getIndexData(0, 0x2000, data));
        QCOMPARE(data.name, u"it's 0"_s);
        QCOMPARE(data.metadata, former);
        QVERIFY(m_store->getIndexData(0, 0x2007, data));
        QCOMPARE(data.metadata, later);
    }

    void findsAndLists()
    {
        for (const int index : {0x6000, 0x1000, 0x2000, 0x1A00})
            QVERIFY(m_store->addIndex(0, quint16(index), {.name = u"same"_s}));
        QCOMPARE(m_store->getIndices(0), (QList<quint16>{0x1000, 0x1A00, 0x2000, 0x6000}));
        QCOMPARE(m_store->getIndices(0, 0x1001, 0x2000), (QList<quint16>{0x1A00, 0x2000}));
        for (const int subindex : {3, 0, 200})
            QVERIFY(m_store->addSubIndex(0, 0x2000, quint8(subindex), sub(u"s"_s)));
        QCOMPARE(m_store->getSubIndices(0, 0x2000), (QList<quint8>{0, 3, 200}));
        Store::SUBINDEX_DATA_T mappable = sub(u"m"_s, u"0x10"_s);
        mappable.pdomapping = PDOMapping::Allowed;
        QVERIFY(m_store->addSubIndex(0, 0x6000, 1, mappable));
        QCOMPARE(m_store->getMappableSubIndices(0), (QList<Store::SubIndexKey>{{0x6000, 1}}));
        QCOMPARE(m_store->findSubIndices(0, u"defaultvalue"_s, u"0x10"_s),
                 (QList<Store::SubIndexKey>{{0x6000, 1}}));
        QCOMPARE(m_store->findSubIndices(0, u"name"_s, u"s"_s).size(), 3);
        QCOMPARE(m_store->findIndices(0, u"name"_s, u"none"_s).size(), 0);
        QVERIFY(!m_store->indexExists(0, 0x1234));
        QVERIFY(m_store->subIndexExists(0, 0x2000, 200));
    }

    void cachesAnswerLikeTheDatabase()
    {
        QVERIFY(m_store->addIndex(0, 0x2000, {.name = u"o"_s}));
        QVERIFY(m_store->addSubIndex(0, 0x2000, 1, sub(u"one"_s, u"1"_s)));
        QVERIFY(m_store->cacheAllSubs(0));
        // Changes behind the store's back stay unseen: these reads come from the cache.
        QVERIFY(m_store->executeSql(u"update SubObjects0 set defaultvalue='99'"_s));
        QCOMPARE(m_store->getSubIndexDefaultValue(0, 0x2000, 1), u"1"_s);
        // Changes through the store are seen, whichever operation makes them.
        QVERIFY(m_store->setSubIndexDefaultValue(0, 0x2000, 1, u"2"_s));
        QCOMPARE(m_store->getSubIndexDefaultValue(0, 0x2000, 1), u"2"_s);
        m_store->setSubIndexName(0, 0x2000, 1, u"renamed"_s);
        QCOMPARE(m_store->getSubIndexName(0, 0x2000, 1), u"renamed"_s);
        QVERIFY(m_store->addSubIndex(0, 0x2000, 5, sub(u"five"_s)));
        QCOMPARE(m_store->getSubIndices(0, 0x2000), (QList<quint8>{1, 5}));
        m_store->cacheAllSubs(0);
        QVERIFY(m_store->deleteSubIndex(0, 0x2000, 1));
        QVERIFY(!m_store->subIndexExists(0, 0x2000, 1));
        m_store->cacheAllSubs(0);
        m_store->setIndexName(0, 0x2000, u"p"_s);
        QCOMPARE(m_store->getIndexName(0, 0x2000), u"p"_s);
        m_store->cacheAllSubs(0);
        QVERIFY(m_store->deleteIndex(0, 0x2000));
        QVERIFY(m_store->getIndices(0).isEmpty());
        QVERIFY(!m_store->subIndexExists(0, 0x2000, 5));
        // The cache of one index leaves the others alone.
        QVERIFY(m_store->addSubIndex(0, 0x2000, 1, sub(u"a"_s)));
        QVERIFY(m_store->cacheAllSubs(0, 0x2000));
        QVERIFY(m_store->addSubIndex(0, 0x2001, 1, sub(u"b"_s)));
        QVERIFY(m_store->subIndexExists(0, 0x2001, 1));
    }

    void singleColumnWrites()
    {
        const auto set = [this](int subindex, const char *column, const QVariant &value,
                                const char *table = "SubObjects0") {
            m_store->setSubindexSqlValue(QLatin1String(table), u"8192"_s, QString::number(subindex),
                                         QLatin1String(column), value);
        };
        Store::SUBINDEX_DATA_T data;
        set(1, "name", u"it's"_s);
        for (const char *text : {"  1   2 ", "  ", ""}) { // blank texts change nothing
            set(1, "uplimit", QString::fromLatin1(text));
            QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
            QCOMPARE(data.name + data.uplimit, u"it's1 2"_s);
        }
        m_store->setObjectIndexSqlValue(u"Objects0"_s, u"8192"_s, u"description"_s, u"d"_s);
        Store::INDEX_DATA_T object;
        QVERIFY(m_store->getIndexData(0, 0x2000, object));
        QCOMPARE(object.description, u"d"_s);
        // A row that a setter makes is found behind a cached walk.
        QVERIFY(m_store->cacheAllSubs(0));
        set(2, "uplimit", 7);
        QVERIFY(m_store->subIndexExists(0, 0x2000, 2));
        // The line of metadata is the last digit of the table's name.
        QVERIFY(m_store->addNode(10, {}));
        QVERIFY(m_store->addSubIndex(10, 0x2000, 1, sub(u"ten"_s)));
        const QByteArray blob = QByteArray::fromHex("00000001000000020061000000020062"); // a: b
        set(1, "metadata", blob, "SubObjects10");
        QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
        QCOMPARE(data.metadata.value(u"a"_s), u"b"_s);
        QVERIFY(m_store->getSubIndexData(10, 0x2000, 1, data));
        QVERIFY(data.metadata.isEmpty());
    }

    void deletesConnections()
    {
        struct
        {
            bool keep;
            int left;
            int leftOfObject;
        } const rows[] = {{true, 3, 3}, {false, 1, 0}};
        for (const auto &[keep, left, leftOfObject] : rows) {
            for (const bool whole : {false, true}) {
                m_store->executeSql(u"delete from Connections"_s);
                for (const char *values :
                     {"0,8192,1,1,1,1,0", "1,1,1,0,8192,1,0", "0,8192,2,0,8192,3,0"})
                    m_store->executeSql(
                        u"insert into Connections values(%1)"_s.arg(QLatin1String(values)));
                QVERIFY(whole ? m_store->deleteIndex(0, 0x2000, keep)
                              : m_store->deleteSubIndex(0, 0x2000, 1, keep));
                QCOMPARE(firstValue(*m_store, u"select count(*) from Connections"_s),
                         QString::number(whole ? leftOfObject : left));
            }
        }
    }

    void copiesAndMoves()
    {
        TestStore library;
        QVERIFY(library.addIndex(0, 0x1018, {.name = u"identity"_s, .objecttype = 9}));
        QVERIFY(library.addSubIndex(0, 0x1018, 1, filled<Store::SUBINDEX_DATA_T>()));
        QVERIFY(m_store->addSubIndex(0, 0x2000, 9, sub(u"old"_s)));
        QVERIFY(m_store->addIndex(0, 0x2000, {.name = u"old"_s}));
        QSignalSpy changes(m_store.get(), &Store::updateNotify);
        QVERIFY(m_store->copyIndex(0, 0x1018, 0, 0x2000, &library));
        int subNotes = 0;
        for (const auto &call : changes)
            subNotes += call.at(0).value<Store::ChangeSet>().kind == Store::SubIndexAdded;
        QCOMPARE(subNotes, 1);
        QCOMPARE(m_store->getSubIndices(0, 0x2000), QList<quint8>{1});
        Store::SUBINDEX_DATA_T data;
        QVERIFY(m_store->getSubIndexData(0, 0x2000, 1, data));
        QCOMPARE(valuesOf(data), valuesOf(filled<Store::SUBINDEX_DATA_T>()));
        QVERIFY(m_store->moveIndex(0, 0x2000, 0, 0x2000));
        QVERIFY(m_store->moveIndex(0, 0x2000, 0, 0x3000));
        QVERIFY(!m_store->indexExists(0, 0x2000));
        QCOMPARE(m_store->getIndexName(0, 0x3000), u"identity"_s);
        QVERIFY(!m_store->moveIndex(0, 0x4000, 0, 0x3000));
        QVERIFY(m_store->indexExists(0, 0x3000));
    }

    void refusesWhileBlocked()
    {
        QVERIFY(m_store->addIndex(0, 0x2000, {.name = u"o"_s}));
        QVERIFY(m_store->addSubIndex(0, 0x2000, 0, sub(u"s"_s, u"1"_s)));
        const QString before = m_store->contentHash();
        Store &s = *m_store;
        for (const auto setMode : {&Store::setBlockUpdates, &Store::setGenerating}) {
            (s.*setMode)(true);
            const QList<bool> done{s.addIndex(0, 0x2001, {}),
                                   s.addSubIndex(0, 0x2000, 1, {}),
                                   s.addIndices({{0, 0x2001, {}}}),
                                   s.addSubIndices({{0, 0x2000, 1, {}}}),
                                   s.deleteIndex(0, 0x2000) || s.deleteSubIndex(0, 0x2000, 0),
                                   s.setSubIndexDefaultValue(0, 0x2000, 0, u"2"_s),
                                   s.copyIndex(0, 0x2000, 0, 0x2001),
                                   s.moveIndex(0, 0x2000, 0, 0x2001),
                                   s.addNode(1, {}) || s.deleteNode(0),
                                   s.setGeneralSetting(u"a"_s, u"b"_s),
                                   s.setMiscSetting(u"a"_s, u"b"_s),
                                   s.setDescriptionSetting(u"a"_s, u"b"_s),
                                   s.setEnergyBusSetting(u"a"_s, u"b"_s),
                                   s.setJ1939Setting(u"a"_s, u"b"_s),
                                   s.deleteEnergyBusSetting(u"a"_s),
                                   s.addPGN(0, 1, {}) || s.addSPN(0, 1, 85, 1, {}),
                                   s.addCANID(0, 1, {}) || s.addDataElement(0, 1, 85, 1, {}),
                                   s.copySettings(s) || Store::copyLine(s, s, 0, 0),
                                   s.createNewDataBase(),
                                   s.openDataBase(s.workingFiles().first())};
            QCOMPARE(done, QList<bool>(done.size(), false));
            QVERIFY(!s.lastErrorText().isEmpty());
            s.setIndexName(0, 0x2000, u"z"_s);
            s.setNodeSqlValue(u"0"_s, u"name"_s, u"z"_s);
            s.setUDSServiceActive(0, UDS::SID::EcuReset, false);
            (s.*setMode)(false);
            QCOMPARE(s.contentHash(), before);
        }
        QVERIFY(s.addIndex(0, 0x2001, {}));
    }

    void notifications()
    {
        QList<Store::ChangeSet> seen;
        connect(m_store.get(), &Store::updateNotify, this,
                [&](const Store::ChangeSet &change) { seen.append(change); });
        m_store->addIndex(0, 0x2000, {});
        m_store->addSubIndex(0, 0x2000, 3, {});
        m_store->setIndexName(0, 0x2000, u"n"_s);
        m_store->setSubIndexName(0, 0x2000, 3, u"n"_s);
        m_store->setSubIndexDefaultValue(0, 0x2000, 3, u"1"_s);
        m_store->setObjectIndexSqlValue(u"Objects0"_s, u"8192"_s, u"category"_s, 1);
        m_store->setSubindexSqlValue(u"SubObjects0"_s, u"8192"_s, u"3"_s, u"uplimit"_s, 1);
        m_store->setNodeSqlValue(u"0"_s, u"name"_s, u"n"_s);
        m_store->deleteSubIndex(0, 0x2000, 3);
        m_store->deleteIndex(0, 0x2000);
        m_store->addPGN(0, 65280, {.number = 65280, .direction = 119});
        m_store->addSPN(0, 65280, 119, 7, {});
        m_store->deleteSPN(0, 65280, 7, 119);
        m_store->deletePGN(0, 65280, 119);
        m_store->addCANID(0, 0x123, {.id = 0x123, .direction = 85});
        m_store->addDataElement(0, 0x123, 85, 2, {});
        m_store->deleteDataElement(0, 0x123, 2, 85);
        m_store->deleteCANID(0, 0x123, 85);
        QList<int> kinds;
        for (const Store::ChangeSet &change : seen)
            kinds.append(int(change.kind));
        QCOMPARE(kinds, (QList<int>{1, 2, 1, 2, 2, 1, 2, 6, 4, 3, 15, 19, 20, 16, 17, 21, 20, 18}));
        QCOMPARE(seen.at(1).index, quint16(0x2000));
        QCOMPARE(seen.at(1).subindex, quint8(3));
        QCOMPARE(seen.at(6).subindex, quint8(3));
        QCOMPARE(seen.at(12).spn, 7u);
        QCOMPARE(seen.at(16).element, 2u);
        QCOMPARE(seen.at(16).direction, quint8(85));
    }

private:
    std::unique_ptr<Store> m_store;
};

QTEST_GUILESS_MAIN(TestStoreObjects)
#include "tst_store_objects.moc"
