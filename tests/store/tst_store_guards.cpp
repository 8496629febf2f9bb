#include "store/storeguards.h"
#include "store/undomanager.h"
#include "tests/store/storetest.h"

#include <QSignalSpy>

#include <atomic>
#include <thread>

using namespace StoreTest;
using Store = ObjectDataBase;

/// Modes that end by themselves, and changes that are made as one or not at all.
class TestStoreGuards : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }
    void init();
    void bulkIsToldOnce_data();
    void bulkIsToldOnce();
    void bulkWithoutCommitLeavesNothing();
    void innerFailureTakesTheOuterBack();
    void bulkIsRefused();
    void bulkIsOneStep();
    void failedCopyLeavesTheTarget();
    void blocksNest();
    void modesComeBack();

private:
    void changeEverything();
    std::shared_ptr<Store> m_store;
};

void TestStoreGuards::init()
{
    m_store = std::make_shared<Store>();
    QVERIFY(m_store->createNewDataBase());
    QVERIFY(m_store->addIndex(0, 0x2000, {.name = QStringLiteral("kept")}));
    QVERIFY(m_store->addPGN(0, 1, {.direction = Store::transmit}));
    m_store->setWriteSignals(true);
}

void TestStoreGuards::changeEverything()
{
    QVERIFY(m_store->addNode(1, {}));
    QVERIFY(m_store->deleteIndex(0, 0x2000));
    QVERIFY(m_store->addSubIndices({{1, 0x3000, 0, sub(QStringLiteral("new text"))}}));
    QVERIFY(m_store->addPGNs(0, {{.number = 2, .direction = Store::receive}}, {}));
    m_store->deletePGN(0, 1, Store::transmit);
    QVERIFY(m_store->setGeneralSetting(QStringLiteral("key"), QStringLiteral("value")));
}

void TestStoreGuards::bulkIsToldOnce_data()
{
    using Changes = std::function<void(Store &)>;
    QTest::addColumn<Changes>("changes");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("subindex");
    QTest::newRow("one") << Changes([](Store &s) { s.addSubIndex(0, 0x2000, 3, {}); }) << 2
                         << 0x2000 << 3;
    QTest::newRow("several of one object") << Changes([](Store &s) {
        s.addSubIndex(0, 0x2000, 3, {});
        s.addSubIndex(0, 0x2000, 4, {});
    }) << 2 << 0x2000 << 0;
    QTest::newRow("several objects") << Changes([](Store &s) {
        s.addSubIndex(0, 0x2000, 3, {});
        s.addSubIndex(0, 0x2001, 3, {});
    }) << 14 << 0 << 0;
    QTest::newRow("told otherwise") << Changes([](Store &s) {
        StoreBulkChange inner(s);
        s.addIndex(0, 0x2001, {});
        s.setGeneralSetting(QStringLiteral("a"), QStringLiteral("b"));
        inner.tellAs({.kind = Store::IndexAdded, .index = 0x2001});
        QVERIFY(inner.commit());
    }) << 1 << 0x2001 << 0;
}

void TestStoreGuards::bulkIsToldOnce()
{
    QFETCH(std::function<void(Store &)>, changes);
    QSignalSpy told(m_store.get(), &Store::updateNotify);
    QSignalSpy writes(m_store.get(), &Store::databaseWriteExecuted);
    {
        StoreBulkChange bulk(*m_store);
        changes(*m_store);
        QVERIFY(told.isEmpty() && writes.isEmpty());
        QVERIFY(bulk.commit());
    }
    QCOMPARE(writes.size(), 1);
    QCOMPARE(told.size(), 1);
    const auto change = told.first().at(0).value<Store::ChangeSet>();
    QTEST(int(change.kind), "kind");
    QTEST(int(change.index), "index");
    QTEST(int(change.subindex), "subindex");
}

void TestStoreGuards::bulkWithoutCommitLeavesNothing()
{
    const QString before = m_store->contentHash();
    m_store->cacheAllSubs(0);
    QSignalSpy told(m_store.get(), &Store::updateNotify);
    QSignalSpy writes(m_store.get(), &Store::databaseWriteExecuted);
    {
        const StoreBulkChange bulk(*m_store);
        changeEverything();
    }
    QCOMPARE(m_store->contentHash(), before);
    QVERIFY(told.isEmpty() && writes.isEmpty());
    QCOMPARE(m_store->getIndexName(0, 0x2000), QStringLiteral("kept"));
    QCOMPARE(m_store->getPGNList(0), QList<quint32>{1});
    // The text that was new is one again.
    changeEverything();
    QCOMPARE(m_store->getSubIndexName(1, 0x3000, 0), QStringLiteral("new text"));
    QCOMPARE(m_store->getPGNList(0), QList<quint32>{2});
}

