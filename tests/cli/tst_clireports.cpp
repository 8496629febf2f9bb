#include "cliprogram.h"
#include "tests/support/rows.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

/// A device with an error, a warning, a suppressed warning, a correction and a line of no protocol.
void makeFaults(ObjectDataBase &store)
{
    store.deleteIndex(0, 0x1001);                               // error of an object
    store.setSubIndexDefaultValue(0, 0x1018, 1, u"0x7A5"_s);    // suppressed warning
    store.setSubIndexDefaultValue(0, 0x1018, 0, u"1"_s);        // corrected
    store.setGeneralSetting(u"co_timer_interval"_s, QString()); // error of the project
    store.setMiscSetting(u"SuppressedWarningGroups"_s, u"WG_IDENTITY,WG_IDS"_s);
    store.addNode(1, {.name = u"<second> line"_s});
    store.setGeneralSetting(u"line1type"_s, u"3"_s);
}

/// The members of an object as one text, absent ones and nothing empty.
QString textOf(const QJsonValue &object, std::initializer_list<const char *> members)
{
    QStringList texts;
    for (const char *member : members)
        texts << object[QLatin1String(member)].toVariant().toString();
    return texts.join(u' ');
}

} // namespace

class TestCliReports : public QObject
{
    Q_OBJECT

private:
    CliProgram m_program;

