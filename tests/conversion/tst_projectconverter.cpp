#include "store/databasemodifier.h"
#include "store/projectconverter.h"
#include "tests/support/storefile.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;
using Store = ObjectDataBase;
using Settings = QMap<QString, QString>;

/// Corrections of opened projects, and modifier scripts.
class TestProjectConverter : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store = std::make_unique<Store>();
        QVERIFY(m_store->createNewDataBase());
        qApp->setProperty("AppNameWithVersion", u"Converter Test 1.0"_s);
        QSettings(u"tolvex"_s, u"Converter Test 1.0"_s).clear();
    }

    void settingCorrections()
    {
        const QString define =
            u"\n\n /* old group filter setting */\n#define CO_DRV_GROUP_FILTER 1u\n"_s;
        const std::tuple<Settings, Settings> rows[] = {
            {{{"drv_group_filter", "1"}, {"hw_defines", "#define A"}},
             {{"drv_group_filter", "0"}, {"hw_defines", "#define A" + define}}},
            {{{"drv_group_filter", "0"}}, {{"drv_group_filter", "0"}, {"hw_defines", ""}}},
            {{{"udsserver_version", "5"}}, {{"udsserver_version", "6"}}},
            {{{"udsserver_version", "4"}}, {{"udsserver_version", "4"}}},
            {{{"co_ml_ms", "1,0"}, {"nmtmaster", "0"}}, {{"co_ml_ms", ""}, {"nmtmaster", "1,0"}}},
            {{{"co_ml_ms", "1"}, {"nmtmaster", "0"}}, {{"co_ml_ms", "1"}, {"nmtmaster", "0"}}},
            {{{"usdo_server_cnt", "2"}},
             {{"usdo_server_enabled", "1"}, {"usdo_client_enabled", ""}}},
            {{{"usdo_client_cnt", "0x2"}, {"usdo_client_enabled", "0"}},
             {{"usdo_client_enabled", "1"}, {"usdo_server_enabled", ""}}},
            {{{"usdo_client_cnt", "1"}, {"usdo_client_enabled", "2"}},
             {{"usdo_client_enabled", "2"}}},
            {{{"usdo_server_cnt", "0"}}, {{"usdo_server_enabled", ""}}}};
        for (const auto &[before, after] : rows) {
            init();
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
    }

    void stackPath()
    {
        const std::tuple<QString, QString, QString> rows[] = {{QString(), "/stack", "/stack"},
                                                              {"/own", "/stack", "/own"},
                                                              {QString(), QString(), QString()}};
        for (const auto &[project, user, expected] : rows) {
            init();
            {
                QSettings settings(u"tolvex"_s, u"Converter Test 1.0"_s);
                settings.beginGroup(u"General"_s);
                settings.setValue(u"costackpath"_s, user);
            }
            if (!project.isEmpty())
                m_store->setMiscSetting(u"costackpath"_s, project);
            ProjectConverter(m_store.get()).doStackPathCorrection();
            QCOMPARE(m_store->getMiscSetting(u"costackpath"_s), expected);
            QCOMPARE(m_store->miscSettingExists(u"costackpath"_s), !expected.isEmpty());
        }
    }

    void oldRows()
    {
        QVERIFY(m_store->addNode(1, Store::NODE_DATA_T()));
        Store::SUBINDEX_DATA_T sub;
        sub.name = u"it's"_s;
        sub.metadata = {{u"key"_s, u"value"_s}};
        QVERIFY(m_store->addSubIndex(1, 0x1032, 0, sub));
        QVERIFY(m_store->addSubIndex(1, 0x1032, 1, sub));
        QVERIFY(m_store->executeSql(u"update SubObjects1 set nvstorage = NULL"_s));
        ProjectConverter(m_store.get()).doStackPathCorrection();
        QVERIFY(m_store->executeSql(u"select subindex from SubObjects1 where nvstorage is null"_s));
        QCOMPARE(m_store->statementResults().size(), 1);
        QVERIFY(m_store->statementResults().constFirst().startsWith(u'1'));
        Store::SUBINDEX_DATA_T read;
        QVERIFY(m_store->getSubIndexData(1, 0x1032, 0, read));
        QCOMPARE(read.name, sub.name);
        QCOMPARE(read.metadata, sub.metadata);
        QVERIFY(!m_store->subIndexExists(0, 0x1032, 0));
    }

    void energyBus()
    {
        const std::tuple<QString, QString, QString> rows[] = {
            {"device_3", "ecurity", "security"},
            {"sec_0_kind", "ecurity", "security"},
            {"sec_1_kind", "security", "security"},
            {"note", "ecurity", "ecurity"},
            {"device_0", "bat", "bat"}};
        for (const auto &[key, value, expected] : rows) {
            init();
            m_store->setEnergyBusSetting(u"device_cnt"_s, u"4"_s);
            m_store->setEnergyBusSetting(key, value);
            ProjectConverter(m_store.get()).doEnergyBusCorrection();
            QCOMPARE(m_store->getEnergyBusSetting(key), expected);
            QCOMPARE(m_store->getEnergyBusSettingKeys().size(), 2);
        }
    }

    /// Messages as versions with page bits of their own left them.
    void signalCorrections()
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

    void scriptLines()
    {
        const std::tuple<QByteArray, QString> rows[] = {
            {QByteArray("GeneralSettings:a:5\n"), "5,-"},
            {QByteArray("J1939Settings:a:x y \n"), "-,x y "},
            {QByteArray("GeneralSettings:a:1\r\n\r\nJ1939Settings:a:2"), "1,2"},
            {QByteArray("#GeneralSettings:a:5\n"), "-,-"},
            {QByteArray(" #:a:5\n\n\n\n\n\n"), "-,-"},
            {QByteArray("GeneralSettings:a:5:6\n"), "-,-"},
            {QByteArray("GeneralSettings:a\n"), "-,-"},
            {QByteArray("MiscSettings:a:5\n"), "-,-"},
            {QByteArray("generalsettings:a:5\n"), "-,-"},
            {QByteArray("GeneralSettings:a:1\nGeneralSettings:a:2\n"), "2,-"},
            {QByteArray("GeneralSettings:a:1\nGeneralSettings:a:\n"), ",-"},
            {QByteArray("GeneralSettings:a:it's \"ü\"\n"), u"it's \"ü\",-"_s}};
        for (const auto &[script, expected] : rows) {
            init();
            const QString path = m_folder.filePath(u"script.txt"_s);
            writeFile(path, script);
            DatabaseModifier modifier(m_store.get());
            QVERIFY2(modifier.load(path), qPrintable(modifier.errorText()));
            QVERIFY2(modifier.applyModifierFile(), qPrintable(modifier.errorText()));
            const QString key = u"a"_s;
            const QString none = u"-"_s;
            QCOMPARE((m_store->generalSettingExists(key) ? m_store->getGeneralSetting(key) : none) +
                         u',' +
                         (m_store->j1939SettingExists(key) ? m_store->getJ1939Setting(key) : none),
                     expected);
            QVERIFY(!m_store->miscSettingExists(key));
        }
    }

    void refusedScripts()
    {
        writeFile(m_folder.filePath(u"short.txt"_s), "#234567890");
        for (const char *name : {"missing.txt", "", "short.txt"}) {
            const QString path = m_folder.filePath(QLatin1String(name));
            DatabaseModifier modifier(m_store.get());
            QVERIFY(!modifier.load(path));
            QVERIFY2(modifier.errorText().contains(path), qPrintable(modifier.errorText()));
            QVERIFY(!modifier.applyModifierFile());
        }
    }

    void scriptEndsBlock()
    {
        const QString path = m_folder.filePath(u"block.txt"_s);
        writeFile(path, "GeneralSettings:a:5\n");
        m_store->setBlockUpdates(true);
        DatabaseModifier modifier(m_store.get());
        QVERIFY(modifier.load(path));
        QVERIFY(modifier.applyModifierFile());
        QCOMPARE(m_store->getGeneralSetting(u"a"_s), u"5"_s);
        // Between load and use the script may vanish, and writes may be refused otherwise.
        m_store->setGenerating(true);
        QVERIFY(!modifier.applyModifierFile());
        QVERIFY(modifier.errorText().contains(u"line 1"_s));
        m_store->setGenerating(false);
        QVERIFY(QFile::remove(path));
        QVERIFY(!modifier.applyModifierFile());
        QVERIFY(modifier.errorText().contains(path));
    }

private:
    std::unique_ptr<Store> m_store;
    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestProjectConverter)
#include "tst_projectconverter.moc"
