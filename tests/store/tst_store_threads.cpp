#include "tests/support/storefile.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace StoreTest;
using Store = ObjectDataBase;

/// Also run under the thread sanitizer.
class TestStoreThreads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }

    void init() { m_store = std::make_unique<TestStore>(); }

    void twoThreadsOneStore()
    {
        constexpr int rounds = 150;
        std::atomic<int> wrong{0};
        const auto work = [&](int thread) {
            const auto line = quint8(thread);
            for (int i = 0; i < rounds; ++i) {
                const auto index = quint16(0x2000 + i);
                // Half of the texts are shared by both threads, so that both intern them.
                const QString name = u"text %1"_s.arg(i % 2 ? i : i + thread * 100000);
                m_store->addIndex(line, index, {.name = name});
                m_store->addSubIndex(line, index, 1, sub(name, QString::number(i)));
                m_store->setGeneralSetting(u"key%1"_s.arg(thread), name);
                // Rows that both threads want to make.
                const auto number = quint32(i);
                wrong += !m_store->setGeneralSetting(u"both%1"_s.arg(i), name);
                wrong += !m_store->addPGN(0, number, {.direction = 85});
                wrong += !m_store->addSPN(0, number, 85, 1, {});
                wrong += !m_store->setGeneralSettingForLine(u"list"_s, name, line);
                if (i % 50 == 0)
                    m_store->cacheAllSubs(line);
                wrong += m_store->getIndexName(line, index) != name;
                wrong += m_store->getSubIndexDefaultValue(line, index, 1) != QString::number(i);
                wrong += m_store->getIndices(line).size() != i + 1;
            }
        };
        QVERIFY(m_store->addNode(1, {}));
        std::thread one(work, 0);
        std::thread two(work, 1);
        one.join();
        two.join();
        QCOMPARE(wrong.load(), 0);
        m_store->executeSql(u"select string from Strings group by string having "
                            "count(*) > 1"_s);
        QVERIFY2(m_store->statementResults().isEmpty(), "a text was interned twice");
        QCOMPARE(m_store->getPGNList(0).size(), rounds);
        QCOMPARE(m_store->getSPNList(0, 0, 85).size(), 1);
        QVERIFY(!m_store->getGeneralSetting(u"list"_s).contains(",,"_L1));
    }

    void blockHoldsForeignThreads()
    {
        QSignalSpy states(m_store.get(), &Store::blockStateChanged);
        m_store->setThreadBlock(true);
        m_store->setThreadBlock(true);
        std::atomic<bool> done{false};
        std::thread other([&] {
            m_store->setGeneralSetting(u"from"_s, u"other"_s);
            done = true;
        });
        QTest::qWait(100);
        QVERIFY(!done);
        // The blocking thread's own statements go on.
        QVERIFY(m_store->setGeneralSetting(u"own"_s, u"1"_s));
        QCOMPARE(m_store->getGeneralSetting(u"from"_s), QString());
        m_store->setThreadBlock(false); // blocks do not nest
        other.join();
        QVERIFY(done);
        QCOMPARE(m_store->getGeneralSetting(u"from"_s), u"other"_s);
        QCOMPARE(states.size(), 3);
    }

    void snapshotGivesUpBehindAStatement()
    {
        // The other thread's statement stays in flight as long as its write is being reported.
        QSemaphore inFlight;
        QSemaphore goOn;
        m_store->setWriteSignals(true);
        connect(
            m_store.get(), &Store::databaseWriteExecuted, m_store.get(),
            [&] {
                inFlight.release();
                goOn.acquire();
            },
            Qt::DirectConnection);
        std::thread slow([&] { m_store->executeSql(u"update Nodes set name = 'x'"_s); });
        inFlight.acquire();
        QTemporaryDir dir;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!m_store->takeSnapshot(dir.filePath(u"s.db"_s)));
        QVERIFY(timer.elapsed() >= 5000);
        QCOMPARE(m_store->lastErrorText(),
                 u"snapshot aborted, queries of other threads did not finish in time"_s);
        goOn.release();
        slow.join();
        QVERIFY(m_store->takeSnapshot(dir.filePath(u"s.db"_s)));
    }

    void writeSignals()
    {
        QSignalSpy writes(m_store.get(), &Store::databaseWriteExecuted);
        m_store->setGeneralSetting(u"a"_s, u"1"_s);
        QCOMPARE(writes.size(), 0);
        m_store->setWriteSignals(true);
        (void)m_store->getGeneralSetting(u"a"_s);
        QCOMPARE(writes.size(), 0);
        m_store->setGeneralSetting(u"a"_s, u"2"_s);
        QCOMPARE(writes.size(), 1);
        m_store->executeSql(u"  UPDATE Nodes set name = 'x'"_s);
        QCOMPARE(writes.size(), 2);
        m_store->addIndex(0, 0x2000, {.metadata = {{u"k"_s, u"v"_s}}});
        QVERIFY(writes.size() > 3);
    }

private:
    std::unique_ptr<Store> m_store;
};

QTEST_GUILESS_MAIN(TestStoreThreads)
#include "tst_store_threads.moc"
