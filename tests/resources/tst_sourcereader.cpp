#include "resources/builder/sourcereader.h"
#include "tests/support/records.h"
#include "tests/support/storefile.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;
using namespace TestRecords;

/// The text sources of reference data: what they mean, and that a mistake is told with its place.
class TestSourceReader : public QObject
{
    Q_OBJECT

private slots:
    void errorsNameFileAndLine_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("part");

        const auto row = [](const char *name, const QByteArray &text, int line, const char *part) {
            QTest::newRow(name) << text << line << QString::fromUtf8(part);
        };
        // A variable at line 1 and what follows it.
        const auto sub = [&row](const char *name, const QByteArray &words, const char *part) {
            row(name, "object 0x2000 VAR \"V\"\nsub 0 " + words + "\n", 2, part);
        };
        row("directive", "\n# note\nobjekt 0x1000\n", 3, "unknown directive 'objekt'");
        row("index", "object 0x10000 VAR \"V\"", 1, "no object index");
        row("index zero", "object 0 VAR \"V\"", 1, "no object index");
        row("object type", "object 0x1000 VARIABLE \"V\"", 1, "unknown object type");
        row("category", "object 0x1000 VAR \"V\" needed", 1, "'needed' is not one of mandatory");
        row("object key", "object 0x1000 VAR \"V\" colour=red", 1, "unknown key 'colour'");
        row("no name", "object 0x1000 VAR mandatory", 1, "the name is missing");
        row("object twice",
            "object 0x1000 VAR \"V\"\nsub 0 UNSIGNED8 ro\nobject 0x1000 VAR \"V\"\nsub 0 REAL32 ro",
            3, "object 0x1000 stands twice");
        row("no model", "object 0x1401 like 0x1400 \"P\"", 1, "no object '0x1400'");
        row("no subindex 0",
            "general a = 1\nobject 0x1018 RECORD \"I\"\nsub 1 UNSIGNED32 ro \"V\"\n", 2,
            "object 0x1018: subindex 0 is missing");
        row("variable with subs", "object 0x2000 VAR \"V\"\nsub 0..1 UNSIGNED8 ro", 1,
            "subindex 0 only");
        row("array of two types",
            "object 0x2000 ARRAY \"A\"\nsub 0 UNSIGNED8 const \"N\" default=2\n"
            "sub 1 UNSIGNED8 ro \"a\"\nsub 2 UNSIGNED16 ro \"b\"",
            1, "one data type");
        row("wrong count",
            "object 0x2000 RECORD \"A\"\nsub 0 UNSIGNED8 const \"N\" default=2\n"
            "sub 1 UNSIGNED8 ro \"a\"",
            1, "subindex 0 says '2', but the highest subindex is 1");
        row("nothing counted", "object 0x2000 RECORD \"A\"\nsub 0 UNSIGNED8 rw \"N\"", 1,
            "no subindex besides 0");
        row("sub without object", "sub 0 UNSIGNED8 ro", 1, "must follow an object");
        row("sub name", "object 0x2000 RECORD \"A\"\nsub 1 UNSIGNED8 ro", 2, "the name is missing");
        row("sub twice", "object 0x2000 VAR \"V\"\nsub 0 UNSIGNED8 ro\nsub 0 UNSIGNED8 ro", 3,
            "subindex 0 stands twice");
        row("range", "object 0x2000 VAR \"V\"\nsub 8..1 UNSIGNED8 ro", 2, "no range");
        row("range end", "object 0x2000 VAR \"V\"\nsub 1..256 UNSIGNED8 ro", 2, "no range");
        sub("type", "UNSIGNED9000 ro", "unknown data type");
        sub("type by number", "5 ro", "unknown data type '5'");
        sub("access", "UNSIGNED8 r", "unknown access type 'r'");
        sub("access missing", "UNSIGNED8", "access type are missing");
        sub("third word", "UNSIGNED8 ro rw", "'rw' is out of place");
        sub("key", "UNSIGNED8 ro dflt=1", "unknown key 'dflt'");
        sub("key twice", "UNSIGNED8 ro default=1 default=2", "key 'default' stands twice");
        sub("flag", "UNSIGNED8 ro nv=1", "nv: '1' is neither yes nor no");
        sub("mapping", "UNSIGNED8 ro map=1", "map: '1' is not one of no, yes");
        sub("no number", "UNSIGNED8 ro default=ten", "no decimal or 0x number");
        sub("octal", "UNSIGNED8 ro default=010", "no decimal or 0x number");
        sub("overflow", "UNSIGNED8 ro default=256", "out of the range of UNSIGNED8");
        sub("overflow 64", "UNSIGNED64 ro default=0x10000000000000000", "out of the range");
        sub("negative", "UNSIGNED16 ro default=-1", "out of the range");
        sub("overflow signed", "INTEGER24 ro default=8388608", "out of the range of INTEGER24");
        sub("overflow bool", "BOOLEAN ro default=2", "out of the range");
        sub("overflow real", "REAL32 ro default=1e39", "too large for REAL32");
        sub("node-ID in lower case", "UNSIGNED32 ro default=$nodeid+0x80", "like $NODEID+0x180");
        sub("node-ID overflow", "UNSIGNED16 ro default=$NODEID+0x10000", "out of the range");
        sub("limits", "INTEGER8 ro low=-129 high=0", "limit '-129'");
        sub("limits turned", "UNSIGNED8 ro low=9 high=8", "low is above high");
        sub("beyond limit", "UNSIGNED8 ro default=9 low=0 high=8", "outside of its limits");
        sub("limits of a text", "VISIBLE_STRING ro low=0 high=1", "has no limits");
        sub("too long", "VISIBLE_STRING ro default=abcd size=3", "longer than its size 3");
        sub("writable string", "VISIBLE_STRING rw default=a", "needs var=");
        sub("constant written", "UNSIGNED8 rw impl=const", "does not go with access rw");
        sub("no variable", "UNSIGNED8 rw impl=variable", "needs var=");
        sub("variable name", "UNSIGNED8 rw var=\"a b\"", "holds a blank");
        sub("open quote", "UNSIGNED8 rw denotation=\"a", "closing quote is missing");
        sub("glued quote", "UNSIGNED8 rw denotation=\"a\"b", "blank is missing");
        sub("escape", "UNSIGNED8 rw denotation=\"\\a\"", "backslash");
        row("setting", "general key value", 1, "KEY = VALUE");
        row("setting twice", "general a = 1\nmisc a = 1\ngeneral a = 2", 3, "'a' stands twice");
        row("text of nothing", "general a = 1\n| more", 2, "follows nothing");
        row("UDS", "uds 0x100", 1, "no service identifier");
        row("UDS twice", "uds 0x10\nuds 16", 2, "service 0x10 stands twice");
        row("line", "line 2\nline 1", 2, "no line number, or not the next one");
        row("encoding", "general a = 1\ngeneral b = \xff", 2, "not UTF-8");
        row("control character", QByteArray("general a = 1\0", 14), 1, "control character");
    }
    void errorsNameFileAndLine()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, line);
        QFETCH(QString, part);
        const SourceResult result = SourceReader::readText(text, u"dir/source.qfs"_s);
        QVERIFY(!result.errors.isEmpty());
        const QString place = u"dir/source.qfs:%1: "_s.arg(line);
        QVERIFY2(result.errors.first().startsWith(place), qPrintable(result.errors.first()));
        QVERIFY2(result.errors.first().contains(part), qPrintable(result.errors.join(u'\n')));
    }

    void faultyLineDoesNotHideOthers()
    {
        const SourceResult result = SourceReader::readText("object 0x2000 NONE \"A\"\n"
                                                           "sub 0 UNSIGNED8 ro\n"
                                                           "object 0x2001 VAR \"B\"\n"
                                                           "sub 0 UNSIGNED8 ro default=300\n"
                                                           "general x\n",
                                                           u"f"_s);
        QCOMPARE(result.errors.size(), 3);
        QVERIFY(result.errors.at(0).startsWith("f:1:"_L1));
        QVERIFY(result.errors.at(1).startsWith("f:4:"_L1));
        QVERIFY(result.errors.at(2).startsWith("f:5:"_L1));
    }

    void errorsAreLimited()
    {
        const SourceResult result =
            SourceReader::readText(QByteArray("nonsense\n").repeated(5000), u"f"_s);
        QCOMPARE(result.errors.size(), 51);
        QCOMPARE(result.errors.last(), u"f:51: too many errors"_s);
    }

    void readsRecord()
    {
        const auto project =
            read("object 0x2100 RECORD \"Say \\\"it\\\"\" conditional class=io fw=yes "
                 "meta:eds_define=big\n"
                 "sub 0 UNSIGNED8 const \"N\" default=2   # a comment\n"
                 "sub 1 INTEGER16 rww \"a = b\" default=-3 current=0x10 low=-5 high=32 "
                 "map=rpdo var=p.x[1] category=mandatory eds=always allow=rww,rw "
                 "refuse=read,write denotation=d nv=yes shared=yes dcf=yes cyclic=yes meta:k=v\n"
                 "sub 2 UNSIGNED32 rw \"#2\" default=$NODEID+0x180 eds=never\n");
        QCOMPARE(project.lines.size(), 1);
        QCOMPARE(project.lines.first().objects.size(), 1);
        const DataSource::Object &object = project.lines.first().objects.first();
        QCOMPARE(object.index, quint16(0x2100));
        const Records::Index expected{.name = u"Say \"it\""_s,
                                      .objecttype = CANopen::RECORD,
                                      .category = CANopen::Conditional,
                                      .deviceclass = u"io"_s,
                                      .fwsupported = true,
                                      .metadata = {{u"eds_define"_s, u"big"_s}}};
        QCOMPARE(valuesOf(object.data), valuesOf(expected));
        const Records::SubIndex one{.name = u"a = b"_s,
                                    .datatype = CAN::INTEGER16,
                                    .accesstype = u"rww"_s,
                                    .defaultvalue = u"-3"_s,
                                    .currentvalue = u"0x10"_s,
                                    .pdomapping = PDOMapping::RPDO,
                                    .lowlimit = u"-5"_s,
                                    .uplimit = u"32"_s,
                                    .defaultineds = true,
                                    .limitineds = true,
                                    .refuseread = true,
                                    .refusewrite = true,
                                    .dcfcomponent = true,
                                    .cyclicread = true,
                                    .allowedaccesstypes = u"rww,rw"_s,
                                    .implementation = CANopen::Variable,
                                    .varname = u"p.x[1]"_s,
                                    .category = CANopen::Mandatory,
                                    .writedefaulttoeds = 2,
                                    .wizardsource = object.subIndices.value(1).wizardsource,
                                    .sharedlines = true,
                                    .denotation = u"d"_s,
                                    .nvstorage = true,
                                    .metadata = {{u"k"_s, u"v"_s}}};
        QCOMPARE(valuesOf(object.subIndices.value(1)), valuesOf(one));
        const auto two = object.subIndices.value(2);
        QCOMPARE(two.name + two.defaultvalue, u"#2$NODEID+0x180"_s);
        QCOMPARE(two.writedefaulttoeds, quint8(0));
    }

    void fillsInByDataType()
    {
        const auto project =
            read("object 0x2000 VAR \"Count\"\nsub 0 INTEGER16 rw\n"
                 "object 0x2001 VAR \"Text\"\nsub 0 VISIBLE_STRING const default=häuser\n"
                 "object 0x2002 VAR \"None\"\nsub 0 UNSIGNED8 rw var=\" \"\n");
        const auto &objects = project.lines.first().objects;
        QCOMPARE(objects.size(), 3);
        const auto count = objects.at(0).subIndices.value(0);
        QCOMPARE(count.name, u"Count"_s);
        QCOMPARE(objects.at(0).data.datatype, quint16(CAN::INTEGER16));
        QCOMPARE(count.implementation, quint8(CANopen::ManagedVariable));
        QCOMPARE(count.lowlimit, u"-32768"_s);
        QCOMPARE(count.uplimit, u"32767"_s);
        QVERIFY(!count.limitineds && !count.defaultineds);
        const auto text = objects.at(1).subIndices.value(0);
        QCOMPARE(text.implementation, quint8(CANopen::ManagedConst));
        QCOMPARE(text.size, 7u); // bytes of UTF-8
        QVERIFY(text.lowlimit.isEmpty());
        QCOMPARE(objects.at(2).subIndices.value(0).implementation,
                 quint8(CANopen::ManagedVariable));
        QCOMPARE(objects.at(2).subIndices.value(0).varname, u" "_s);
    }

    void copiesAndRanges()
    {
        const auto project = read("object 0x2000 ARRAY \"A\"\n| about A\n"
                                  "sub 0 UNSIGNED8 const \"N\" default=12\n"
                                  "sub 1..12 UNSIGNED32 rw \"Entry {n} {m}\" "
                                  "default=0x6411{n+4:02x}10 var=v[{n-1}]\n"
                                  "object 0x2001 like 0x2000 \"B\"\n"
                                  "sub 11..12 \"Last\" default={n}\n"
                                  "object 0x2002 VAR \"C\"\nsub 0 UNSIGNED8 ro default=1\n"
                                  "object 0x2003 like 0x2002 \"D\" mandatory\n");
        const auto &objects = project.lines.first().objects;
        QCOMPARE(objects.size(), 4);
        const auto twelve = objects.at(0).subIndices.value(12);
        QCOMPARE((QStringList{twelve.name, twelve.defaultvalue, twelve.varname}),
                 (QStringList{"Entry 12 {m}", "0x64111010", "v[11]"}));
        QCOMPARE(objects.at(1).index, quint16(0x2001));
        QCOMPARE(
            (QStringList{objects.at(1).data.description, objects.at(1).subIndices.value(10).name,
                         objects.at(1).subIndices.value(12).name,
                         objects.at(1).subIndices.value(12).defaultvalue,
                         objects.at(1).subIndices.value(12).accesstype,
                         objects.at(3).subIndices.value(0).name}),
            (QStringList{"about A", "Entry 10 {m}", "Last", "12", "rw", "D"}));
        QCOMPARE(objects.at(3).data.category, quint16(CANopen::Mandatory));
        QCOMPARE(objects.at(2).data.category, quint16(CANopen::Optional));
    }

    void textsOfSeveralLines()
    {
        const auto project = read("general user_defines =\r\n"
                                  "| #define A \"x\"  \r\n"
                                  "|\r\n"
                                  "|   /* b */\r\n"
                                  "general spaced = \"  b \\n\"\r\n"
                                  "object 0x2000 VAR \"V\"\r\n"
                                  "| of the object\r\n"
                                  "sub 0 UNSIGNED8 ro\r\n"
                                  "| of the\r\n"
                                  "| subindex {n}\r\n");
        QCOMPARE(project.general.value(u"user_defines"_s), u"#define A \"x\"  \n\n  /* b */"_s);
        QCOMPARE(project.general.value(u"spaced"_s), u"  b \n"_s);
        const DataSource::Object &object = project.lines.first().objects.first();
        QCOMPARE(object.data.description, u"of the object"_s);
        QCOMPARE(object.subIndices.first().description, u"of the\nsubindex 0"_s);
    }

    void settingsOfIncludedFiles()
    {
        QTemporaryDir folder;
        writeFile(folder.filePath(u"common.qfs"_s), "general a = 1\ngeneral b = 2\nmisc m = 3\n");
        const QString path = folder.filePath(u"sub.qfs"_s);
        const SourceResult result =
            SourceReader::readText("include \"common.qfs\"\ngeneral c = 4\ngeneral a = 5\n", path);
        QCOMPARE(result.errors, QStringList());
        QCOMPARE(result.project.general.keys(), QStringList({u"a"_s, u"b"_s, u"c"_s}));
        QCOMPARE(result.project.general.value(u"a"_s), u"5"_s);
        QCOMPARE(result.project.misc.value(u"m"_s), u"3"_s);
        QCOMPARE(result.files.size(), 2);
    }

    void includeErrors()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"loop.qfs"_s);
        writeFile(path, "\ninclude \"loop.qfs\"\n");
        const SourceResult loop = SourceReader::readFile(path);
        QCOMPARE(loop.errors.size(), 1);
        QVERIFY(loop.errors.first().startsWith(path + ":2: "_L1));

        const SourceResult missing = SourceReader::readText("\n\ninclude \"none.qfs\"\n", path);
        QCOMPARE(missing.errors.size(), 1);
        QVERIFY(missing.errors.first().startsWith(path + ":3: can't read "_L1));
        QVERIFY(SourceReader::readFile(folder.path()).errors.value(0).contains(folder.path()));
    }

    void linesAndUds()
    {
        const auto project = read("line 0 \"First\" prefix=a_ master=yes\n"
                                  "uds 0x10 sessions=1,2 levels=3 authentication=\"r w\"\n"
                                  "object 0x2000 VAR \"V\"\nsub 0 UNSIGNED8 ro\n"
                                  "line 1 \"Second\"\n"
                                  "description VendorName = x\n"
                                  "uds 0x11 active=no\n"
                                  "object 0x2000 VAR \"W\"\nsub 0 UNSIGNED16 ro\n");
        QCOMPARE(project.lines.size(), 2);
        const DataSource::Line &first = project.lines.at(0);
        const DataSource::Line &second = project.lines.at(1);
        QCOMPARE(first.node.name, u"First"_s);
        QCOMPARE(first.node.prefix, u"a_"_s);
        QVERIFY(first.node.ismaster);
        QCOMPARE(
            (QStringList{first.udsServices.first().sessions, first.udsServices.first().userLevels,
                         first.udsServices.first().authentication}),
            (QStringList{"1,2", "3", "r w"}));
        QCOMPARE(second.number, quint8(1));
        QCOMPARE(second.description.value(u"VendorName"_s), u"x"_s);
        QVERIFY(!second.udsServices.first().active);
        QCOMPARE(first.objects.size(), 1);
        QCOMPARE(second.objects.first().data.name, u"W"_s);
    }

private:
    static DataSource::Project read(const QByteArray &text)
    {
        const SourceResult result = SourceReader::readText(text, u"text"_s);
        if (!result.errors.isEmpty())
            qWarning() << result.errors;
        return result.project;
    }
};

QTEST_GUILESS_MAIN(TestSourceReader)
#include "tst_sourcereader.moc"
