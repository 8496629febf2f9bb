#include "canopen/cobid.h"
#include "checkcases.h"

#include "canopen/valuetext.h"
#include "check/checktable.h"
#include "check/warninggroups.h"
#include "store/usersettings.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString docsPath = QStringLiteral(QUILLFORGE_SOURCE_DIR "/docs/checks.md");

QList<CheckCase> allCases()
{
    return projectCases() + lineCases() + objectCases() + pdoCases();
}

void disableCorrections(bool disabled)
{
    UserSettings::setGeneral(u"disableautocorrection"_s, disabled);
}

QString documentation()
{
    QString text =
        u"# Checks\n\n"
        "Every message of the model check. This page is made from the table that the program "
        "itself uses.\n\n"
        "Errors stop a generation. Warnings, hints and infos carry the group by which a project "
        "can suppress them, and notes are withheld with the message that they follow. Identifiers "
        "never change.\n\n"
        "## Groups\n\n| No | Key | Title | What it holds |\n|---|---|---|---|\n"_s;
    for (const WarningGroup &group : warningGroups()) {
        text += u"| %1 | `%2` | %3 | %4 |\n"_s.arg(QString::number(group.number), group.key,
                                                   group.title, group.description);
    }
    text += u"\n## Messages\n\n| Identifier | Class | Group | Text | Reason |\n"
            "|---|---|---|---|---|\n"_s;
    for (const CheckDefinition &row : checkTable()) {
        const QString group = row.group != 0 ? warningGroups().at(row.group - 1).key : QString();
        const QString message = QString::fromUtf8(row.text).replace(u'\n', "\\n"_L1);
        text += u"| %1 | %2 | %3 | `%4` | %5 |\n"_s.arg(QLatin1String(row.identifier),
                                                        checkClassName(row.kind), group, message,
                                                        QLatin1String(row.reason));
    }
    return text;
}

} // namespace

