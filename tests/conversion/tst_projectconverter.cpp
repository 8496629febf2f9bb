#include "store/databasemodifier.h"
#include "store/objectdatabase.h"
#include "store/projectconverter.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using Store = ObjectDataBase;
using Settings = QMap<QString, QString>;

/// Corrections of opened projects, and modifier scripts.
class TestProjectConverter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void settingCorrections_data();
    void settingCorrections();
    void stackPath_data();
    void stackPath();
    void oldRows();
    void energyBus_data();
    void energyBus();
    void signalCorrections();

    void scriptLines_data();
    void scriptLines();
    void refusedScripts_data();
    void refusedScripts();
    void scriptEndsBlock();

private:
    std::unique_ptr<Store> m_store;
    QTemporaryDir m_folder;
};

void TestProjectConverter::init()
{
    m_store = std::make_unique<Store>();
    QVERIFY(m_store->createNewDataBase());
    qApp->setProperty("AppNameWithVersion", QStringLiteral("Converter Test 1.0"));
    QSettings(QStringLiteral("tolvex"), QStringLiteral("Converter Test 1.0")).clear();
}

void TestProjectConverter::settingCorrections_data()
{
    QTest::addColumn<Settings>("before");
    QTest::addColumn<Settings>("after");
    const QString define =
        QStringLiteral("\n\n /* old group filter setting */\n#define CO_DRV_GROUP_FILTER 1u\n");
    const auto add = [](const char *name, const Settings &before, const Settings &after) {
        QTest::newRow(name) << before << after;
    };
    add("group filter", {{"drv_group_filter", "1"}, {"hw_defines", "#define A"}},
        {{"drv_group_filter", "0"}, {"hw_defines", "#define A" + define}});
    add("no group filter", {{"drv_group_filter", "0"}},
        {{"drv_group_filter", "0"}, {"hw_defines", ""}});
    add("UDS server 5", {{"udsserver_version", "5"}}, {{"udsserver_version", "6"}});
    add("UDS server 4", {{"udsserver_version", "4"}}, {{"udsserver_version", "4"}});
    add("master list", {{"co_ml_ms", "1,0"}, {"nmtmaster", "0"}},
        {{"co_ml_ms", ""}, {"nmtmaster", "1,0"}});
    add("one master", {{"co_ml_ms", "1"}, {"nmtmaster", "0"}},
        {{"co_ml_ms", "1"}, {"nmtmaster", "0"}});
    add("USDO server", {{"usdo_server_cnt", "2"}},
        {{"usdo_server_enabled", "1"}, {"usdo_client_enabled", ""}});
    add("USDO client", {{"usdo_client_cnt", "0x2"}, {"usdo_client_enabled", "0"}},
        {{"usdo_client_enabled", "1"}, {"usdo_server_enabled", ""}});
    add("USDO on", {{"usdo_client_cnt", "1"}, {"usdo_client_enabled", "2"}},
        {{"usdo_client_enabled", "2"}});
    add("USDO without count", {{"usdo_server_cnt", "0"}}, {{"usdo_server_enabled", ""}});
}

void TestProjectConverter::settingCorrections()
{
    QFETCH(Settings, before);
    QFETCH(Settings, after);
    for (auto it = before.cbegin(); it != before.cend(); ++it)
        m_store->setGeneralSetting(it.key(), it.value());
    // The second opening finds nothing to do.
    for (int opening = 0; opening < 2; ++opening) {
        ProjectConverter converter(m_store.get());
        converter.doGenericCorrection();
        converter.doStackPathCorrection();
        for (auto it = after.cbegin(); it != after.cend(); ++it)
            QCOMPARE(m_store->getGeneralSetting(it.key()), it.value());
    }
}

void TestProjectConverter::stackPath_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("expected");
    QTest::newRow("copied") << QString() << "/stack"
                            << "/stack";
    QTest::newRow("kept") << "/own"
                          << "/stack"
                          << "/own";
    QTest::newRow("none") << QString() << QString() << QString();
}

