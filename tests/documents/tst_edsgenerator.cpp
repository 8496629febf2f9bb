#include "documents/edsgenerator.h"
#include "tests/support/rows.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using Object = ObjectDataBase::INDEX_DATA_T;
using Entry = ObjectDataBase::SUBINDEX_DATA_T;

namespace {

/// What a test adds to an empty project.
using Build = std::function<void(ObjectDataBase &)>;

Object object(quint32 type, const QString &description = QString(),
              const ObjectDataBase::MetaData &metadata = {})
{
    Object data;
    data.name = "Object $I";
    data.objecttype = type;
    data.description = description;
    data.metadata = metadata;
    return data;
}

Entry entry(quint16 type = CAN::UNSIGNED16)
{
    Entry data;
    data.name = "Entry $s";
    data.datatype = type;
    data.accesstype = "rw";
    data.description = "d";
    return data;
}

void addVariable(ObjectDataBase &store, quint16 index, const Entry &data = entry(),
                 const ObjectDataBase::MetaData &metadata = {}, quint8 line = 0)
{
    QVERIFY(store.addIndex(line, index, object(CANopen::VAR, "o", metadata)));
    QVERIFY(store.addSubIndex(line, index, 0, data));
}

ObjectDataBase::MetaData variant(const QString &name)
{
    return {{"eds_define", name}};
}

/// The text between a section's header and the next empty line or header.
QString section(const QString &text, const QString &name)
{
    const QString header = QStringLiteral("[%1]\n").arg(name);
    qsizetype start = text.startsWith(header) ? 0 : text.indexOf(QLatin1Char('\n') + header);
    if (start < 0)
        return QStringLiteral("no section ") + name;
    start = text.indexOf(header, start) + header.size();
    return text.mid(start, text.indexOf("\n\n", start) + 1 - start);
}

QStringList sections(const QString &text)
{
    QStringList names;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1Char('[')))
            names.append(line.mid(1, line.size() - 2));
    }
    return names;
}

} // namespace

Q_DECLARE_METATYPE(Build)

