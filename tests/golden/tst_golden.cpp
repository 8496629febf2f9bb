#include "generators/generatormainhandler.h"
#include "generators/plaintextoutputhandler.h"
#include "resources/builder/datawriter.h"
#include "resources/builder/sourcereader.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString casesFolder = QStringLiteral(QUILLFORGE_SOURCE_DIR "/tests/golden");

bool isUpdateWanted()
{
    return qEnvironmentVariableIntValue("QUILLFORGE_UPDATE_GOLDENS") != 0;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Paths below a folder, sorted.
QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator walk(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (walk.hasNext())
        files.append(QDir(folder).relativeFilePath(walk.next()));
    files.sort();
    return files;
}

bool copyTree(const QString &from, const QString &to)
{
    const QStringList files = filesBelow(from);
    for (const QString &file : files) {
        const QString target = to + QLatin1Char('/') + file;
        if (!QDir().mkpath(QFileInfo(target).absolutePath()))
            return false;
        QFile copy(target);
        if (!copy.open(QIODevice::WriteOnly) ||
            copy.write(contentOf(from + QLatin1Char('/') + file)) < 0)
            return false;
    }
    return true;
}

/// The first line that differs, for the eye.
QString difference(const QString &name, const QByteArray &expected, const QByteArray &actual)
{
    const QList<QByteArray> before = expected.split('\n');
    const QList<QByteArray> after = actual.split('\n');
    qsizetype line = 0;
    while (line < before.size() && line < after.size() && before.at(line) == after.at(line))
        ++line;
    const auto text = [line](const QList<QByteArray> &lines) {
        return line < lines.size() ? QString::fromUtf8(lines.at(line)) : QStringLiteral("(end)");
    };
    return QStringLiteral("%1:%2:\n  expected: %3\n  actual:   %4\n")
        .arg(name)
        .arg(line + 1)
        .arg(text(before), text(after));
}

QString differences(const QString &expected, const QString &actual)
{
    const QStringList before = filesBelow(expected);
    const QStringList after = filesBelow(actual);
    QString report;
    for (const QString &file : before) {
        if (!after.contains(file)) {
            report += QStringLiteral("%1: missing\n").arg(file);
            continue;
        }
        const QByteArray old = contentOf(expected + QLatin1Char('/') + file);
        const QByteArray made = contentOf(actual + QLatin1Char('/') + file);
        if (old != made)
            report += difference(file, old, made);
    }
    for (const QString &file : after) {
        if (!before.contains(file))
            report += QStringLiteral("%1: not expected\n").arg(file);
    }
    return report;
}

/// Opens a case's project; the error text if that fails.
QString openProject(ObjectDataBase &store, const QString &path)
{
    if (path.endsWith(QLatin1String(".vxmt")))
        return store.openDataBase(path) ? QString() : store.lastErrorText();
    const SourceResult source = SourceReader::readFile(path);
    if (!source.errors.isEmpty())
        return source.errors.join(QLatin1Char('\n'));
    if (!store.createNewDataBase())
        return store.lastErrorText();
    return DataWriter::fill(store, source.project);
}

} // namespace

class TestGolden : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void generation_data();
    void generation();
    void runnerSeesDifferences();
};

void TestGolden::initTestCase()
{
    QCoreApplication::setOrganizationName(QStringLiteral("tolvex"));
    QCoreApplication::setApplicationName(QStringLiteral("CANopen Quillforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral("4.3.3"));
    qputenv("SOURCE_DATE_EPOCH", "1704067200");
}

void TestGolden::generation_data()
{
    QTest::addColumn<QString>("project");
    const QFileInfoList folders =
        QDir(casesFolder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &folder : folders) {
        const QFileInfoList projects =
            QDir(folder.filePath()).entryInfoList({"*.qfs", "*.vxmt"}, QDir::Files);
        if (projects.size() == 1)
            QTest::newRow(qPrintable(folder.fileName())) << projects.constFirst().filePath();
        else
            QTest::newRow(qPrintable(folder.fileName())) << QString();
    }
}

void TestGolden::generation()
{
    QFETCH(QString, project);
    QVERIFY2(!project.isEmpty(), "A case needs exactly one project.");
    const auto store = std::make_shared<ObjectDataBase>();
    const QString problem = openProject(*store, project);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));

    const QString folder = QFileInfo(project).absolutePath();
    QTemporaryDir output;
    QVERIFY(copyTree(folder + QLatin1String("/before"), output.path()));
    PlainTextOutputHandler messages(nullptr);
    GeneratorMainHandler handler(messages);
    handler.setProject(store, output.path(), QFileInfo(project).completeBaseName());
    const auto result = handler.generate(false);
    QVERIFY2(result == GeneratorMainHandler::Completed, qPrintable(messages.loggingText()));

    const QString expected = folder + QLatin1String("/expected");
    if (isUpdateWanted()) {
        QVERIFY(QDir(expected).removeRecursively());
        QVERIFY(copyTree(output.path(), expected));
        return;
    }
    const QString report = differences(expected, output.path());
    QVERIFY2(report.isEmpty(), qPrintable(report));
}

/// A comparison that finds nothing would hold for everything.
void TestGolden::runnerSeesDifferences()
{
    QTemporaryDir expected;
    QTemporaryDir actual;
    const auto write = [](const QTemporaryDir &folder, const char *name, const char *text) {
        QFile file(folder.filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    write(expected, "same", "a\nb\n");
    write(actual, "same", "a\nb\n");
    QCOMPARE(differences(expected.path(), actual.path()), QString());
    write(expected, "changed", "a\nb\n");
    write(actual, "changed", "a\nb");
    write(expected, "gone", "");
    QVERIFY(QDir(actual.path()).mkdir("sub"));
    write(actual, "sub/new", "");
    QCOMPARE(differences(expected.path(), actual.path()),
             QStringLiteral("changed:3:\n  expected: \n  actual:   (end)\n"
                            "gone: missing\nsub/new: not expected\n"));
}

QTEST_GUILESS_MAIN(TestGolden)
#include "tst_golden.moc"