void TestProjectConverter::stackPath()
{
    QFETCH(QString, project);
    QFETCH(QString, user);
    QFETCH(QString, expected);
    {
        QSettings settings(QStringLiteral("tolvex"), QStringLiteral("Converter Test 1.0"));
        settings.beginGroup(QStringLiteral("General"));
        settings.setValue(QStringLiteral("costackpath"), user);
    }
    if (!project.isEmpty())
        m_store->setMiscSetting(QStringLiteral("costackpath"), project);
    ProjectConverter(m_store.get()).doStackPathCorrection();
    QCOMPARE(m_store->getMiscSetting(QStringLiteral("costackpath")), expected);
    QCOMPARE(m_store->miscSettingExists(QStringLiteral("costackpath")), !expected.isEmpty());
}

void TestProjectConverter::oldRows()
{
    QVERIFY(m_store->addNode(1, Store::NODE_DATA_T()));
    Store::SUBINDEX_DATA_T sub;
    sub.name = QStringLiteral("it's");
    sub.metadata = {{QStringLiteral("key"), QStringLiteral("value")}};
    QVERIFY(m_store->addSubIndex(1, 0x1032, 0, sub));
    QVERIFY(m_store->addSubIndex(1, 0x1032, 1, sub));
    QVERIFY(m_store->executeSql(QStringLiteral("update SubObjects1 set nvstorage = NULL")));
    ProjectConverter(m_store.get()).doStackPathCorrection();
    QVERIFY(m_store->executeSql(
        QStringLiteral("select subindex from SubObjects1 where nvstorage is null")));
    QCOMPARE(m_store->statementResults().size(), 1);
    QVERIFY(m_store->statementResults().constFirst().startsWith(u'1'));
    Store::SUBINDEX_DATA_T read;
    QVERIFY(m_store->getSubIndexData(1, 0x1032, 0, read));
    QCOMPARE(read.name, sub.name);
    QCOMPARE(read.metadata, sub.metadata);
    QVERIFY(!m_store->subIndexExists(0, 0x1032, 0));
}

void TestProjectConverter::energyBus_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("device") << "device_3"
                            << "ecurity"
                            << "security";
    QTest::newRow("kind") << "sec_0_kind"
                          << "ecurity"
                          << "security";
    QTest::newRow("right already") << "sec_1_kind"
                                   << "security"
                                   << "security";
    QTest::newRow("another key") << "note"
                                 << "ecurity"
                                 << "ecurity";
    QTest::newRow("another value") << "device_0"
                                   << "bat"
                                   << "bat";
}

void TestProjectConverter::energyBus()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QString, expected);
    m_store->setEnergyBusSetting(QStringLiteral("device_cnt"), QStringLiteral("4"));
    m_store->setEnergyBusSetting(key, value);
    ProjectConverter(m_store.get()).doEnergyBusCorrection();
    QCOMPARE(m_store->getEnergyBusSetting(key), expected);
    QCOMPARE(m_store->getEnergyBusSettingKeys().size(), 2);
}

/// Messages as versions with page bits of their own left them.
void TestProjectConverter::signalCorrections()
{
    for (const quint32 number : {60928U, 65226U}) {
        Store::PGN pgn;
        pgn.number = number;
        pgn.direction = Store::transmit;
        pgn.edpDpKey = number == 65226U ? 1 : 0;
        pgn.mappingCount = 9;
        QVERIFY(m_store->addPGN(0, number, pgn));
    }
    for (quint8 i = 0; i < 3; ++i) {
        Store::SPN spn;
        spn.pos = i;
        spn.dataType = 5;
        QVERIFY(m_store->addSPN(0, 65226, Store::transmit, 100 - i, spn));
    }
    const quint32 folded = (1U << 16) + 65226;
    QString hash;
    for (int opening = 0; opening < 2; ++opening) {
        ProjectConverter(m_store.get()).doCanCorrection();
        QCOMPARE(m_store->getPGNList(0), QList<quint32>{folded});
        Store::PGN pgn;
        QVERIFY(m_store->getPGN(0, folded, Store::transmit, pgn));
        QCOMPARE(pgn.mappingCount, 3);
        QCOMPARE(pgn.edpDpKey, 0);
        for (quint8 i = 0; i < 3; ++i) {
            Store::SPN spn;
            QVERIFY(m_store->getSPN(0, folded, Store::transmit, 100 - i, spn));
            QCOMPARE(spn.bitPosition, 0); // that of a version with positions is the user's
        }
        const QString former = std::exchange(hash, m_store->contentHash());
        QVERIFY(opening == 0 || former == hash);
    }
    Store::PGN claim;
    claim.direction = Store::transmit;
    QVERIFY(m_store->addPGN(0, 60928, claim));
    ProjectConverter(m_store.get()).doJ1939Correction();
    QVERIFY(m_store->pgnExists(0, 60928, Store::transmit));
}

