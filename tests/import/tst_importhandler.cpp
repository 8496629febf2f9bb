#include "importsupport.h"

#include "import/importhandler.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

void add(ObjectDataBase &store, quint16 index, const QString &name, quint8 line = 0)
{
    ObjectDataBase::INDEX_DATA_T object;
    object.name = name;
    ObjectDataBase::SUBINDEX_DATA_T entry;
    entry.name = name;
    QVERIFY(store.addIndex(line, index, object));
    QVERIFY(store.addSubIndex(line, index, 0, entry));
}

QString contentOf(ObjectDataBase &store, quint8 line)
{
    QStringList objects;
    const QList<quint16> indices = store.getIndices(line);
    for (const quint16 index : indices)
        objects.append(QString::number(index, 16) + u'=' + store.getIndexName(line, index) +
                       QString::number(store.getSubIndices(line, index).size()));
    return objects.join(u' ');
}

} // namespace

class TestImportHandler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const auto other = ImportSupport::newStore();
        add(*other, 0x2000, u"theirs"_s);
        add(*other, 0x2001, u"more"_s);
        QVERIFY(other->saveDatabase(m_folder.filePath(u"other.vxmp"_s)));
        const auto top = ImportSupport::newStore();
        add(*top, 0xF000, u"top"_s);
        QVERIFY(top->saveDatabase(m_folder.filePath(u"top.vxmp"_s)));
    }

    void loads_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("error");
        QTest::newRow("small") << QByteArray("[A]\na=1\nb=") << u"File too small"_s;
        QTest::newRow("one key") << QByteArray("[Actions]\na=1\n") << u"Invalid file structure"_s;
        QTest::newRow("no keys") << QByteArray("nothing of the kind")
                                 << u"Invalid file structure"_s;
        QTest::newRow("large") << QByteArray(2000000, 'x') << u"File too large"_s;
        QTest::newRow("good") << QByteArray("[Actions]\na=1\nb=2\n") << QString();
    }

    void loads()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, error);
        const auto store = ImportSupport::newStore();
        ImportHandler handler(store.get());
        QCOMPARE(handler.loadImportFile(ImportSupport::write(m_folder, u"a.ini"_s, file)),
                 error.isEmpty());
        QCOMPARE(handler.errorString(), error);
        QVERIFY(!handler.loadImportFile(m_folder.filePath(u"none.ini"_s)));
        QVERIFY(handler.errorString().contains(u"does not exist"_s));
        QVERIFY(!handler.loadImportFile(m_folder.path()));
        QVERIFY(!handler.applyImportFile());
    }

    void applies_data()
    {
        QTest::addColumn<QByteArray>("actions");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("line0");
        QTest::addColumn<QString>("line1");
        const QString ours = u"1000=device1 2000=ours1 3000=last1"_s;
        const QString theirs = u"1000=device1 2000=theirs1 2001=more1 3000=last1"_s;
        QTest::newRow("import") << QByteArray("a=import 1:0 to 0") << QString() << theirs
                                << QString();
        QTest::newRow("upper case, blanks")
            << QByteArray("a=IMPORT  0x1:0   TO 0") << QString() << theirs << QString();
        QTest::newRow("offset") << QByteArray("a=import 1:0 to 1 offset 0x1000") << QString()
                                << ours << u"3000=theirs1 3001=more1"_s;
        QTest::newRow("delete the rest")
            << QByteArray("a=import 1:0 to 0\n[Options]\ndelete_objects=true") << QString()
            << u"2000=theirs1 2001=more1"_s << QString();
        QTest::newRow("line that isn't there")
            << QByteArray("a=import 1:5 to 0") << QString() << ours << QString();
        QTest::newRow("unknown project")
            << QByteArray("a=import 7:0 to 0") << u"import 7:0 to 0 failed"_s << ours << QString();
        QTest::newRow("project that isn't one")
            << QByteArray("a=import 2:0 to 0") << u"import 2:0 to 0 failed"_s << ours << QString();
        QTest::newRow("unknown target")
            << QByteArray("a=import 1:0 to 9") << u"import 1:0 to 9 failed"_s << ours << QString();
        QTest::newRow("beyond the end")
            << QByteArray("a=import 3:0 to 0 offset 0x1000")
            << u"import 3:0 to 0 offset 0x1000 failed"_s << ours << QString();
        QTest::newRow("copy") << QByteArray("a=copy 0:0x1000-0x2fff to 1 offset 1") << QString()
                              << ours << u"1001=device1 2001=ours1"_s;
        QTest::newRow("copy over itself")
            << QByteArray("a=copy 0:0x1000-0x2fff to 0 offset 4096") << QString()
            << u"1000=device1 2000=device1 3000=ours1"_s << QString();
        QTest::newRow("copy one") << QByteArray("a=copy 0:0x2000 to 1") << QString() << ours
                                  << u"2000=ours1"_s;
        QTest::newRow("copy nothing")
            << QByteArray("a=copy 0:0x4000 to 1") << QString() << ours << QString();
        QTest::newRow("delete") << QByteArray("a=delete 0:0x2000-0x3000") << QString()
                                << u"1000=device1"_s << QString();
        QTest::newRow("imports first")
            << QByteArray("a=delete 0:0x2000\nb=import 1:0 to 0") << QString()
            << u"1000=device1 2001=more1 3000=last1"_s << QString();
        QTest::newRow("unknown action") << QByteArray("a=delete 0:0x2000\nb=move 0:1 to 2")
                                        << u"move 0:1 to 2 failed"_s << ours << QString();
        QTest::newRow("stops at the first")
            << QByteArray("a=delete 0:0x2000\nb=copy 5:0x1000 to 0\nc=delete 0:0x1000")
            << u"copy 5:0x1000 to 0 failed"_s << u"1000=device1 3000=last1"_s << QString();
    }

    void applies()
    {
        QFETCH(QByteArray, actions);
        QFETCH(QString, error);
        const auto store = ImportSupport::newStore();
        QVERIFY(store->addNode(1, {}));
        add(*store, 0x1000, u"device"_s);
        add(*store, 0x2000, u"ours"_s);
        add(*store, 0x3000, u"last"_s);
        store->setBlockUpdates(true);
        ImportHandler handler(store.get());
        const QString path = ImportSupport::write(
            m_folder, u"a.ini"_s,
            "[Projects]\np1=other.vxmp\np0x2=a.ini\nx3=top.vxmp\np4=none.vxmp\n[Actions]\n" +
                actions + '\n');
        QVERIFY2(handler.loadImportFile(path), qPrintable(handler.errorString()));
        QCOMPARE(handler.applyImportFile(), error.isEmpty());
        QCOMPARE(handler.errorString(), error);
        QTEST(contentOf(*store, 0), "line0");
        QTEST(contentOf(*store, 1), "line1");
    }

    void unreadableActions_data()
    {
        QTest::addColumn<QString>("action");
        for (const char *action : {"delete",
                                   "delete 0",
                                   "delete 0:",
                                   "delete :1",
                                   "delete 0:5-2",
                                   "delete 256:1",
                                   "delete 0:0x10000",
                                   "delete 0:1 to 2",
                                   "delete 0:-1",
                                   "copy 0:1",
                                   "copy 0:1 to",
                                   "copy 0:1 to x",
                                   "copy 0:1 at 2",
                                   "copy 0:1 to 0 offset",
                                   "copy 0:1 to 0 offset x",
                                   "copy 0:1 to 0 shift 1",
                                   "copy 0:1 to 0 offset 0x10000",
                                   "import 1 to 0",
                                   "import 1:0",
                                   "import a:0 to 0",
                                   "import 1:300 to 0",
                                   "to",
                                   "0"})
            QTest::newRow(action) << QString::fromLatin1(action);
    }

    void unreadableActions()
    {
        QFETCH(QString, action);
        const auto store = ImportSupport::newStore();
        add(*store, 0x1000, u"device"_s);
        ImportHandler handler(store.get());
        QVERIFY(handler.loadImportFile(ImportSupport::write(
            m_folder, u"b.ini"_s,
            "[Projects]\np1=other.vxmp\n[Actions]\na=delete 0:0x1000\nb=" + action.toUtf8())));
        QVERIFY(!handler.applyImportFile());
        QCOMPARE(handler.errorString(), action + u" failed"_s);
        QCOMPARE(contentOf(*store, 0), u"1000=device1"_s);
    }

    void noProjects()
    {
        const auto store = ImportSupport::newStore();
        ImportHandler handler(store.get());
        QVERIFY(handler.loadImportFile(ImportSupport::write(
            m_folder, u"c.ini"_s, "[Projects]\np1=none.vxmp\n[Actions]\na=delete 0:0x1000\n")));
        QVERIFY(!handler.applyImportFile());
        QCOMPARE(handler.errorString(), u"No projects found."_s);
    }

private:
    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestImportHandler)
#include "tst_importhandler.moc"
