#include "store/projectsettings.h"
#include "tests/support/storefile.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

/// The rules that generated code and the model check rely on.
class TestProjectSettings : public QObject
{
    Q_OBJECT

private slots:
    void numbers()
    {
        const std::tuple<QString, int, quint64, quint32> rows[] = {
            {"", 0, 0, 0},      {" 12 ", 12, 12, 12}, {"0x1F", 0, 31, 31},
            {"010", 10, 8, 10}, {"08", 8, 0, 8},      {"3,4", 0, 0, 3},
            {" ,4", 0, 0, 0},   {"-1", -1, 0, 0},     {"4294967296", 0, 4294967296U, 0},
            {"2 ms", 0, 0, 0}};
        for (const auto &[text, decimal, number, count] : rows) {
            QCOMPARE(ProjectSettings::toDecimal(text), decimal);
            QCOMPARE(ProjectSettings::toNumber(text), number);
            QCOMPARE(ProjectSettings::toCount(text), count);
        }
    }

    void tablesAndLines()
    {
        using Beyond = ProjectSettings::Beyond;
        TestStore store;
        store.setGeneralSetting("key", "1,2");
        store.setJ1939Setting("key", "3");
        store.setMiscSetting("key", "true");
        store.setDescriptionLine(2);
        store.setDescriptionSetting("Granularity", "8");
        const ProjectSettings settings(store);
        QCOMPARE(settings.lineCount("key", 1), 2U);
        QCOMPARE(settings.lineText("key", 5), u"2"_s);
        QCOMPARE(settings.lineText("key", 5, Beyond::Nothing), QString());
        QCOMPARE(settings.count(SettingKey::j1939("key")), 3U);
        QVERIFY(settings.isTrue(SettingKey::misc("key")));
        QVERIFY(!settings.isTrue("key"));
        QCOMPARE(settings.lineText(SettingKey::description("Granularity"), 2), u"8"_s);
        QVERIFY(settings.text(SettingKey::description("Granularity")) != u"8"_s);
        QCOMPARE(store.descriptionLine(), quint8(2));
    }
};

QTEST_GUILESS_MAIN(TestProjectSettings)
#include "tst_projectsettings.moc"
