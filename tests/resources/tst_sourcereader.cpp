#include "resources/builder/sourcereader.h"

#include <QTemporaryDir>
#include <QtTest>

/// The text sources of reference data: what they mean, and that a mistake is told with its place.
class TestSourceReader : public QObject
{
    Q_OBJECT

private slots:
    void errorsNameFileAndLine_data();
    void errorsNameFileAndLine();
    void faultyLineDoesNotHideOthers();
    void errorsAreLimited();
    void readsRecord();
    void fillsInByDataType();
    void copiesAndRanges();
    void textsOfSeveralLines();
    void settingsOfIncludedFiles();
    void includeErrors();
    void linesAndUds();

private:
    static DataSource::Project read(const QByteArray &text);
};

DataSource::Project TestSourceReader::read(const QByteArray &text)
{
    const SourceResult result = SourceReader::readText(text, QStringLiteral("text"));
    if (!result.errors.isEmpty())
        qWarning() << result.errors;
    return result.project;
}

void TestSourceReader::errorsNameFileAndLine_data()
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
        "object 0x1000 VAR \"V\"\nsub 0 UNSIGNED8 ro\nobject 0x1000 VAR \"V\"\nsub 0 REAL32 ro", 3,
        "object 0x1000 stands twice");
    row("no model", "object 0x1401 like 0x1400 \"P\"", 1, "no object '0x1400'");
    row("no subindex 0", "general a = 1\nobject 0x1018 RECORD \"I\"\nsub 1 UNSIGNED32 ro \"V\"\n",
        2, "object 0x1018: subindex 0 is missing");
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

void TestSourceReader::errorsNameFileAndLine()
{
    QFETCH(QByteArray, text);
    QFETCH(int, line);
    QFETCH(QString, part);
    const SourceResult result = SourceReader::readText(text, QStringLiteral("dir/source.qfs"));
    QVERIFY(!result.errors.isEmpty());
    const QString place = QStringLiteral("dir/source.qfs:%1: ").arg(line);
    QVERIFY2(result.errors.first().startsWith(place), qPrintable(result.errors.first()));
    QVERIFY2(result.errors.first().contains(part), qPrintable(result.errors.join(u'\n')));
}

void TestSourceReader::faultyLineDoesNotHideOthers()
{
    const SourceResult result = SourceReader::readText("object 0x2000 NONE \"A\"\n"
                                                       "sub 0 UNSIGNED8 ro\n"
                                                       "object 0x2001 VAR \"B\"\n"
                                                       "sub 0 UNSIGNED8 ro default=300\n"
                                                       "general x\n",
                                                       QStringLiteral("f"));
    QCOMPARE(result.errors.size(), 3);
    QVERIFY(result.errors.at(0).startsWith(QLatin1String("f:1:")));
    QVERIFY(result.errors.at(1).startsWith(QLatin1String("f:4:")));
    QVERIFY(result.errors.at(2).startsWith(QLatin1String("f:5:")));
}

void TestSourceReader::errorsAreLimited()
{
    const SourceResult result =
        SourceReader::readText(QByteArray("nonsense\n").repeated(5000), QStringLiteral("f"));
    QCOMPARE(result.errors.size(), 51);
    QCOMPARE(result.errors.last(), QStringLiteral("f:51: too many errors"));
}