void TestProjectConverter::scriptLines_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("expected"); // values of the settings "a" of both tables
    QTest::newRow("general") << QByteArray("GeneralSettings:a:5\n") << "5,-";
    QTest::newRow("J1939") << QByteArray("J1939Settings:a:x y \n") << "-,x y ";
    QTest::newRow("both, DOS line ends")
        << QByteArray("GeneralSettings:a:1\r\n\r\nJ1939Settings:a:2") << "1,2";
    QTest::newRow("comment") << QByteArray("#GeneralSettings:a:5\n") << "-,-";
    QTest::newRow("comment behind blank") << QByteArray(" #:a:5\n\n\n\n\n\n") << "-,-";
    QTest::newRow("four fields") << QByteArray("GeneralSettings:a:5:6\n") << "-,-";
    QTest::newRow("two fields") << QByteArray("GeneralSettings:a\n") << "-,-";
    QTest::newRow("another table") << QByteArray("MiscSettings:a:5\n") << "-,-";
    QTest::newRow("another case") << QByteArray("generalsettings:a:5\n") << "-,-";
    QTest::newRow("the last wins")
        << QByteArray("GeneralSettings:a:1\nGeneralSettings:a:2\n") << "2,-";
    QTest::newRow("empty value") << QByteArray("GeneralSettings:a:1\nGeneralSettings:a:\n") << ",-";
    QTest::newRow("quotes and umlauts")
        << QByteArray("GeneralSettings:a:it's \"ü\"\n") << QStringLiteral("it's \"ü\",-");
}

void TestProjectConverter::scriptLines()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, expected);
    const QString path = m_folder.filePath(QStringLiteral("script.txt"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(script);
    file.close();
    DatabaseModifier modifier(m_store.get());
    QVERIFY2(modifier.load(path), qPrintable(modifier.errorText()));
    QVERIFY2(modifier.applyModifierFile(), qPrintable(modifier.errorText()));
    const QString key = QStringLiteral("a");
    const QString none = QStringLiteral("-");
    QCOMPARE((m_store->generalSettingExists(key) ? m_store->getGeneralSetting(key) : none) + u',' +
                 (m_store->j1939SettingExists(key) ? m_store->getJ1939Setting(key) : none),
             expected);
    QVERIFY(!m_store->miscSettingExists(key));
}

void TestProjectConverter::refusedScripts_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << QStringLiteral("missing.txt");
    QTest::newRow("folder") << QString();
    QTest::newRow("10 bytes") << QStringLiteral("short.txt");
}

void TestProjectConverter::refusedScripts()
{
    QFETCH(QString, name);
    QFile file(m_folder.filePath(QStringLiteral("short.txt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#234567890");
    file.close();
    const QString path = m_folder.filePath(name);
    DatabaseModifier modifier(m_store.get());
    QVERIFY(!modifier.load(path));
    QVERIFY2(modifier.errorText().contains(path), qPrintable(modifier.errorText()));
    QVERIFY(!modifier.applyModifierFile());
}

void TestProjectConverter::scriptEndsBlock()
{
    const QString path = m_folder.filePath(QStringLiteral("block.txt"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("GeneralSettings:a:5\n");
    file.close();
    m_store->setBlockUpdates(true);
    DatabaseModifier modifier(m_store.get());
    QVERIFY(modifier.load(path));
    QVERIFY(modifier.applyModifierFile());
    QCOMPARE(m_store->getGeneralSetting(QStringLiteral("a")), QStringLiteral("5"));
    // Between load and use the script may vanish, and writes may be refused otherwise.
    m_store->setGenerating(true);
    QVERIFY(!modifier.applyModifierFile());
    QVERIFY(modifier.errorText().contains(QStringLiteral("line 1")));
    m_store->setGenerating(false);
    QVERIFY(file.remove());
    QVERIFY(!modifier.applyModifierFile());
    QVERIFY(modifier.errorText().contains(path));
}

QTEST_GUILESS_MAIN(TestProjectConverter)
#include "tst_projectconverter.moc"
