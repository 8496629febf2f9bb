#include "tests/store/storetest.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <atomic>
#include <thread>

using namespace StoreTest;
using Store = ObjectDataBase;

/// Also run under the thread sanitizer.
class TestStoreThreads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { setIdentity(); }
    void init();
    void twoThreadsOneStore();
    void blockHoldsForeignThreads();
    void snapshotGivesUpBehindAStatement();
    void writeSignals();

private:
    std::unique_ptr<Store> m_store;
};

void TestStoreThreads::init()
{
    m_store = std::make_unique<Store>();
    QVERIFY(m_store->createNewDataBase());
}

void TestStoreThreads::twoThreadsOneStore()
{
    constexpr int rounds = 150;
    std::atomic<int> wrong{0};
    const auto work = [&](int thread) {
        const auto line = quint8(thread);
        for (int i = 0; i < rounds; ++i) {
            const auto index = quint16(0x2000 + i);
            // Half of the texts are shared by both threads, so that both intern them.
            const QString name = QStringLiteral("text %1").arg(i % 2 ? i : i + thread * 100000);
            m_store->addIndex(line, index, {.name = name});
            m_store->addSubIndex(line, index, 1, sub(name, QString::number(i)));
            m_store->setGeneralSetting(QStringLiteral("key%1").arg(thread), name);
            // Rows that both threads want to make.
            const auto number = quint32(i);
            wrong += !m_store->setGeneralSetting(QStringLiteral("both%1").arg(i), name);
            wrong += !m_store->addPGN(0, number, {.direction = 85});
            wrong += !m_store->addSPN(0, number, 85, 1, {});
            wrong += !m_store->setGeneralSettingForLine(QStringLiteral("list"), name, line);
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
    m_store->executeSql(QStringLiteral("select string from Strings group by string having "
                                       "count(*) > 1"));
    QVERIFY2(m_store->statementResults().isEmpty(), "a text was interned twice");
    QCOMPARE(m_store->getPGNList(0).size(), rounds);
    QCOMPARE(m_store->getSPNList(0, 0, 85).size(), 1);
    QVERIFY(!m_store->getGeneralSetting(QStringLiteral("list")).contains(QLatin1String(",,")));
}

void TestStoreThreads::blockHoldsForeignThreads()
{
    QSignalSpy states(m_store.get(), &Store::blockStateChanged);
    m_store->setThreadBlock(true);
    m_store->setThreadBlock(true);
    std::atomic<bool> done{false};
    std::thread other([&] {
        m_store->setGeneralSetting(QStringLiteral("from"), QStringLiteral("other"));
        done = true;
    });
    QTest::qWait(100);
    QVERIFY(!done);
    // The blocking thread's own statements go on.
    QVERIFY(m_store->setGeneralSetting(QStringLiteral("own"), QStringLiteral("1")));
    QCOMPARE(m_store->getGeneralSetting(QStringLiteral("from")), QString());
    m_store->setThreadBlock(false); // blocks do not nest
    other.join();
    QVERIFY(done);
    QCOMPARE(m_store->getGeneralSetting(QStringLiteral("from")), QStringLiteral("other"));
    QCOMPARE(states.size(), 3);
}

void TestStoreThreads::snapshotGivesUpBehindAStatement()
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
    std::thread slow([&] { m_store->executeSql(QStringLiteral("update Nodes set name = 'x'")); });
    inFlight.acquire();
    QTemporaryDir dir;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!m_store->takeSnapshot(dir.filePath(QStringLiteral("s.db"))));
    QVERIFY(timer.elapsed() >= 5000);
    QCOMPARE(m_store->lastErrorText(),
             QStringLiteral("snapshot aborted, queries of other threads did not finish in time"));
    goOn.release();
    slow.join();
    QVERIFY(m_store->takeSnapshot(dir.filePath(QStringLiteral("s.db"))));
}

void TestStoreThreads::writeSignals()
{
    QSignalSpy writes(m_store.get(), &Store::databaseWriteExecuted);
    m_store->setGeneralSetting(QStringLiteral("a"), QStringLiteral("1"));
    QCOMPARE(writes.size(), 0);
    m_store->setWriteSignals(true);
    (void)m_store->getGeneralSetting(QStringLiteral("a"));
    QCOMPARE(writes.size(), 0);
    m_store->setGeneralSetting(QStringLiteral("a"), QStringLiteral("2"));
    QCOMPARE(writes.size(), 1);
    m_store->executeSql(QStringLiteral("  UPDATE Nodes set name = 'x'"));
    QCOMPARE(writes.size(), 2);
    m_store->addIndex(0, 0x2000, {.metadata = {{QStringLiteral("k"), QStringLiteral("v")}}});
    QVERIFY(writes.size() > 3);
}

QTEST_GUILESS_MAIN(TestStoreThreads)
#include "tst_store_threads.moc"