void TestSourceReader::readsRecord()
{
    const auto project =
        read("object 0x2100 RECORD \"Say \\\"it\\\"\" conditional class=io fw=yes "
             "meta:eds_define=big\n"
             "sub 0 UNSIGNED8 const \"N\" default=2   # a comment\n"
             "sub 1 INTEGER16 rww \"a = b\" default=-3 current=0x10 low=-5 high=32 "
             "map=rpdo var=p.x[1] category=mandatory eds=always allow=rww,rw "
             "refuse=read,write denotation=d nv=yes shared=yes dcf=yes cyclic=yes "
             "meta:k=v\n"
             "sub 2 UNSIGNED32 rw \"#2\" default=$NODEID+0x180 eds=never\n");
    QCOMPARE(project.lines.size(), 1);
    QCOMPARE(project.lines.first().objects.size(), 1);
    const DataSource::Object &object = project.lines.first().objects.first();
    QCOMPARE(object.index, quint16(0x2100));
    QCOMPARE(object.data.name, QStringLiteral("Say \"it\""));
    QCOMPARE(object.data.category, quint16(CANopen::Conditional));
    QCOMPARE(object.data.objecttype, quint32(CANopen::RECORD));
    QCOMPARE(object.data.deviceclass, QStringLiteral("io"));
    QVERIFY(object.data.fwsupported);
    QCOMPARE(object.data.metadata.value(QStringLiteral("eds_define")), QStringLiteral("big"));

    const auto one = object.subIndices.value(1);
    QCOMPARE(one.name, QStringLiteral("a = b"));
    QCOMPARE(one.datatype, quint16(CAN::INTEGER16));
    QCOMPARE(one.accesstype, QStringLiteral("rww"));
    QCOMPARE(one.defaultvalue, QStringLiteral("-3"));
    QCOMPARE(one.currentvalue, QStringLiteral("0x10"));
    QCOMPARE(one.lowlimit, QStringLiteral("-5"));
    QCOMPARE(one.uplimit, QStringLiteral("32"));
    QVERIFY(one.pdomapping == PDOMapping::RPDO);
    QCOMPARE(one.varname, QStringLiteral("p.x[1]"));
    QCOMPARE(one.implementation, quint8(CANopen::Variable));
    QCOMPARE(one.category, quint8(CANopen::Mandatory));
    QCOMPARE(one.writedefaulttoeds, quint8(2));
    QCOMPARE(one.allowedaccesstypes, QStringLiteral("rww,rw"));
    QCOMPARE(one.denotation, QStringLiteral("d"));
    QVERIFY(one.refuseread && one.refusewrite && one.nvstorage && one.sharedlines &&
            one.dcfcomponent && one.cyclicread && one.defaultineds && one.limitineds);
    QCOMPARE(one.metadata.value(QStringLiteral("k")), QStringLiteral("v"));

    const auto two = object.subIndices.value(2);
    QCOMPARE(two.name, QStringLiteral("#2"));
    QCOMPARE(two.defaultvalue, QStringLiteral("$NODEID+0x180"));
    QCOMPARE(two.writedefaulttoeds, quint8(0));
}

void TestSourceReader::fillsInByDataType()
{
    const auto project =
        read("object 0x2000 VAR \"Count\"\nsub 0 INTEGER16 rw\n"
             "object 0x2001 VAR \"Text\"\nsub 0 VISIBLE_STRING const default=häuser\n"
             "object 0x2002 VAR \"None\"\nsub 0 UNSIGNED8 rw var=\" \"\n");
    const auto &objects = project.lines.first().objects;
    QCOMPARE(objects.size(), 3);
    const auto count = objects.at(0).subIndices.value(0);
    QCOMPARE(count.name, QStringLiteral("Count"));
    QCOMPARE(objects.at(0).data.datatype, quint16(CAN::INTEGER16));
    QCOMPARE(count.implementation, quint8(CANopen::ManagedVariable));
    QCOMPARE(count.lowlimit, QStringLiteral("-32768"));
    QCOMPARE(count.uplimit, QStringLiteral("32767"));
    QVERIFY(!count.limitineds && !count.defaultineds);
    const auto text = objects.at(1).subIndices.value(0);
    QCOMPARE(text.implementation, quint8(CANopen::ManagedConst));
    QCOMPARE(text.size, 7u); // bytes of UTF-8
    QVERIFY(text.lowlimit.isEmpty());
    QCOMPARE(objects.at(2).subIndices.value(0).implementation, quint8(CANopen::ManagedVariable));
    QCOMPARE(objects.at(2).subIndices.value(0).varname, QStringLiteral(" "));
}

