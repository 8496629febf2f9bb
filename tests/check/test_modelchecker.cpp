#include "checkcases.h"

#include "canopen/cobid.h"
#include "check/valuetext.h"
#include "check/warninggroups.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>
#include <QTest>

namespace {

const QString docsPath = QStringLiteral(QUILLFORGE_SOURCE_DIR "/docs/checks.md");

QList<CheckCase> allCases()
{
    return projectCases() + lineCases() + objectCases() + pdoCases();
}

QSettings userSettings()
{
    return QSettings(QStringLiteral("tolvex"), QStringLiteral("Quillforge 4.3.3"));
}

void disableCorrections(bool disabled)
{
    QSettings settings = userSettings();
    settings.beginGroup(QStringLiteral("General"));
    settings.setValue(QStringLiteral("disableautocorrection"), disabled);
}

QString documentation()
{
    QString text = QStringLiteral(
        "# Checks\n\n"
        "Every message of the model check. This page is made from the table that the program "
        "itself uses.\n\n"
        "Errors stop a generation. Warnings, hints and infos carry the group by which a project "
        "can suppress them, and notes are withheld with the message that they follow. Identifiers "
        "never change.\n\n"
        "## Groups\n\n| No | Key | Title | What it holds |\n|---|---|---|---|\n");
    for (const WarningGroup &group : warningGroups()) {
        text += QStringLiteral("| %1 | `%2` | %3 | %4 |\n")
                    .arg(QString::number(group.number), group.key, group.title, group.description);
    }
    text += QStringLiteral("\n## Messages\n\n| Identifier | Class | Group | Text | Reason |\n"
                           "|---|---|---|---|---|\n");
    for (const CheckDefinition &row : checkTable()) {
        const QString group = row.group != 0 ? warningGroups().at(row.group - 1).key : QString();
        const QString message = QString::fromUtf8(row.text).replace(u'\n', QLatin1String("\\n"));
        text += QStringLiteral("| %1 | %2 | %3 | `%4` | %5 |\n")
                    .arg(QLatin1String(row.identifier), checkClassName(row.kind), group, message,
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
        QCoreApplication::setApplicationVersion(QStringLiteral("4.3.3"));
        QCoreApplication::instance()->setProperty("AppNameWithVersion", "Quillforge 4.3.3");
    }

    void init()
    {
        QCoreApplication::setApplicationName(QStringLiteral("CANopen Quillforge"));
        userSettings().clear();
    }

    void cleanProjectIsSilent()
    {
        TestProject project;
        const int errors = project.check();
        QCOMPARE(project.messages, QStringList());
        QCOMPARE(errors, 0);
        QVERIFY(!project.changed);
        QVERIFY(project.checker.suppressedSummary().isEmpty());
    }

    void messages_data()
    {
        QTest::addColumn<int>("number");
        const QList<CheckCase> cases = allCases();
        for (int i = 0; i < cases.size(); ++i) {
            QTest::newRow(cases.at(i).name) << i;
        }
    }
    void messages()
    {
        QFETCH(int, number);
        static const QList<CheckCase> cases = allCases();
        const CheckCase &check = cases.at(number);
        TestProject project;
        check.fault(project);
        const int errors = project.check(check.lines);
        QCOMPARE(project.messages, check.messages);
        QCOMPARE(errors, check.errors);
        for (const CheckFinding &finding : project.checker.findings()) {
            m_drawn.insert(finding.identifier);
        }

        init();
        TestProject other;
        check.nearMiss(other);
        const int otherErrors = other.check(check.lines);
        QCOMPARE(other.messages, QStringList());
        QCOMPARE(otherErrors, 0);
    }
    void everyMessageHasACase()
    {
        if (m_drawn.isEmpty()) {
            QSKIP("looks at what all cases have drawn");
        }
        QStringList missing;
        for (const CheckDefinition &row : checkTable()) {
            const QString identifier = QLatin1String(row.identifier);
            // A line without a type gets no pass of its own; the driver of the passes tells of it.
            const bool isElsewhere =
                identifier.startsWith(u"CO-STACK-") || row.id == CheckId::ProjectLineType;
            if (!m_drawn.contains(identifier) && !isElsewhere) {
                missing.append(identifier);
            }
        }
        QCOMPARE(missing, QStringList());
    }

    void updateHintIsGivenOnce()
    {
        TestProject project;
        project.misc("PreviousToolVersion", QStringLiteral("3.8.1"));
        project.check();
        QCOMPARE(project.messages.size(), 1);
        project.check();
        QCOMPARE(project.messages.size(), 1);
    }

    void correctionsReachTheStore();
    void correctionsCanBeDisabled();
    void refusedCorrectionIsNotReported();
    void correctionIsSeenByLaterChecks();
    void suppression();
    void findingsTellThePlace();
    void orderFollowsLines();
    void warningGroupTexts();
    void disabledCobIds_data();
    void disabledCobIds();

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

void TestModelChecker::correctionsReachTheStore()
{
    TestProject project;
    project.value(0x1F81, 0, QStringLiteral("7"));
    project.edit(0x2000, 0, [](TestProject::Sub &sub) {
        sub.implementation = CANopen::ManagedVariable;
        sub.metadata.insert(QStringLiteral("key"), QStringLiteral("kept"));
    });
    project.pdo(0x1802, QStringLiteral("$NODEID+0x380"), {"0x20000108"}, "rw");
    project.value(0x1A02, 0, QStringLiteral("0"));
    QCOMPARE(project.check(), 0);
    QVERIFY(project.changed);
    QCOMPARE(project.messages.size(), 3);

    const auto verify = [&] {
        TestProject::Sub sub;
        QVERIFY(project.database.getSubIndexData(0, 0x1F81, 0, sub));
        QCOMPARE(sub.defaultvalue, QStringLiteral("2"));
        QVERIFY(project.database.getSubIndexData(0, 0x2000, 0, sub));
        QCOMPARE(sub.implementation, quint8(CANopen::ManagedConst));
        QCOMPARE(sub.metadata.value(QStringLiteral("key")), QStringLiteral("kept"));
        QVERIFY(project.database.getSubIndexData(0, 0x1802, 1, sub));
        QCOMPARE(sub.defaultvalue, QStringLiteral("$NODEID+0x80000380"));
    };
    verify(); // as a generator reads it, from the caches
    project.database.clearSubCaches();
    verify();

    project.messages.clear();
    QCOMPARE(project.check(), 0);
    QCOMPARE(project.messages, QStringList());
}

void TestModelChecker::correctionsCanBeDisabled()
{
    disableCorrections(true);
    TestProject project;
    project.value(0x1F81, 0, QStringLiteral("7"));
    project.edit(0x2000, 0, Make::implementation(CANopen::ManagedVariable));
    QCOMPARE(project.check(), 0);
    QCOMPARE(project.messages, QStringList());
    QVERIFY(!project.changed);
    QCOMPARE(project.database.getSubIndexDefaultValue(0, 0x1F81, 0), QStringLiteral("7"));
}

void TestModelChecker::refusedCorrectionIsNotReported()
{
    TestProject project;
    project.value(0x1F81, 0, QStringLiteral("7"));
    project.database.setBlockUpdates(true);
    QCOMPARE(project.check(), 0);
    project.database.setBlockUpdates(false);
    QCOMPARE(project.messages, QStringList());
    QVERIFY(!project.changed);
}

/// Once its COB-ID is disabled a PDO is neither enabled without mapping nor in anyone's way.
void TestModelChecker::correctionIsSeenByLaterChecks()
{
    TestProject project;
    project.pdo(0x1801, QStringLiteral("$NODEID+0x180"), {"0x20000108"}, "rw");
    project.value(0x1A01, 0, QStringLiteral("0"));
    project.general("overwrite_predef", QStringLiteral("1"));
    QCOMPARE(project.check(), 0);
    QCOMPARE(project.messages.size(), 1);
    disableCorrections(true);
    project.value(0x1801, 1, QStringLiteral("$NODEID+0x180"));
    QCOMPARE(project.check(), 2);
}

void TestModelChecker::suppression()
{
    TestProject project;
    project.misc("SuppressedWarningGroups", QStringLiteral("wg_ids, WG_EDS,WG_IDS,nonsense"));
    project.value(0x1800, 1, QStringLiteral("0x1"));
    project.edit(0x1400, 2, [](TestProject::Sub &sub) { sub.writedefaulttoeds = 0; });
    project.edit(0x1800, 2, [](TestProject::Sub &sub) { sub.writedefaulttoeds = 0; });
    project.general("fct_pdo", QStringLiteral("sent"));
    QCOMPARE(project.check(), 1);
    QCOMPARE(project.messages.size(), 1); // the error
    QCOMPARE(
        project.checker.suppressedSummary(),
        QStringLiteral("<strong>Note: </strong>3 warning(s) suppressed by the project settings:\n"
                       "&nbsp;&nbsp;WG_IDS (COB-ID and CAN-ID assignment): 1\n"
                       "&nbsp;&nbsp;WG_EDS (EDS/XDD documentation quality): 2"));
    int suppressed = 0;
    for (const CheckFinding &finding : project.checker.findings()) {
        suppressed += finding.suppressed ? 1 : 0;
    }
    QCOMPARE(suppressed, 4); // with the note
}

void TestModelChecker::findingsTellThePlace()
{
    TestProject project;
    project.general("co_timer_interval", QString());
    project.value(0x2010, 0, QStringLiteral("21"));
    project.check();
    const QList<CheckFinding> &findings = project.checker.findings();
    QCOMPARE(findings.size(), 2);
    QCOMPARE(findings.at(0).identifier, QStringLiteral("PRJ-TIMER-INTERVAL"));
    QCOMPARE(findings.at(0).place.line, -1);
    QCOMPARE(findings.at(1).identifier, QStringLiteral("CO-SUB-LIMITS"));
    QCOMPARE(findings.at(1).place.line, 0);
    QCOMPARE(findings.at(1).place.index, 0x2010);
    QCOMPARE(findings.at(1).place.subindex, 0);
    QCOMPARE(findings.at(1).text, project.messages.at(1));
}

/// The granularity is that of the line, and what one line holds says nothing of another.
void TestModelChecker::orderFollowsLines()
{
    TestProject project;
    project.addLine(1, 1);
    project.pdo(0x1810, QStringLiteral("$NODEID+0x190"), {"0x20000108"}, "rw");
    project.granularity(0);
    project.database.deleteIndex(1, 0x1001);
    QCOMPARE(project.check({0, 1}), 1);
    QCOMPARE(project.messages.size(), 2);
    QVERIFY(project.messages.at(0).contains(QLatin1String("granularity of 0")));
    QVERIFY(project.messages.at(1).contains(QLatin1String("0x1001")));
    QCOMPARE(project.database.descriptionLine(), quint8(0));
}

void TestModelChecker::warningGroupTexts()
{
    QCOMPARE(parseWarningGroups(QStringLiteral(" wg_eds ,WG_EDS,nonsense")), QByteArray("\x06"));
    QCOMPARE(parseWarningGroups(QString()), QByteArray());
    QCOMPARE(formatWarningGroups(QByteArray("\x08\x01\x63")),
             QStringLiteral("WG_NAMING,WG_CONFIG"));
    const QList<int> scopes = {14, 6, 6, 10, 2, 2, 3, 7};
    QCOMPARE(warningGroups().size(), 8);
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(int(warningGroups().at(i).number), i + 1);
        QCOMPARE(int(warningGroups().at(i).scope), scopes.at(i));
    }
}

void TestModelChecker::disabledCobIds_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("node-ID") << "$nodeid+0x180"
                             << "$nodeid+0x80000180";
    QTest::newRow("capitals") << "$NODEID+0X1AB"
                              << "$NODEID+0x800001ab";
    QTest::newRow("plain") << "0x180"
                           << "0x80000180";
    QTest::newRow("set already") << "$NODEID+0xC0000180"
                                 << "$NODEID+0xC0000180";
    QTest::newRow("extended") << "0x40000180"
                              << "0xc0000180";
    QTest::newRow("decimal") << "384"
                             << "384";
    QTest::newRow("empty") << ""
                           << "";
}

void TestModelChecker::disabledCobIds()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QCOMPARE(CobId::disabled(before), after);
}

QTEST_GUILESS_MAIN(TestModelChecker)
#include "test_modelchecker.moc"
