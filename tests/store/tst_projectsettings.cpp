#include "store/objectdatabase.h"
#include "store/projectsettings.h"

#include <QTest>

/// The rules that generated code and the model check rely on.
class TestProjectSettings : public QObject
{
    Q_OBJECT

private slots:
    void numbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimal");
        QTest::addColumn<quint64>("number");
        QTest::addColumn<quint32>("count");
        const auto row = [](const char *text, int decimal, quint64 number, quint32 count) {
            QTest::newRow(text) << QString::fromLatin1(text) << decimal << number << count;
        };
        row("", 0, 0, 0);
        row(" 12 ", 12, 12, 12);
        row("0x1F", 0, 31, 31);
        row("010", 10, 8, 10);
        row("08", 8, 0, 8);
        row("3,4", 0, 0, 3);
        row(" ,4", 0, 0, 0);
        row("-1", -1, 0, 0);
        row("4294967296", 0, 4294967296U, 0);
        row("2 ms", 0, 0, 0);
    }
    void numbers()
    {
        QFETCH(QString, text);
        QTEST(ProjectSettings::toDecimal(text), "decimal");
        QTEST(ProjectSettings::toNumber(text), "number");
        QTEST(ProjectSettings::toCount(text), "count");
    }

    void tablesAndLines()
    {
        using Beyond = ProjectSettings::Beyond;
        ObjectDataBase store;
        QVERIFY(store.createNewDataBase());
        store.setGeneralSetting("key", "1,2");
        store.setJ1939Setting("key", "3");
        store.setMiscSetting("key", "true");
        store.setDescriptionLine(2);
        store.setDescriptionSetting("Granularity", "8");
        const ProjectSettings settings(store);
        QCOMPARE(settings.lineCount("key", 1), 2U);
        QCOMPARE(settings.lineText("key", 5), QStringLiteral("2"));
        QCOMPARE(settings.lineText("key", 5, Beyond::Nothing), QString());
        QCOMPARE(settings.count(SettingKey::j1939("key")), 3U);
        QVERIFY(settings.isTrue(SettingKey::misc("key")));
        QVERIFY(!settings.isTrue("key"));
        QCOMPARE(settings.lineText(SettingKey::description("Granularity"), 2), QStringLiteral("8"));
        QVERIFY(settings.text(SettingKey::description("Granularity")) != QStringLiteral("8"));
        QCOMPARE(store.descriptionLine(), quint8(2));
    }
};

QTEST_GUILESS_MAIN(TestProjectSettings)
#include "tst_projectsettings.moc"