class TestEdsGenerator : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setApplicationName("EDS Test");
        QCoreApplication::setApplicationVersion("1.2.3");
        QCoreApplication::setOrganizationName("somebody");
        qputenv("SOURCE_DATE_EPOCH", "1700000000"); // 2023-11-14 22:13:20 UTC
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = std::make_unique<ObjectDataBase>();
        QVERIFY(m_store->createNewDataBase());
        m_store->addNode(0, {});
    }

    void fileNames_data()
    {
        testRows<QString, bool, bool, QString>(
            {"define", "classical", "multiLine", "expected"},
            {{"plain", "", false, false, "device.eds"},
             {"line", "", false, true, "device_1.eds"},
             {"variant", "big", false, false, "device_big.eds"},
             {"classical", "", true, false, "device_classical.eds"},
             {"classical line", "", true, true, "device_1_classical.eds"},
             {"classical variant keeps its name", "big", true, false, "device_big.eds"},
             {"all", "big", true, true, "device_1_big.eds"},
             {"variant with a path", "../a/b", false, false, "device_.._a_b.eds"}});
    }

    void fileNames()
    {
        QFETCH(QString, define);
        QFETCH(bool, classical);
        QFETCH(bool, multiLine);
        m_store->addNode(1, {});
        EDSGenerator generator(define, !classical, classical);
        generator.setStore(m_store.get());
        generator.setProjectName("device");
        generator.setLine(1);
        generator.setMultiLine(multiLine);
        QTEST(generator.fileName(), "expected");
    }

    void objectText_data()
    {
        QTest::addColumn<Build>("build");
        QTest::addColumn<bool>("fd");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("expected");
        const auto variable = [](const char *row, const std::function<void(Entry &)> &change,
                                 const QString &lines, bool fd = false) {
            const Build build = [change](ObjectDataBase &store) {
                Entry data = entry();
                change(data);
                addVariable(store, 0x2000, data);
            };
            QTest::newRow(row) << build << fd << "2000"
                               << "ParameterName=Object 2000\nObjectType=7\n" + lines + ";;o\n";
        };
        const QString plain = "DataType=6\nAccessType=rw\nPDOMapping=0\n";
        variable(
            "plain", [](Entry &) {}, plain + ";;d\n");
        variable(
            "access, mapping",
            [](Entry &e) {
                e.accesstype = "rwr";
                e.pdomapping = PDOMapping::TPDO;
            },
            "DataType=6\nAccessType=rwr\nPDOMapping=1\n;;d\n");
        variable(
            "signal type", [](Entry &e) { e.datatype = 0x101; },
            "DataType=5\nAccessType=rw\nPDOMapping=0\n;;d\n");
        variable(
            "type of its own",
            [](Entry &e) {
                e.datatype = 124;
                e.metadata = {{"eds_datatype", "0x09"}};
            },
            "DataType=9\nAccessType=rw\nPDOMapping=0\n;;d\n");

        const auto withDefault = [](int write, bool flag, const char *value) {
            return [=](Entry &e) {
                e.writedefaulttoeds = static_cast<quint8>(write);
                e.defaultineds = flag;
                e.defaultvalue = QLatin1String(value);
            };
        };
        variable("default: never", withDefault(0, true, "5"), plain + ";;d\n");
        variable("default: not flagged", withDefault(1, false, "5"), plain + ";;d\n");
        variable("default: flagged", withDefault(1, true, "5"), plain + "DefaultValue=5\n;;d\n");
        variable("default: always", withDefault(2, false, "5"), plain + "DefaultValue=5\n;;d\n");
        variable("default: empty", withDefault(2, true, ""), plain + ";;d\n");
        variable("default: display mark", withDefault(2, true, "|x0x1F"),
                 plain + "DefaultValue=0x1F\n;;d\n");
        variable("default: node", withDefault(2, true, "$NODEID+0x200"),
                 plain + "DefaultValue=$NODEID+0x200\n;;d\n");
        variable("default: one line", withDefault(2, true, "a\r\nb"),
                 plain + "DefaultValue=a b\n;;d\n");

        variable(
            "limits",
            [](Entry &e) {
                e.limitineds = true;
                e.lowlimit = "-3";
            },
            plain + "LowLimit=-3\nHighLimit=\n;;d\n");
        variable(
            "limits not in the EDS", [](Entry &e) { e.lowlimit = e.uplimit = "4"; },
            plain + ";;d\n");
        variable(
            "refuse write", [](Entry &e) { e.refusewrite = true; }, plain + "ObjFlags=1\n;;d\n");
        variable(
            "refuse read", [](Entry &e) { e.refuseread = true; }, plain + "ObjFlags=2\n;;d\n");
        variable(
            "refuse both", [](Entry &e) { e.refuseread = e.refusewrite = true; },
            plain + "ObjFlags=3\n;;d\n");

        const auto array = [](quint16 index, const QList<quint8> &subs,
                              const char *subZero) -> Build {
            return [=](ObjectDataBase &store) {
                store.addIndex(0, index, object(CANopen::ARRAY, "o"));
                for (const quint8 sub : subs) {
                    Entry data = entry(sub == 0 ? CAN::UNSIGNED8 : CAN::UNSIGNED16);
                    data.writedefaulttoeds = 2;
                    if (sub == 0)
                        data.defaultvalue = QLatin1String(subZero);
                    store.addSubIndex(0, index, sub, data);
                }
            };
        };
        QTest::newRow("array") << array(0x1003, {0, 1, 10}, "2") << false << "1003"
                               << "ParameterName=Object 1003\nObjectType=8\nSubNumber=3\n;;o\n";
        const QString subZero =
            QStringLiteral("ParameterName=Entry 0\nObjectType=7\nDataType=5\n"
                           "AccessType=rw\nPDOMapping=0\nDefaultValue=%1\n;;d\n");
        QTest::newRow("sub 0 as stored")
            << array(0x1003, {0, 1, 10}, "2") << false << "1003sub0" << subZero.arg(2);
        QTest::newRow("sub 0 counted")
            << array(0x2000, {0, 1, 5}, "2") << false << "2000sub0" << subZero.arg(5);
        QTest::newRow("sub in hexadecimal")
            << array(0x2000, {0, 1, 10}, "2") << false << "2000suba"
            << "ParameterName=Entry "
               "10\nObjectType=7\nDataType=6\nAccessType=rw\nPDOMapping=0\n;;d\n";
        QTest::newRow("device type of FD")
            << array(0x1000, {0, 1}, "1") << true << "1000"
            << "ParameterName=Object 1000\nObjectType=8\nSubNumber=2\n"
               ";;o\n";
        QTest::newRow("device type, classical")
            << array(0x1000, {0, 1}, "1") << false << "1000"
            << "ParameterName=Object "
               "1000\nObjectType=7\nDataType=6\nAccessType=rw\nPDOMapping=0\n;;d\n";

        const auto other = [](quint32 type, const QString &name) -> Build {
            return [=](ObjectDataBase &store) {
                Object data = object(type, "o");
                data.name = name;
                store.addIndex(0, 0x2000, data);
                store.addSubIndex(0, 0x2000, 0, entry(CAN::DOMAIN_TYPE));
            };
        };
        QTest::newRow("domain") << other(CANopen::DOMAIN_OBJECT, "D") << false << "2000"
                                << "ParameterName=D\nObjectType=2\nDataType=15\nAccessType=rw\n"
                                   "PDOMapping=0\n;;d\n;;o\n";
        QTest::newRow("type definition")
            << other(CANopen::DEFSTRUCT, "two\nlines $i") << false << "2000"
            << "ParameterName=two lines 8192\nObjectType=6\n";
    }

    void objectText()
    {
        QFETCH(Build, build);
        QFETCH(bool, fd);
        QFETCH(QString, name);
        build(*m_store);
        QTEST(section(generate(QString(), fd), name), "expected");
    }

    void descriptionLines_data()
    {
        const auto text = [](int length) { return QString(length, QLatin1Char('x')); };
        const QString wide = QString::fromUtf8("\xF0\x9F\x9A\x80");
        testRows<QString, QStringList>(
            {"description", "expected"},
            {{"empty", "", {""}},
             {"lines", "a\n\n b ", {"a", "", " b "}},
             {"line ends", "a\r\nb\rc", {"a", "b", "c"}},
             {"250", text(250), {text(250)}},
             {"251", text(251), {text(250), "x"}},
             {"499", text(499), {text(250), text(249)}},
             {"500 loses its rest", text(500), {text(250)}},
             {"501", text(501), {text(250), text(250), "x"}},
             {"each line for itself", text(251) + "\n" + text(500), {text(250), "x", text(250)}},
             {"4-byte characters", wide.repeated(250) + "y", {wide.repeated(250), "y"}}});
    }

    void descriptionLines()
    {
        QFETCH(QString, description);
        QFETCH(QStringList, expected);
        Entry data = entry();
        data.description = description;
        addVariable(*m_store, 0x2000, data);
        QString lines;
        for (const QString &line : std::as_const(expected))
            lines += QLatin1String(";;") + line + QLatin1Char('\n');
        QCOMPARE(
            section(generate(), "2000"),
            "ParameterName=Object 2000\nObjectType=7\nDataType=6\nAccessType=rw\nPDOMapping=0\n" +
                lines + ";;o\n");
    }

    void variantsAndLists_data()
    {
        const QString optional = "1=0x1005\n2=0x6000\n3=0xcfff\n";
        testRows<QString, bool, QString, QString, QStringList>(
            {"define", "fd", "manufacturer", "optional", "objects"},
            {{"no variant",
              "",
              false,
              "1=0x2000\n2=0x5fff\n",
              optional,
              {"1000", "1005", "1018", "2000", "5fff", "6000", "cfff", "d000"}},
             {"variant a",
              "a",
              false,
              "1=0x2000\n2=0x2001\n3=0x5fff\n",
              optional,
              {"1000", "1005", "1018", "2000", "2001", "5fff", "6000", "cfff", "d000"}},
             {"variants are case-sensitive",
              "A",
              false,
              "1=0x2000\n2=0x5fff\n",
              optional,
              {"1000", "1005", "1018", "2000", "5fff", "6000", "cfff", "d000"}},
             {"FD",
              "b",
              true,
              "1=0x2000\n2=0x2002\n3=0x5fff\n",
              "1=0x1005\n2=0x1030\n3=0x1032\n4=0x6000\n5=0xcfff\n",
              {"1000", "1005", "1018", "1030", "1032", "2000", "2002", "5fff", "6000", "cfff",
               "d000"}}});
    }

    void variantsAndLists()
    {
        for (const int index : {0x0FFF, 0x1000, 0x1005, 0x1018, 0x1030, 0x1032, 0x2000, 0x5FFF,
                                0x6000, 0xCFFF, 0xD000})
            addVariable(*m_store, static_cast<quint16>(index));
        addVariable(*m_store, 0x2001, entry(), variant("a"));
        addVariable(*m_store, 0x2002, entry(), variant("b"));

        QFETCH(QString, define);
        QFETCH(bool, fd);
        const QString text = generate(define, fd);
        const auto list = [&](const char *name) {
            const QString lines = section(text, QLatin1String(name));
            const qsizetype end = lines.indexOf(QLatin1Char('\n')) + 1;
            if (lines.left(end) != QStringLiteral("SupportedObjects=%1\n")
                                       .arg(lines.mid(end).count(QLatin1Char('\n'))))
                return QString("wrong count");
            return lines.mid(end);
        };
        QCOMPARE(list("MandatoryObjects"), "1=0x1000\n2=0x1001\n3=0x1018\n");
        QTEST(list("ManufacturerObjects"), "manufacturer");
        QTEST(list("OptionalObjects"), "optional");
        QTEST(sections(text).mid(7), "objects");
    }

    void variantNames()
    {
        const auto sub = [](const QString &name) {
            Entry data = entry();
            if (!name.isEmpty())
                data.metadata = variant(name);
            return data;
        };
        // Subindices of an object without the attribute don't make a variant, but follow it.
        m_store->addIndex(0, 0x2000, object(CANopen::RECORD, "o"));
        m_store->addSubIndex(0, 0x2000, 0, sub({}));
        m_store->addSubIndex(0, 0x2000, 1, sub("lost"));
        m_store->addSubIndex(0, 0x2000, 2, sub("two"));
        m_store->addIndex(0, 0x2001, object(CANopen::RECORD, "o", variant("two")));
        m_store->addSubIndex(0, 0x2001, 0, sub({}));
        m_store->addSubIndex(0, 0x2001, 1, sub("three"));
        m_store->addSubIndex(0, 0x2001, 2, sub("two"));
        QCOMPARE(EDSGenerator::variants(*m_store, 0), QStringList({"", "two", "three"}));

        QCOMPARE(sections(generate()).mid(7), QStringList({"2000", "2000sub0"}));
        const QString two = generate("two");
        QCOMPARE(sections(two).mid(7),
                 QStringList({"2000", "2000sub0", "2000sub2", "2001", "2001sub0", "2001sub2"}));
        QVERIFY(section(two, "2000").contains("SubNumber=2\n"));
        QCOMPARE(sections(generate("three")).mid(7), QStringList({"2000", "2000sub0"}));
    }

    void deviceInfo()
    {
        m_store->addIndex(0, 0x1018, object(CANopen::RECORD));
        const QList<std::pair<const char *, const char *>> identity = {
            {"4", ""}, {"|x0x12", ""}, {"1", "0x34"}, {"", ""}};
        for (qsizetype sub = 0; sub < identity.size(); ++sub) {
            Entry data = entry(CAN::UNSIGNED32);
            data.defaultvalue = QLatin1String(identity.at(sub).first);
            data.currentvalue = QLatin1String(identity.at(sub).second);
            m_store->addSubIndex(0, 0x1018, static_cast<quint8>(sub), data);
        }
        for (const int index : {0x13FF, 0x1400, 0x15FF, 0x1600, 0x17FF, 0x1800, 0x19FF, 0x1A00})
            addVariable(*m_store, static_cast<quint16>(index));
        addVariable(*m_store, 0x1801, entry(), variant("other"));
        m_store->setDescriptionSetting("Granularity", QString());
        const auto info = [this] { return section(generate(), "DeviceInfo"); };
        QVERIFY(info().contains("VendorNumber=0x12\n"));
        QVERIFY(info().contains("ProductNumber=0x34\n"));
        QVERIFY(info().contains("RevisionNumber=\n"));
        QVERIFY(info().contains(QLatin1String("NrOfRxPDO=2\nNrOfTxPDO=3\nSimpleBootupSlave=1\n"
                                              "SimpleBootupMaster=0\nLSS_Supported=")));
        QVERIFY(info().endsWith("Granularity=0\nDynamicChannelsSupported=0\nGroupMessaging=0\n"));
        m_store->setSubIndexDefaultValue(0, 0x17FF, 0, "253");
        QVERIFY(info().endsWith("GroupMessaging=0\n"));
        m_store->setSubIndexDefaultValue(0, 0x1A00, 0, "0xFE");
        QVERIFY(info().endsWith("GroupMessaging=1\n"));
    }

    void comments()
    {
        const auto lines = [this](const char *comment) {
            m_store->setDescriptionSetting("Comment", QLatin1String(comment));
            return section(generate(), "Comments");
        };
        QCOMPARE(lines(" \n "), "Lines=1\nLine1=generated by EDS Test by somebody\n");
        QCOMPARE(lines("one's \n\n three\n"), "Lines=3\nLine1=one's \nLine2=\nLine3= three\n");
    }

    void linesHaveTheirOwnDescription()
    {
        m_store->addNode(1, {});
        m_store->setDescriptionSetting("ProductName", "first");
        m_store->setDescriptionLine(1);
        m_store->setDescriptionSetting("ProductName", "second");
        m_store->setDescriptionLine(0);
        addVariable(*m_store, 0x2000);
        addVariable(*m_store, 0x2001, entry(), {}, 1);

        EDSGenerator generator;
        const QString text = generate(generator, 1, true);
        QCOMPARE(generator.fileName(), "device_1.eds");
        QVERIFY(text.contains("FileName=device.eds\n"));
        QVERIFY(text.contains("ProductName=second\n"));
        QCOMPARE(sections(text).mid(7), QStringList({"2001"}));
        QCOMPARE(m_store->descriptionLine(), quint8(0));
        QVERIFY(!m_store->isGenerating());
    }

    void sameTextWithAndWithoutCaches()
    {
        addVariable(*m_store, 0x1000);
        for (int i = 0; i < 20; ++i) {
            const auto index = static_cast<quint16>(0x2000 + i);
            m_store->addIndex(0, index, object(CANopen::RECORD, "o"));
            for (quint8 sub = 0; sub < 4; ++sub)
                m_store->addSubIndex(0, index, sub, entry());
        }
        const QString uncached = generate();
        QVERIFY(m_store->cacheAllSubs(0));
        QCOMPARE(generate(), uncached);
    }

    void failures()
    {
        for (int i = 0; i < 200; ++i)
            addVariable(*m_store, static_cast<quint16>(0x2000 + i));

        {
            QVERIFY(QDir(m_folder->path()).mkdir("device.eds"));
            EDSGenerator generator;
            generate(generator);
            QVERIFY(!generator.isOutputWritable());
            QCOMPARE(generator.errorCode(), quint8(1));
            QVERIFY(generator.errorString().contains("device.eds"));
            QVERIFY(QDir(m_folder->path()).rmdir("device.eds"));
        }
        {
            // The stop comes with the progress that follows the lists.
            EDSGenerator generator;
            connect(&generator, &AbstractGenerator::progress, &generator, [&](quint8 percent) {
                if (percent == 25)
                    generator.requestStop();
            });
            const QString text = generate(generator);
            QCOMPARE(sections(text).constLast(), "OptionalObjects");
            QVERIFY(section(text, "ManufacturerObjects").startsWith("SupportedObjects=200\n"));
            QCOMPARE(generator.errorCode(), quint8(0));
        }
    }

private:
    QString generate(EDSGenerator &generator, quint8 line = 0, bool multiLine = false)
    {
        generator.setMultiLine(multiLine);
        generator.setOutputFolder(m_folder->path());
        generator.setStore(m_store.get());
        generator.setProjectName("device");
        generator.setLine(line);
        generator.doJob();
        QFile file(m_folder->filePath(generator.fileName()));
        if (!file.open(QIODevice::ReadOnly))
            return "no file";
        return QString::fromUtf8(file.readAll());
    }

    QString generate(const QString &define = QString(), bool fd = false, bool classical = false)
    {
        EDSGenerator generator(define, fd, classical);
        return generate(generator);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ObjectDataBase> m_store;
};

QTEST_GUILESS_MAIN(TestEdsGenerator)
#include "tst_edsgenerator.moc"
