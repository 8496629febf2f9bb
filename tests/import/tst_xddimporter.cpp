#include "importsupport.h"

#include "import/xddimporter.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

using Entry = ObjectDataBase::SUBINDEX_DATA_T;

namespace {

QByteArray document(const QByteArray &objects)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ISO15745ProfileContainer>"
           "<ISO15745Profile><ProfileBody><DeviceIdentity><vendorName>V</vendorName>"
           "<productName> Node </productName></DeviceIdentity></ProfileBody></ISO15745Profile>\n"
           "<CANopenFDObjectList>" +
           objects + "</CANopenFDObjectList></ISO15745ProfileContainer>\n";
}

QByteArray object(const QByteArray &attributes)
{
    return "<CANopenFDDataObject index=\"2000\" name=\"Speed\" objectType=\"7\" "
           "dataType=\"0006\"><CANopenFDDataElement subIndex=\"00\" name=\"Value\" " +
           attributes + "/></CANopenFDDataObject>";
}

} // namespace

class TestXddImporter : public QObject
{
    Q_OBJECT

private slots:
    void readsObjects()
    {
        const QTemporaryDir folder;
        const auto store = ImportSupport::newStore();
        XDDImporter importer;
        ImportSupport::run(
            importer, *store,
            ImportSupport::write(
                folder, u"a.xdd"_s,
                document(object("dataType=\"06\" defaultValue=\"5\" lowLimit=\"0\" "
                                "highLimit=\"9\" accessUSDO=\"rw\" accessPDO=\"tr\"") +
                         "<CANopenFDDataObject index=\"0x2001\" objectType=\"8\">"
                         "<CANopenFDDataElement subIndex=\"0a\" name=\"Ten\" dataType=\"09\" "
                         "defaultValue=\"a &lt; &#228;\"/></CANopenFDDataObject>"
                         "<CANopenFDDataObject index=\"C000\" name=\"Out\" objectType=\"7\"/>"
                         "<CANopenFDDataObject index=\"xyz\" name=\"Bad\" objectType=\"7\">"
                         "<CANopenFDDataElement subIndex=\"00\" dataType=\"05\"/>"
                         "</CANopenFDDataObject>")));
        QCOMPARE(importer.errorString(), QString());
        QCOMPARE(importer.messages().size(), 2);
        QVERIFY(importer.messages().first().contains(u"a.xdd:3: 0x2001 has no name."_s));
        QVERIFY(importer.messages().last().contains(u"a.xdd:3: The object index 'xyz'"_s));
        QCOMPARE(store->getDescriptionSetting(u"ProductName"_s), u"Node"_s);
        QCOMPARE(store->getIndices(0), (QList<quint16>{0x2000, 0x2001}));
        const auto speed = ImportSupport::object(*store, 0x2000);
        QCOMPARE(speed.name, u"Speed"_s);
        QCOMPARE(speed.datatype, quint16(6));
        const Entry value = ImportSupport::entry(*store, 0x2000);
        QVERIFY(value.limitineds && value.defaultineds && value.writedefaulttoeds == 1);
        QCOMPARE(value.lowlimit + value.defaultvalue + value.uplimit, u"059"_s);
        QCOMPARE(ImportSupport::object(*store, 0x2001).name, u"unnamed object"_s);
        QCOMPARE(ImportSupport::object(*store, 0x2001).datatype, quint16(5));
        const Entry text = ImportSupport::entry(*store, 0x2001, 10);
        QCOMPARE(text.defaultvalue, u"a < \u00e4"_s);
        QCOMPARE(text.implementation, quint8(CANopen::ManagedConst));
        QCOMPARE(text.size, 5U);
    }

    void readsAccess_data()
    {
        QTest::addColumn<QByteArray>("attributes");
        QTest::addColumn<QString>("access");
        QTest::addColumn<int>("mapping");
        QTest::addColumn<int>("shown");
        const auto row = [](const QByteArray &attributes, const char *access, int mapping,
                            int shown = 0) {
            QTest::newRow(attributes.isEmpty() ? "none" : attributes.constData())
                << attributes << QString::fromLatin1(access) << mapping << shown;
        };
        row("", "ro", 0);
        row("accessUSDO=\"ro\" accessPDO=\"t\"", "ro", 4);
        row("accessUSDO=\"wo\" accessPDO=\"r\"", "wo", 3);
        row("accessUSDO=\"rw\" accessPDO=\"no\"", "rw", 0);
        row("accessUSDO=\"rw\" accessPDO=\"t\"", "rwr", 4);
        row("accessUSDO=\"rw\" accessPDO=\"r\"", "rww", 3);
        row("accessUSDO=\"rw\" accessPDO=\"tr\"", "rw", 1);
        row("accessUSDO=\"rw\" accessPDO=\"rw\"", "rw", 1);
        row("accessUSDO=\"rw\" accessPDO=\"wo\"", "rw", 3);
        row("accessUSDO=\"rw\" accessPDO=\"else\"", "rw", 0);
        row("accessUSDO=\"rw\" accessPDO=\"tr\" modification=\"true\"", "rw", 1);
        row("accessUSDO=\"rw\" accessPDO=\"tr\" modification=\"false\"", "const", 0, 1);
        row("accessUSDO=\"ro\" accessPDO=\"t\" modification=\"const\"", "const", 4);
        row("defaultValue=\"1\"", "ro", 0, 1);
    }