class TestModelChecker : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setApplicationVersion(u"4.3.3"_s);
        QCoreApplication::setOrganizationName(u"tolvex"_s);
        QCoreApplication::instance()->setProperty("AppNameWithVersion", "Quillforge 4.3.3");
    }

    void init()
    {
        QCoreApplication::setApplicationName(u"CANopen Quillforge"_s);
        UserSettings().clear();
    }

    void cleanProjectIsSilent()
    {
        TestProject project;
        const int errors = project.check();
        QCOMPARE(project.said, QString());
        QCOMPARE(errors, 0);
        QVERIFY(!project.changed);
        QVERIFY(project.checker.suppressedSummary().isEmpty());
    }

    void messages_data()
    {
        QTest::addColumn<int>("number");
        const QList<CheckCase> cases = allCases();
        for (int i = 0; i < cases.size(); ++i)
            QTest::newRow(cases.at(i).name) << i;
    }
    void messages()
    {
        QFETCH(int, number);
        static const QList<CheckCase> cases = allCases();
        const CheckCase &check = cases.at(number);
        TestProject project;
        check.fault(project);
        const int errors = project.check(check.lines);
        QCOMPARE(project.said, QLatin1String(check.said));
        QCOMPARE(errors, check.errors);
        for (const CheckFinding &finding : project.checker.findings())
            m_drawn.insert(finding.identifier());

        init();
        TestProject other;
        check.nearMiss(other);
        const int otherErrors = other.check(check.lines);
        QCOMPARE(other.said, QString());
        QCOMPARE(otherErrors, 0);
    }

    void everyMessageHasACase()
    {
        if (m_drawn.isEmpty())
            QSKIP("looks at what all cases have drawn");
        QStringList missing;
        for (const CheckDefinition &row : checkTable()) {
            const QString identifier = QLatin1String(row.identifier);
            const bool isElsewhere = identifier.startsWith(u"CO-STACK-");
            if (!m_drawn.contains(identifier) && !isElsewhere)
                missing.append(identifier);
        }
        QCOMPARE(missing, QStringList());
    }

    void updateHintIsGivenOnce()
    {
        TestProject project;
        project.misc("PreviousToolVersion", u"3.8.1"_s);
        project.check();
        QCOMPARE(project.said, u"PRJ-UPDATE-CO-37"_s);
        project.check();
        QCOMPARE(project.said, QString());
    }

    void correctionsReachTheStore()
    {
        TestProject project;
        project.value(0x1F81, 0, u"7"_s);
        project.edit(0x2000, 0, [](TestProject::Sub &sub) {
            sub.implementation = CANopen::ManagedVariable;
            sub.metadata.insert(u"key"_s, u"kept"_s);
        });
        project.pdo(0x1802, u"$NODEID+0x380"_s, {"0x20000108"}, "rw");
        project.value(0x1A02, 0, u"0"_s);
        QCOMPARE(project.check(), 0);
        QVERIFY(project.changed);
        QCOMPARE(project.said, u"CO-SUB0-VALUE 1f81 00; CO-SUB0-CONST 2000 00; "
                               "CO-PDO-DISABLED 1802 $NODEID+0x80000380"_s);

        const auto verify = [&] {
            TestProject::Sub sub;
            QVERIFY(project.database.getSubIndexData(0, 0x1F81, 0, sub));
            QCOMPARE(sub.defaultvalue, u"2"_s);
            QVERIFY(project.database.getSubIndexData(0, 0x2000, 0, sub));
            QCOMPARE(sub.implementation, quint8(CANopen::ManagedConst));
            QCOMPARE(sub.metadata.value(u"key"_s), u"kept"_s);
            QVERIFY(project.database.getSubIndexData(0, 0x1802, 1, sub));
            QCOMPARE(sub.defaultvalue, u"$NODEID+0x80000380"_s);
        };
        verify(); // as a generator reads it, from the caches
        project.database.clearSubCaches();
        verify();

        QCOMPARE(project.check(), 0);
        QCOMPARE(project.said, QString());
    }

    void correctionsCanBeDisabled()
    {
        disableCorrections(true);
        TestProject project;
        project.value(0x1F81, 0, u"7"_s);
        project.edit(0x2000, 0, Make::implementation(CANopen::ManagedVariable));
        QCOMPARE(project.check(), 0);
        QCOMPARE(project.said, QString());
        QVERIFY(!project.changed);
        QCOMPARE(project.database.getSubIndexDefaultValue(0, 0x1F81, 0), u"7"_s);
    }

    void refusedCorrectionIsNotReported()
    {
        TestProject project;
        project.value(0x1F81, 0, u"7"_s);
        project.database.setBlockUpdates(true);
        QCOMPARE(project.check(), 0);
        project.database.setBlockUpdates(false);
        QCOMPARE(project.said, QString());
        QVERIFY(!project.changed);
    }

    /// Once its COB-ID is disabled a PDO is neither enabled without mapping nor in anyone's way.
    void correctionIsSeenByLaterChecks()
    {
        TestProject project;
        project.pdo(0x1801, u"$NODEID+0x180"_s, {"0x20000108"}, "rw");
        project.value(0x1A01, 0, u"0"_s);
        project.general("overwrite_predef", "1");
        QCOMPARE(project.check(), 0);
        QCOMPARE(project.said, u"CO-PDO-DISABLED 1801 $NODEID+0x80000180"_s);
        disableCorrections(true);
        project.value(0x1801, 1, u"$NODEID+0x180"_s);
        QCOMPARE(project.check(), 2);
    }

    void suppression()
    {
        TestProject project;
        project.misc("SuppressedWarningGroups", u"wg_ids, WG_EDS,WG_IDS,nonsense"_s);
        project.value(0x1800, 1, u"0x1"_s);
        project.edit(0x1400, 2, Make::inEds(0));
        project.edit(0x1800, 2, Make::inEds(0));
        project.general("fct_pdo", "sent");
        QCOMPARE(project.check(), 1);
        QCOMPARE(project.said, u"CO-PDO-INDICATION-PAIR"_s);
        QCOMPARE(project.checker.suppressedSummary(),
                 u"<strong>Note: </strong>3 warning(s) suppressed by the project settings:\n"
                 "&nbsp;&nbsp;WG_IDS (COB-ID and CAN-ID assignment): 1\n"
                 "&nbsp;&nbsp;WG_EDS (EDS/XDD documentation quality): 2"_s);
        const QList<CheckFinding> &findings = project.checker.findings();
        const auto suppressed = std::count_if(findings.begin(), findings.end(),
                                              [](const CheckFinding &f) { return f.suppressed; });
        QCOMPARE(suppressed, 4); // with the note
    }

    void findingsTellThePlace()
    {
        TestProject project;
        project.general("co_timer_interval", "");
        project.general("event_pdo", "%1");
        project.value(0x2010, 0, u"21"_s);
        project.edit(0x1800, 1, Make::inEds(0));
        project.check();
        struct Row
        {
            const char *identifier;
            const char *text;
            const char *field;
            int line;
            int index;
            int subindex;
        };
        const QList<Row> rows = {
            {"PRJ-TIMER-INTERVAL",
             "<strong><font color='red'>Error: </font></strong>Timer interval not set in Common "
             "Settings -> Hardware/Target.",
             "co_timer_interval", -1, -1, -1},
            {"PRJ-NUMERIC", "<strong>Error: </strong>\"PDO Event\" has non-numeric value \"%1\".",
             "event_pdo", -1, -1, -1},
            {"CO-SUB-LIMITS",
             "<strong>Error: </strong>Object 0x2010-0x00: The defaultvalue is not in the range of "
             "the "
             "limits.",
             "defaultvalue", 0, 0x2010, 0},
            {"CO-PDO-EDS-COBID", // the one argument fills the one marker, whatever its number
             "<strong>Hint: </strong>Subindex 1 of 0x1800 should have its default value in the EDS "
             "file.",
             "writedefaulttoeds", 0, 0x1800, 1}};
        const QList<CheckFinding> &findings = project.checker.findings();
        QCOMPARE(findings.size(), rows.size());
        for (qsizetype i = 0; i < rows.size(); ++i) {
            const CheckFinding &finding = findings.at(i);
            QCOMPARE(finding.identifier(), QLatin1String(rows.at(i).identifier));
            QCOMPARE(finding.text(), QLatin1String(rows.at(i).text));
            QCOMPARE(finding.field(), QLatin1String(rows.at(i).field));
            QCOMPARE(finding.place.line, rows.at(i).line);
            QCOMPARE(finding.place.index, rows.at(i).index);
            QCOMPARE(finding.place.subindex, rows.at(i).subindex);
        }
    }

    /// The granularity is that of the line, and what one line holds says nothing of another.
    void orderFollowsLines()
    {
        TestProject project;
        project.addLine(1, 1);
        project.pdo(0x1810, u"$NODEID+0x190"_s, {"0x20000108"}, "rw");
        project.granularity(0);
        project.database.deleteIndex(1, 0x1001);
        QCOMPARE(project.check({0, 1}), 1);
        QCOMPARE(project.said, u"CO-PDO-DYNAMIC-GRANULARITY; CO-1001-MISSING 1001"_s);
        QCOMPARE(project.database.descriptionLine(), quint8(0));
    }

    void warningGroupTexts()
    {
        QCOMPARE(parseWarningGroups(u" wg_eds ,WG_EDS,nonsense"_s), QByteArray("\x06"));
        QCOMPARE(parseWarningGroups(QString()), QByteArray());
        QCOMPARE(formatWarningGroups(QByteArray("\x08\x01\x63")), u"WG_NAMING,WG_CONFIG"_s);
        const QList<int> scopes = {14, 6, 6, 10, 2, 2, 3, 7};
        QCOMPARE(warningGroups().size(), 8);
        for (int i = 0; i < 8; ++i) {
            QCOMPARE(int(warningGroups().at(i).number), i + 1);
            QCOMPARE(int(warningGroups().at(i).scope), scopes.at(i));
        }
    }

    void disabledCobIds()
    {
        const std::tuple<QString, QString> rows[] = {{"$nodeid+0x180", "$nodeid+0x80000180"},
                                                     {"$NODEID+0X1AB", "$NODEID+0x800001ab"},
                                                     {"0x180", "0x80000180"},
                                                     {"$NODEID+0xC0000180", "$NODEID+0xC0000180"},
                                                     {"0x40000180", "0xc0000180"},
                                                     {"384", "384"},
                                                     {"", ""}};
        for (const auto &[before, after] : rows) {
            QCOMPARE(CobId::disabled(before), after);
        }
    }

    void documentationIsCurrent()
    {
        QFile file(docsPath);
        if (qEnvironmentVariableIntValue("QUILLFORGE_UPDATE_DOCS") == 1) {
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(documentation().toUtf8());
            return;
        }
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(docsPath));
        QCOMPARE(QString::fromUtf8(file.readAll()), documentation());
    }

private:
    QSet<QString> m_drawn;
};

QTEST_GUILESS_MAIN(TestModelChecker)
#include "tst_modelchecker.moc"