void TestSourceReader::copiesAndRanges()
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
    QCOMPARE(twelve.name, QStringLiteral("Entry 12 {m}"));
    QCOMPARE(twelve.defaultvalue, QStringLiteral("0x64111010"));
    QCOMPARE(twelve.varname, QStringLiteral("v[11]"));
    QCOMPARE(objects.at(1).index, quint16(0x2001));
    QCOMPARE(objects.at(1).data.description, QStringLiteral("about A"));
    QCOMPARE(objects.at(1).subIndices.value(10).name, QStringLiteral("Entry 10 {m}"));
    QCOMPARE(objects.at(1).subIndices.value(12).name, QStringLiteral("Last"));
    QCOMPARE(objects.at(1).subIndices.value(12).defaultvalue, QStringLiteral("12"));
    QCOMPARE(objects.at(1).subIndices.value(12).accesstype, QStringLiteral("rw"));
    QCOMPARE(objects.at(3).subIndices.value(0).name, QStringLiteral("D"));
    QCOMPARE(objects.at(3).data.category, quint16(CANopen::Mandatory));
    QCOMPARE(objects.at(2).data.category, quint16(CANopen::Optional));
}

void TestSourceReader::textsOfSeveralLines()
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
    QCOMPARE(project.general.value(QStringLiteral("user_defines")),
             QStringLiteral("#define A \"x\"  \n\n  /* b */"));
    QCOMPARE(project.general.value(QStringLiteral("spaced")), QStringLiteral("  b \n"));
    const DataSource::Object &object = project.lines.first().objects.first();
    QCOMPARE(object.data.description, QStringLiteral("of the object"));
    QCOMPARE(object.subIndices.first().description, QStringLiteral("of the\nsubindex 0"));
}

void TestSourceReader::settingsOfIncludedFiles()
{
    QTemporaryDir folder;
    QFile common(folder.filePath(QStringLiteral("common.qfs")));
    QVERIFY(common.open(QIODevice::WriteOnly));
    common.write("general a = 1\ngeneral b = 2\nmisc m = 3\n");
    common.close();
    const QString path = folder.filePath(QStringLiteral("sub.qfs"));
    const SourceResult result =
        SourceReader::readText("include \"common.qfs\"\ngeneral c = 4\ngeneral a = 5\n", path);
    QCOMPARE(result.errors, QStringList());
    QCOMPARE(result.project.general.keys(),
             QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    QCOMPARE(result.project.general.value(QStringLiteral("a")), QStringLiteral("5"));
    QCOMPARE(result.project.misc.value(QStringLiteral("m")), QStringLiteral("3"));
    QCOMPARE(result.files.size(), 2);
}

void TestSourceReader::includeErrors()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("loop.qfs"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("\ninclude \"loop.qfs\"\n");
    file.close();
    const SourceResult loop = SourceReader::readFile(path);
    QCOMPARE(loop.errors.size(), 1);
    QVERIFY(loop.errors.first().startsWith(path + QLatin1String(":2: ")));

    const SourceResult missing = SourceReader::readText("\n\ninclude \"none.qfs\"\n", path);
    QCOMPARE(missing.errors.size(), 1);
    QVERIFY(missing.errors.first().startsWith(path + QLatin1String(":3: can't read ")));
    QVERIFY(SourceReader::readFile(folder.path()).errors.value(0).contains(folder.path()));
}

void TestSourceReader::linesAndUds()
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
    QCOMPARE(first.node.name, QStringLiteral("First"));
    QCOMPARE(first.node.prefix, QStringLiteral("a_"));
    QVERIFY(first.node.ismaster);
    QCOMPARE(first.udsServices.first().sessions, QStringLiteral("1,2"));
    QCOMPARE(first.udsServices.first().userLevels, QStringLiteral("3"));
    QCOMPARE(first.udsServices.first().authentication, QStringLiteral("r w"));
    QCOMPARE(second.number, quint8(1));
    QCOMPARE(second.description.value(QStringLiteral("VendorName")), QStringLiteral("x"));
    QVERIFY(!second.udsServices.first().active);
    QCOMPARE(first.objects.size(), 1);
    QCOMPARE(second.objects.first().data.name, QStringLiteral("W"));
}

QTEST_GUILESS_MAIN(TestSourceReader)
#include "tst_sourcereader.moc"