    QJsonObject report(const QString &format, int exitCode, const QString &name = u"faulty.vxmp"_s)
    {
        const CliProgram::Run result = m_program.run({u"check"_s, name, u"--format"_s, format});
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(result.output, &error);
        if (error.error != QJsonParseError::NoError || result.exitCode != exitCode ||
            !result.errors.isEmpty())
            qCritical().noquote() << error.errorString() << result.exitCode << result.errors;
        return result.exitCode == exitCode ? document.object() : QJsonObject();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_program.folder.isValid());
        m_program.saveProject(u"good device#1.vxmt"_s);
        m_program.saveProject(u"faulty.vxmp"_s, makeFaults);
    }

    void jsonHoldsTheFindings()
    {
        const QByteArray before = m_program.read(u"faulty.vxmp"_s);
        const QJsonObject root = report(u"json"_s, 1);
        QCOMPARE(m_program.read(u"faulty.vxmp"_s), before);
        QCOMPARE(root[u"tool"][u"name"].toString(), u"CANopen Quillforge"_s);
        QCOMPARE(root[u"project"][u"path"].toString(), m_program.path(u"faulty.vxmp"_s));

        const QJsonArray findings = root[u"findings"].toArray();
        const auto about = [&](const char *identifier) {
            for (const QJsonValue &finding : findings) {
                if (finding[u"identifier"] == QLatin1String(identifier))
                    return textOf(finding, {"class", "counted", "suppressed", "warningGroup",
                                            "object", "line", "index"});
            }
            return QString();
        };
        QCOMPARE(about("CO-1001-MISSING"), u"error true false  line0/0x1001 0 4097"_s);
        QCOMPARE(about("CO-1018-VENDOR-TEST"),
                 u"warning false true WG_IDENTITY line0/0x1018/0x01 0 4120"_s);
        QVERIFY(about("CO-SUB0-VALUE").startsWith(u"corrected "));
        QCOMPARE(about("PRJ-TIMER-INTERVAL"), u"error true false  project  "_s);
        QVERIFY(about("PRJ-LINE-TYPE").contains(u" line1 "));
        int errors = 0;
        int suppressed = 0;
        for (const QJsonValue &finding : findings) {
            errors += finding[u"counted"].toBool() ? 1 : 0;
            suppressed += finding[u"suppressed"].toBool() ? 1 : 0;
            QVERIFY(!finding[u"text"].toString().contains(u'<'));
            QVERIFY(!finding[u"reason"].toString().isEmpty());
        }
        QCOMPARE(root[u"errors"].toInt(), errors);
        QCOMPARE(root[u"suppressed"].toInt(), suppressed);
    }

    void textHoldsWhatIsNotSuppressed()
    {
        const CliProgram::Run result = m_program.run(words("check faulty.vxmp"));
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(m_program.run(words("check faulty.vxmp --format=text")).output, result.output);
        const QStringList lines = QString::fromUtf8(result.output).split(u'\n', Qt::SkipEmptyParts);
        const QJsonObject root = report(u"json"_s, 1);
        qsizetype at = 0;
        for (const QJsonValue &finding : root[u"findings"].toArray()) {
            const QString line =
                u"%1: %2 [%3]"_s.arg(finding[u"object"].toString(), finding[u"text"].toString(),
                                     finding[u"identifier"].toString());
            if (finding[u"suppressed"].toBool())
                QVERIFY(!lines.contains(line));
            else
                QCOMPARE(lines.value(at++), line);
        }
        QCOMPARE(at, lines.size() - 1);
        QVERIFY2(lines.last().startsWith(u"%1 errors, "_s.arg(root[u"errors"].toInt())),
                 qPrintable(lines.last()));
    }

    void sarifHoldsTheSame()
    {
        const QJsonObject log = report(u"sarif"_s, 1);
        QCOMPARE(log[u"version"].toString(), u"2.1.0"_s);
        QVERIFY(log[u"$schema"].toString().contains(u"sarif-schema-2.1.0"));
        QCOMPARE(log[u"runs"].toArray().size(), 1);
        const QJsonValue run = log[u"runs"][0];
        const QJsonValue driver = run[u"tool"][u"driver"];
        QCOMPARE(driver[u"name"].toString(), u"CANopen Quillforge"_s);
        QVERIFY(driver[u"version"].toString().startsWith(u"4."));

        QSet<QString> ids;
        const QJsonArray rules = driver[u"rules"].toArray();
        for (const QJsonValue &rule : rules) {
            ids.insert(rule[u"id"].toString());
            for (const QString &text : {u"shortDescription"_s, u"fullDescription"_s, u"help"_s})
                QVERIFY2(!rule[text][u"text"].toString().isEmpty(),
                         qPrintable(rule[u"id"].toString()));
        }
        QCOMPARE(ids.size(), rules.size());

        const QJsonArray findings = report(u"json"_s, 1)[u"findings"].toArray();
        const QJsonArray results = run[u"results"].toArray();
        QCOMPARE(results.size(), findings.size());
        const QMap<QString, QString> levels = {{u"error"_s, u"error"_s},
                                               {u"warning"_s, u"warning"_s}};
        for (qsizetype i = 0; i < results.size(); ++i) {
            const QJsonValue result = results.at(i);
            const QJsonValue finding = findings.at(i);
            QCOMPARE(result[u"ruleId"], finding[u"identifier"]);
            QCOMPARE(rules.at(result[u"ruleIndex"].toInt(-1))[u"id"], finding[u"identifier"]);
            QCOMPARE(result[u"level"].toString(),
                     levels.value(finding[u"class"].toString(), u"note"_s));
            QCOMPARE(result[u"message"][u"text"], finding[u"text"]);
            const QJsonValue location = result[u"locations"][0];
            QCOMPARE(location[u"logicalLocations"][0][u"fullyQualifiedName"], finding[u"object"]);
            const QString uri =
                location[u"physicalLocation"][u"artifactLocation"][u"uri"].toString();
            QCOMPARE(QUrl(uri).toLocalFile(), m_program.path(u"faulty.vxmp"_s));
            QCOMPARE(result[u"properties"][u"warningGroup"].toString(),
                     finding[u"warningGroup"].toString());
            QVERIFY(result[u"suppressions"].isArray());
            QCOMPARE(result[u"suppressions"].toArray().size(),
                     finding[u"suppressed"].toBool() ? 1 : 0);
        }
    }

    void goodProjectEndsWithZero()
    {
        const QString name = u"good device#1.vxmt"_s;
        QCOMPARE(report(u"json"_s, 0, name)[u"errors"].toInt(-1), 0);
        const QJsonObject log = report(u"sarif"_s, 0, name);
        const QString uri = log[u"runs"][0][u"artifacts"][0][u"location"][u"uri"].toString();
        QVERIFY2(uri.endsWith(u"good%20device%231.vxmt"), qPrintable(uri));
        QVERIFY(m_program.run({u"check"_s, name}).output.contains("\n0 errors, "));
    }

    void infoCountsTheContent()
    {
        m_program.saveProject(u"mixed.vxmp"_s, [](ObjectDataBase &store) {
            makeFaults(store);
            store.setGeneralSetting(u"line1type"_s, u"4"_s);
            store.addCANID(1, 0x321, {.id = 0x321, .direction = store.receive});
            for (const quint32 number : {1u, 2u})
                store.addDataElement(1, 0x321, store.receive, number,
                                     {.canId = 0x321, .direction = store.receive});
        });
        const CliProgram::Run result = m_program.run(words("info mixed.vxmp --json"));
        QCOMPARE(result.exitCode, 0);
        const QJsonObject info = QJsonDocument::fromJson(result.output).object();
        QCOMPARE(textOf(info, {"name", "externallyModified", "stackGeneration"}),
                 u"mixed false V4"_s);
        QVERIFY(info[u"savedWith"].toString().startsWith(u"CANopen Quillforge"));
        QCOMPARE(info[u"suppressedWarningGroups"].toArray(),
                 QJsonArray({u"WG_IDENTITY"_s, u"WG_IDS"_s}));
        const QJsonValue first = info[u"lines"][0];
        QCOMPARE(first[u"protocols"].toArray(), QJsonArray{u"CANopen"_s});
        ObjectDataBase store;
        QVERIFY(store.openDataBase(m_program.path(u"mixed.vxmp"_s)));
        QCOMPARE(first[u"objects"].toInt(), store.getIndices(0).size());
        QVERIFY(first[u"subindices"].toInt() > first[u"objects"].toInt());
        const QJsonValue second = info[u"lines"][1];
        QCOMPARE(textOf(second, {"name", "canIds", "dataElements"}), u"<second> line 1 2"_s);
        QCOMPARE(second[u"protocols"].toArray(), QJsonArray{u"raw CAN"_s});

        const QByteArray text = m_program.run(words("info mixed.vxmp")).output;
        QVERIFY2(text.contains("\"<second> line\", raw CAN: 1 CAN-IDs, 2 data elements\n"),
                 text.constData());
    }

    void infoTellsOfForeignChanges()
    {
        m_program.saveProject(u"changed.vxmt"_s);
        QByteArray content = m_program.read(u"changed.vxmt"_s);
        content.replace("Field bus", "Other bus");
        m_program.write(u"changed.vxmt"_s, content);
        const CliProgram::Run result = m_program.run(words("info --json changed.vxmt"));
        const QJsonObject info = QJsonDocument::fromJson(result.output).object();
        QCOMPARE(info[u"externallyModified"].toBool(), true);
        const auto check = [this](const QString &format) {
            return m_program.run({u"check"_s, u"changed.vxmt"_s, u"--format"_s, format}).output;
        };
        const QByteArray note =
            "Note: The project was changed by something else since it was saved.\n";
        QVERIFY(check(u"text"_s).startsWith("project: " + note));
        const QJsonObject json = QJsonDocument::fromJson(check(u"json"_s)).object();
        QCOMPARE(json[u"project"][u"externallyModified"].toBool(), true);
        const QJsonObject sarif = QJsonDocument::fromJson(check(u"sarif"_s)).object();
        QCOMPARE(sarif[u"runs"][0][u"properties"][u"externallyModified"].toBool(), true);
        QVERIFY(m_program.run(words("generate changed.vxmt")).output.startsWith(note));
        QCOMPARE(m_program.read(u"changed.vxmt"_s), content);
    }
};

QTEST_GUILESS_MAIN(TestCliReports)
#include "tst_clireports.moc"