void TestStoreGuards::innerFailureTakesTheOuterBack()
{
    const QString before = m_store->contentHash();
    StoreBulkChange bulk(*m_store);
    {
        const StoreBulkChange inner(*m_store);
        changeEverything();
    }
    QVERIFY(!bulk.commit());
    QCOMPARE(m_store->contentHash(), before);
}

void TestStoreGuards::bulkIsRefused()
{
    {
        const StoreGeneration generation(*m_store);
        StoreBulkChange bulk(*m_store);
        QVERIFY(!bulk.commit());
    }
    StoreBulkChange bulk(*m_store);
    QVERIFY(!m_store->createNewDataBase());
    QVERIFY(!m_store->saveDatabaseAsSql(QStringLiteral("half.vxmp")));
    QVERIFY(!m_store->takeSnapshot(QStringLiteral("half.db")));
    QVERIFY(!m_store->restoreSnapshot(m_store->workingFiles().constFirst()));
    QVERIFY(bulk.commit());
    QVERIFY(m_store->createNewDataBase());
}

void TestStoreGuards::bulkIsOneStep()
{
    UndoManager undo;
    undo.setDatabase(m_store);
    const QString before = m_store->contentHash();
    {
        StoreBulkChange bulk(*m_store);
        QVERIFY(m_store->addIndex(0, 0x2001, {}));
        QTest::qWait(800); // longer than a pause between two steps
        changeEverything();
        QVERIFY(bulk.commit());
    }
    QTRY_VERIFY(!undo.currentState().isEmpty());
    undo.undo();
    QCOMPARE(m_store->contentHash(), before);
    QVERIFY(!undo.canUndo());
}

void TestStoreGuards::failedCopyLeavesTheTarget()
{
    QVERIFY(m_store->addSubIndex(0, 0x2000, 1, sub(QStringLiteral("s"))));
    QVERIFY(m_store->addSPN(0, 1, Store::transmit, 5, {}));
    Store target;
    QVERIFY(target.createNewDataBase());
    QVERIFY(target.addIndex(0, 0x2000, {.name = QStringLiteral("former")}));
    QVERIFY(target.executeSql(QStringLiteral(
        "create trigger t before insert on SPNs0 begin select raise(abort,'no'); end")));
    const QString before = target.contentHash();
    QVERIFY(!Store::copyLine(target, *m_store, 0, 0));
    QVERIFY(!Store::copyPGN(target, *m_store, 0, 0, 1, Store::transmit, Store::transmit));
    QCOMPARE(target.contentHash(), before);
    QCOMPARE(target.getIndexName(0, 0x2000), QStringLiteral("former"));
}

void TestStoreGuards::blocksNest()
{
    QSignalSpy states(m_store.get(), &Store::blockStateChanged);
    std::atomic<bool> done{false};
    std::thread other;
    {
        const StoreBlock block(*m_store);
        {
            const StoreBlock inner(*m_store);
            StoreBulkChange bulk(*m_store);
            QVERIFY(bulk.commit());
        }
        other = std::thread([&] {
            m_store->setGeneralSetting(QStringLiteral("from"), QStringLiteral("other"));
            done = true;
        });
        QTest::qWait(100);
        QVERIFY(!done);
    }
    other.join();
    QVERIFY(done);
    QCOMPARE(states.size(), 2);
}

void TestStoreGuards::modesComeBack()
{
    QSignalSpy told(m_store.get(), &Store::updateNotify);
    {
        const StoreBlock block(*m_store, StoreBlock::Holds::Writes);
        QVERIFY(!m_store->addIndex(0, 0x2001, {}));
    }
    {
        const StoreSilence silence(*m_store);
        QVERIFY(m_store->addIndex(0, 0x2001, {}));
        StoreSilence inner(*m_store);
        inner.end();
        QVERIFY(m_store->signalsBlocked());
    }
    QCOMPARE(told.size(), 0);
    StoreSilence silence(*m_store);
    silence.endAndTell();
    QCOMPARE(told.size(), 1);
    QVERIFY(m_store->addIndex(0, 0x2001, {}));
    QCOMPARE(told.size(), 2);
}

QTEST_GUILESS_MAIN(TestStoreGuards)
#include "tst_store_guards.moc"
