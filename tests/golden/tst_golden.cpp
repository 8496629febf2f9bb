#include "generation/generatormainhandler.h"
#include "generation/plaintextoutputhandler.h"
#include "resources/builder/datawriter.h"
#include "resources/builder/sourcereader.h"
#include "store/objectdatabase.h"
#include "tests/golden/foldercompare.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString casesFolder = QStringLiteral(QUILLFORGE_SOURCE_DIR "/tests/golden");

/// Opens a case's project; the error text if that fails.
QString openProject(ObjectDataBase &store, const QString &path)
{
    if (path.endsWith(".vxmt"))
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
    void initTestCase()
    {
        QCoreApplication::setOrganizationName("tolvex");
        QCoreApplication::setApplicationName("CANopen Quillforge");
        QCoreApplication::setApplicationVersion("4.3.3");
        qputenv("SOURCE_DATE_EPOCH", "1704067200");
    }

    void generation_data()
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

    void generation()
    {
        QFETCH(QString, project);
        QVERIFY2(!project.isEmpty(), "A case needs exactly one project.");
        const auto store = std::make_shared<ObjectDataBase>();
        const QString problem = openProject(*store, project);
        QVERIFY2(problem.isEmpty(), qPrintable(problem));

        const QString folder = QFileInfo(project).absolutePath();
        QTemporaryDir output;
        QVERIFY(FolderCompare::copyTree(folder + QLatin1String("/before"), output.path()));
        PlainTextOutputHandler messages(nullptr);
        GeneratorMainHandler handler(messages);
        handler.setProject(store, output.path(), QFileInfo(project).completeBaseName());
        const auto result = handler.generate(false);
        QVERIFY2(result == GeneratorMainHandler::Completed, qPrintable(messages.loggingText()));

        const QString expected = folder + QLatin1String("/expected");
        if (FolderCompare::isUpdateWanted()) {
            QVERIFY(QDir(expected).removeRecursively());
            QVERIFY(FolderCompare::copyTree(output.path(), expected));
            return;
        }
        const QString report = FolderCompare::differences(expected, output.path());
        QVERIFY2(report.isEmpty(), qPrintable(report));
    }

    /// A comparison that finds nothing would hold for everything.
    void runnerSeesDifferences()
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
        QCOMPARE(FolderCompare::differences(expected.path(), actual.path()), QString());
        write(expected, "changed", "a\nb\n");
        write(actual, "changed", "a\nb");
        write(expected, "gone", "");
        QVERIFY(QDir(actual.path()).mkdir("sub"));
        write(actual, "sub/new", "");
        QCOMPARE(FolderCompare::differences(expected.path(), actual.path()),
                 QStringLiteral("changed:3:\n  expected: \n  actual:   (end)\n"
                                "gone: missing\nsub/new: not expected\n"));
    }
};

QTEST_GUILESS_MAIN(TestGolden)
#include "tst_golden.moc"
