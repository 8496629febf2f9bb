#include "store/storeguards.h"
#include "store/undomanager.h"
#include "tests/support/storefile.h"

#include <QSignalSpy>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace StoreTest;
using Store = ObjectDataBase;

/// Modes that end by themselves, and changes that are made as one or not at all.
class TestStoreGuards : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }

    void init()
    {
        m_store = std::make_shared<Store>();
        QVERIFY(m_store->createNewDataBase());
        QVERIFY(m_store->addIndex(0, 0x2000, {.name = u"kept"_s}));
        QVERIFY(m_store->addPGN(0, 1, {.direction = Store::transmit}));
        m_store->setWriteSignals(true);
    }

    void bulkIsToldOnce_data()
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
            s.setGeneralSetting(u"a"_s, u"b"_s);
            inner.tellAs({.kind = Store::IndexAdded, .index = 0x2001});
            QVERIFY(inner.commit());
        }) << 1 << 0x2001 << 0;
    }
    void bulkIsToldOnce()
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

    void bulkWithoutCommitLeavesNothing()
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
        QCOMPARE(m_store->getIndexName(0, 0x2000), u"kept"_s);
        QCOMPARE(m_store->getPGNList(0), QList<quint32>{1});
        // The text that was new is one again.
        changeEverything();
        QCOMPARE(m_store->getSubIndexName(1, 0x3000, 0), u"new text"_s);
        QCOMPARE(m_store->getPGNList(0), QList<quint32>{2});
    }

    void innerFailureTakesTheOuterBack()
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

    void bulkIsRefused()
    {
        {
            const StoreGeneration generation(*m_store);
            StoreBulkChange bulk(*m_store);
            QVERIFY(!bulk.commit());
        }
        StoreBulkChange bulk(*m_store);
        QVERIFY(!m_store->createNewDataBase());
        QVERIFY(!m_store->saveDatabaseAsSql(u"half.vxmp"_s));
        QVERIFY(!m_store->takeSnapshot(u"half.db"_s));
        QVERIFY(!m_store->restoreSnapshot(m_store->workingFiles().constFirst()));
        QVERIFY(bulk.commit());
        QVERIFY(m_store->createNewDataBase());
    }

    void bulkIsOneStep()
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

    void failedCopyLeavesTheTarget()
    {
        QVERIFY(m_store->addSubIndex(0, 0x2000, 1, sub(u"s"_s)));
        QVERIFY(m_store->addSPN(0, 1, Store::transmit, 5, {}));
        TestStore target;
        QVERIFY(target.addIndex(0, 0x2000, {.name = u"former"_s}));
        QVERIFY(target.executeSql(
            u"create trigger t before insert on SPNs0 begin select raise(abort,'no'); end"_s));
        const QString before = target.contentHash();
        QVERIFY(!Store::copyLine(target, *m_store, 0, 0));
        QVERIFY(!Store::copyPGN(target, *m_store, 0, 0, 1, Store::transmit, Store::transmit));
        QCOMPARE(target.contentHash(), before);
        QCOMPARE(target.getIndexName(0, 0x2000), u"former"_s);
    }

    void blocksNest()
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
                m_store->setGeneralSetting(u"from"_s, u"other"_s);
                done = true;
            });
            QTest::qWait(100);
            QVERIFY(!done);
        }
        other.join();
        QVERIFY(done);
        QCOMPARE(states.size(), 2);
    }

    void modesComeBack()
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

private:
    void changeEverything()
    {
        QVERIFY(m_store->addNode(1, {}));
        QVERIFY(m_store->deleteIndex(0, 0x2000));
        QVERIFY(m_store->addSubIndices({{1, 0x3000, 0, sub(u"new text"_s)}}));
        QVERIFY(m_store->addPGNs(0, {{.number = 2, .direction = Store::receive}}, {}));
        m_store->deletePGN(0, 1, Store::transmit);
        QVERIFY(m_store->setGeneralSetting(u"key"_s, u"value"_s));
    }
    std::shared_ptr<Store> m_store;
};

QTEST_GUILESS_MAIN(TestStoreGuards)
#include "tst_store_guards.moc"