    void readsAccess()
    {
        QFETCH(QByteArray, attributes);
        const QTemporaryDir folder;
        const auto store = ImportSupport::newStore();
        XDDImporter importer;
        ImportSupport::run(importer, *store,
                           ImportSupport::write(folder, u"a.xdd"_s,
                                                document(object("dataType=\"05\" " + attributes))));
        const Entry entry = ImportSupport::entry(*store, 0x2000);
        QTEST(entry.accesstype, "access");
        QTEST(int(entry.pdomapping.toUInt()), "mapping");
        QTEST(int(entry.writedefaulttoeds), "shown");
        QCOMPARE(entry.lowlimit + entry.uplimit, u"0255"_s);
        QVERIFY(!entry.limitineds);
    }

    void readsUtf16()
    {
        const QTemporaryDir folder;
        const auto store = ImportSupport::newStore();
        const QString text =
            QChar(QChar::ByteOrderMark) +
            QString::fromUtf8(document(object("dataType=\"05\"")).replace("utf-8", "utf-16"));
        XDDImporter importer;
        ImportSupport::run(
            importer, *store,
            ImportSupport::write(folder, u"a.xdd"_s,
                                 {reinterpret_cast<const char *>(text.utf16()), text.size() * 2}));
        QCOMPARE(importer.errorString(), QString());
        QCOMPARE(store->getIndices(0), QList<quint16>{0x2000});
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("error");
        const QByteArray good = document(object("dataType=\"05\""));
        QTest::newRow("classical") << QByteArray(good).replace("CANopenFDData", "CANopenData")
                                   << u"a.xdd has is not in CiA 1311 XDD format."_s;
        QTest::newRow("no XML") << QByteArray("[FileInfo]\nFileName=a.eds\n")
                                << u"a.xdd has is not in CiA 1311 XDD format."_s;
        QTest::newRow("cut off") << good.left(good.size() - 30)
                                 << u": The file ends in the middle of the document."_s;
        QTest::newRow("damaged") << QByteArray(good).replace("</CANopenFDObjectList>", "</oops>")
                                 << u"a.xdd:3:"_s;
        QTest::newRow("damaged in words")
            << QByteArray(good).replace("</CANopenFDObjectList>", "</oops>")
            << u": The file is no well-formed XML from here on."_s;
        QByteArray bomb = "<!DOCTYPE a [<!ENTITY e0 \"lol\">";
        for (int i = 1; i < 30; ++i)
            bomb += "<!ENTITY e" + QByteArray::number(i) + " \"" +
                    QByteArray("&e" + QByteArray::number(i - 1) + ";").repeated(10) + "\">";
        QTest::newRow("entity bomb") << bomb + "]><a>&e29;</a>" << u"DTD"_s;
        QTest::newRow("deep") << QByteArray("<a>").repeated(5000000) << u"inside each other"_s;
        QTest::newRow("deep product name")
            << "<x><productName>" + QByteArray("<a>").repeated(5000000) << u"a.xdd:"_s;
        QByteArray attributes;
        for (int i = 0; i < 1000000; ++i)
            attributes += "a" + QByteArray::number(i) + "='>' ";
        QTest::newRow("attributes") << "<a " + attributes + "/>" << u"more than 64 attributes"_s;
        const QByteArray longText(2 * 1024 * 1024, 'x');
        QTest::newRow("long name") << document(object("unit=\"" + longText + '"')) << u"or 1 MB"_s;
        QTest::newRow("long product name")
            << QByteArray(good).replace(" Node ", longText) << u"or 1 MB"_s;
        QTest::newRow("large") << QByteArray(200 * 1024 * 1024, ' ') << u"larger than 64 MB"_s;
    }

    void refuses()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, error);
        const QTemporaryDir folder;
        const auto store = ImportSupport::newStore();
        const QString before = store->contentHash();
        XDDImporter importer;
        QSignalSpy errors(&importer, &BaseDataImporter::importError);
        QElapsedTimer timer;
        timer.start();
        ImportSupport::run(importer, *store, ImportSupport::write(folder, u"a.xdd"_s, file));
        QVERIFY2(importer.errorString().contains(error), qPrintable(importer.errorString()));
        QVERIFY(timer.elapsed() < 20000);
        QTRY_VERIFY(!errors.isEmpty());
        QCOMPARE(store->contentHash(), before);
    }
};

QTEST_GUILESS_MAIN(TestXddImporter)
#include "tst_xddimporter.moc"
