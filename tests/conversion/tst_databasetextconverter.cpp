#include "nastytexts.h"

#include "store/databasetextconverter.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/records.h"
#include "tests/support/storefile.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;
using namespace TestRecords;

namespace {

using Store = ObjectDataBase;

/// A project with the text in every place that can hold one, on lines 0 and 10.
void fillProject(Store &store, const QString &text)
{
    QVERIFY(store.createNewDataBase());
    QVERIFY(store.addNode(10, filled<Store::NODE_DATA_T>(text)));
    store.setNodeSqlValue(u"10"_s, u"multilinedata"_s, 70000);
    store.setGeneralSetting(u"plain"_s, text);
    store.setGeneralSetting(text, u"value"_s);
    store.setGeneralSetting(u"/a//b/ c\\d%41=ü;[e]"_s, text);
    store.setMiscSetting(u"note"_s, text);
    store.setJ1939Setting(u"note"_s, text);
    store.setDescriptionSetting(u"VendorName"_s, text);
    store.setDescriptionLine(10);
    store.setDescriptionSetting(u"Comment"_s, text);
    for (const quint8 line : {0, 10}) {
        QVERIFY(store.addIndex(line, 0x2000, filled<Store::INDEX_DATA_T>(text)));
        QVERIFY(store.addIndex(line, 0xFFFF, {}));
        QVERIFY(store.addSubIndex(line, 0x2000, 0, {}));
        QVERIFY(store.addSubIndex(line, 0x2000, 255, filled<Store::SUBINDEX_DATA_T>(text)));
        for (const quint8 direction : {Store::receive, Store::transmit}) {
            auto pgn = filled<Store::PGN>(text);
            pgn.number = 0x1FEF2;
            pgn.edpDpKey = 0;
            pgn.priority = 6;
            pgn.direction = direction;
            QVERIFY(store.addPGN(line, 0x1FEF2, pgn));
            auto spn = filled<Store::SPN>(text);
            spn.pos = 1;
            QVERIFY(store.addSPN(line, 0x1FEF2, direction, 110, spn));
            spn.pos = 0;
            QVERIFY(store.addSPN(line, 0x1FEF2, direction, 520192, spn));
        }
        store.setUDSServiceSessions(line, UDS::SID::RoutineControl, text);
        store.setUDSServiceUserLevels(line, UDS::SID::RoutineControl, text);
        store.setUDSAuthentication(line, UDS::SID::RoutineControl, text);
    }
}

/// Everything that a project of `fillProject` says, for comparison.
QStringList valuesOfProject(Store &store)
{
    QStringList values;
    Store::NODE_DATA_T node;
    values.append(store.getNodeData(10, node) ? valuesOf(node) : QStringList());
    for (const quint8 line : {0, 10}) {
        Store::INDEX_DATA_T object;
        values.append(store.getIndexData(line, 0x2000, object) ? valuesOf(object) : QStringList());
        Store::SUBINDEX_DATA_T entry;
        values.append(store.getSubIndexData(line, 0x2000, 255, entry) ? valuesOf(entry)
                                                                      : QStringList());
        for (const quint8 direction : {Store::receive, Store::transmit}) {
            Store::PGN pgn;
            values.append(store.getPGN(line, 0x1FEF2, direction, pgn) ? valuesOf(pgn)
                                                                      : QStringList());
            for (const quint32 number : store.getSPNList(line, 0x1FEF2, direction)) {
                Store::SPN spn;
                values.append(store.getSPN(line, 0x1FEF2, direction, number, spn) ? valuesOf(spn)
                                                                                  : QStringList());
            }
        }
        values.append(store.getUDSServiceUserLevels(line, UDS::SID::RoutineControl));
        store.setDescriptionLine(line);
        values.append(store.getDescriptionSetting(line == 10 ? u"Comment"_s : u"VendorName"_s));
    }
    return values << store.getGeneralSetting(u"/a//b/ c\\d%41=ü;[e]"_s)
                  << store.getJ1939Setting(u"note"_s);
}

} // namespace

class TestDatabaseTextConverter : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_path = m_folder.filePath(u"p%1.vxmt"_s.arg(++m_count)); }

    void roundTrip_data() { NastyTexts::addRows(); }
    void roundTrip()
    {
        QFETCH(QString, text);
        Store store;
        fillProject(store, text);
        QCOMPARE(write(store), QString());
        const QByteArray first = contentOf(m_path);
        Store copy;
        QCOMPARE(read(copy), QString());
        QVERIFY(valuesOfProject(copy).size() > 200);
        QCOMPARE(valuesOfProject(copy), valuesOfProject(store));
        QCOMPARE(write(copy), QString());
        QCOMPARE(contentOf(m_path), first);
        Store other;
        QCOMPARE(read(other), QString());
        QCOMPARE(other.contentHash(), copy.contentHash());
    }

    /// Rows of old projects hold NULL where columns were added.
    void oldRows()
    {
        Store store;
        fillProject(store, u"text"_s);
        QVERIFY(store.executeSql(
            u"update SubObjects0 set defaultvalue=NULL, size=NULL, name=NULL, metadata=NULL"_s));
        QVERIFY(store.executeSql(u"update Nodes set lssslave=NULL, name=NULL"_s));
        QVERIFY(store.executeSql(u"insert into Connections values(NULL,1,2,3,4,5,6)"_s));
        QVERIFY(store.executeSql(u"insert into GeneralSettings values('null',NULL)"_s));
        QVERIFY(store.executeSql(u"insert into GeneralSettings values(NULL,'a')"_s));
        QVERIFY(store.executeSql(u"insert into GeneralSettings values(NULL,'b')"_s));
        QCOMPARE(write(store), QString());
        QVERIFY(store.executeSql(
            u"select count(*) from SubObjects0 where defaultvalue='' and size=0 and name=0"_s));
        QVERIFY(store.statementResults().value(0).startsWith(u'2'));
        QVERIFY(store.executeSql(u"select count(*) from Connections where prodnode=0"_s));
        QVERIFY(store.statementResults().value(0).startsWith(u'1'));
        Store copy;
        QCOMPARE(read(copy), QString());
        Store::SUBINDEX_DATA_T sub;
        QVERIFY(copy.getSubIndexData(0, 0x2000, 255, sub));
        QCOMPARE(sub.name + sub.defaultvalue, QString());
        QCOMPARE(sub.denotation, u"text"_s);
        QVERIFY(copy.generalSettingExists(u"null"_s));
    }

    /// What a person leaves out of a text has the defaults of new rows.
    void missingColumns()
    {
        writeFile(m_path,
                  "[Nodes]\n0\\name=Line\n[Objects0]\n0x1000\\name=Device type\n"
                  "[SubObjects0]\n0x1000\\0\\DATATYPE=0x7\n[SPNs0]\n65226\\1213\\85\\name=s\n");
        Store store;
        QCOMPARE(read(store), QString());
        Store::NODE_DATA_T node;
        QVERIFY(store.getNodeData(0, node));
        QCOMPARE(node.name, u"Line"_s);
        QCOMPARE(node.prefix, u"_"_s);
        QVERIFY(node.generatedcf);
        Store::SUBINDEX_DATA_T sub;
        QVERIFY(store.getSubIndexData(0, 0x1000, 0, sub));
        const Store::SUBINDEX_DATA_T fresh;
        QCOMPARE(sub.datatype, 7);
        QCOMPARE(sub.accesstype, fresh.accesstype);
        QCOMPARE(sub.allowedaccesstypes, fresh.allowedaccesstypes);
        QCOMPARE(sub.category, fresh.category);
        Store::SPN spn;
        QVERIFY(store.getSPN(0, 65226, Store::transmit, 1213, spn));
        QCOMPARE(spn.implementation, Store::SPN().implementation);
        QVERIFY(store.getUDSServiceActive(0, UDS::SID::EcuReset));
        QCOMPARE(store.getDescriptionSetting(u"BaudRate_125"_s), u"1"_s);
    }

    void linesOfTheFile()
    {
        writeFile(m_path, "[Objects3]\n[PGNs200]\n[SubObjects254]\n0x1000\\0\\datatype=7\n"
                          "[Objects007]\n[Objects999]\n[Nodes]\n12\\name=a\n");
        Store store;
        QCOMPARE(read(store), QString());
        QCOMPARE(store.getLines(), QList<quint8>({3, 12, 200}));
        QVERIFY(!store.descriptionSettingExists(u"VendorName"_s));
        QCOMPARE(write(store), QString());
        Store copy;
        QCOMPARE(read(copy), QString());
        QCOMPARE(copy.getLines(), store.getLines());
    }

    void leftOutTables()
    {
        Store store;
        fillProject(store, u"text"_s);
        for (const quint8 line : {Store::comparisonLine, Store::stagingLine}) {
            QVERIFY(store.addNode(line, Store::NODE_DATA_T()));
            QVERIFY(store.addIndex(line, 0x3000, Store::INDEX_DATA_T()));
        }
        Store::CANID message;
        message.direction = Store::receive;
        QVERIFY(store.addCANID(0, 0x123, message));
        store.setEnergyBusSetting(u"device_cnt"_s, u"1"_s);
        QVERIFY(store.executeSql(u"create table Foreign7 (a text)"_s));
        QVERIFY(store.executeSql(u"create table Objects99999999999 (a text)"_s));
        QCOMPARE(write(store), QString());
        Store copy;
        QCOMPARE(read(copy), QString());
        QCOMPARE(copy.getLines(), QList<quint8>({0, 10}));
        QVERIFY(copy.getCANIDList(0).isEmpty());
        QVERIFY(copy.getEnergyBusSettingKeys().isEmpty());
        const QByteArray content = contentOf(m_path);
        for (const char *name : {"254]", "255]", "CANIDs", "EnergyBus", "Foreign", "Strings"})
            QVERIFY2(!content.contains(name), name);
    }

    /// A file rewritten with the same size in the same moment must not be read as it was before.
    void rewrittenFile()
    {
        for (int i = 0; i < 20; ++i) {
            writeFile(m_path, "[GeneralSettings]\na=" + QByteArray::number(10 + i) + '\n');
            Store store;
            QCOMPARE(read(store), QString());
            QCOMPARE(store.getGeneralSetting(u"a"_s), QString::number(10 + i));
        }
    }

    /// The tables of signals have no unique key.
    void rowsWithoutOwnKeys()
    {
        Store store;
        fillProject(store, u"text"_s);
        QVERIFY(store.executeSql(u"insert into SPNs0 select * from SPNs0"_s));
        QVERIFY(store.executeSql(u"insert into PGNs0 select * from PGNs0"_s));
        QCOMPARE(write(store), QString());
        const QByteArray first = contentOf(m_path);
        Store copy;
        QCOMPARE(read(copy), QString());
        QCOMPARE(copy.getSPNList(0, 0x1FEF2, Store::receive).size(), 4);
        QCOMPARE(write(copy), QString());
        QCOMPARE(contentOf(m_path), first);
    }

    void unreadable()
    {
        const std::tuple<QByteArray, QString> rows[] = {
            {"", "empty"},
            {" \n\n", "no project"},
            {"[Paths]\na=b\n", "no project"},
            {QByteArray("SQLite format 3\0\1\2", 18), "text"},
            {QByteArray("\xFF\xFE[\0N\0", 6), "text"},
            {"[GeneralSettings]\na=\xE4\xF6\n", "line 2"},
            {"[GeneralSettings]\n\xE4=1\n", "line 2"},
            {"[GeneralSettings]\na=1\nb\n", "line 3"},
            {"[GeneralSettings]\na=\"1\n\n", "line 2"},
            {"[Objects0]\n[Nodes]\n[Objects0]\n", "line 3"},
            {"[MiscSettings]\na=1\na=1\n", "line 3"},
            {"[Objects0]\n1\\name=\n2\\name=\n1\\category=1\n", "line 4"},
            {"[Objects0]\n1\\name=a\n1\\name=b\n", "line 3"},
            {"[Objects0]\n1\\name=a\n1\\name=\n", "line 3"},
            {"[Objects0]\n1\\metadata\\a=1\n1\\metadata\\a=1\n", "line 3"},
            {"[Objects0]\n0x1000\\objectindex=4097\n", "line 2"},
            {"[SubObjects0]\n0x1000\\name=1\n", "line 2"},
            {"[Objects0]\nx\\name=1\n", "line 2"},
            {"[Objects0]\n0x10000\\name=1\n", "line 2"},
            {"[Objects0]\n99999999999999999999\\name=1\n", "line 2"},
            {"[SubObjects0]\n1\\-1\\name=1\n", "line 2"},
            {"[Nodes]\n254\\name=1\n", "line 2"},
            {"[Objects0]\n1\\name=\n1\\datatype=text\n", "line 3"}};
        for (const auto &[content, where] : rows) {
            writeFile(m_path, content);
            TestStore store;
            const QString before = store.contentHash();
            DatabaseTextConverter converter(store, m_path);
            QVERIFY(!converter.convertTextToSql());
            QVERIFY2(converter.errorText().startsWith(m_path), qPrintable(converter.errorText()));
            QVERIFY2(converter.errorText().contains(where), qPrintable(converter.errorText()));
            QCOMPARE(store.contentHash(), before);
        }
    }

    /// A saved file, cut at any place, is refused or at least no longer what it was.
    void cutOff()
    {
        Store store;
        fillProject(store, u"a; \"b\"\n"_s);
        store.setMiscSetting(u"FileHash"_s, u"0123"_s);
        QCOMPARE(write(store), QString());
        const QByteArray whole = contentOf(m_path);
        const qsizetype last = whole.indexOf("[UDSSettings10]");
        QVERIFY(last > 0);
        Store cut;
        for (qsizetype size = whole.size() - 1; size >= 0; size -= size > last + 2000 ? 67 : 419) {
            writeFile(m_path, whole.first(size));
            const QString error = read(cut);
            const bool marked = whole.first(size).contains("FileHash=0123\n");
            if (size <= last && marked)
                QVERIFY2(!error.isEmpty(), qPrintable(QString::number(size)));
            if (size > last && whole.at(size - 1) != '\n')
                QVERIFY2(!error.isEmpty(), qPrintable(QString::number(size)));
        }
    }

    void unwritable()
    {
        Store store;
        fillProject(store, u"text"_s);
        for (const QString &name : {u"missing/p.vxmt"_s, u"folder"_s, u"readonly.vxmt/p.vxmt"_s,
                                    u"readonly.vxmt"_s, u"/dev/full"_s}) {
            if (name.startsWith(u'/') && !QFileInfo::exists(name))
                continue;
            QTemporaryDir folder;
            QDir(folder.path()).mkdir(u"folder"_s);
            const QString readOnly = folder.filePath(u"readonly.vxmt"_s);
            writeFile(readOnly, "old");
            QFile::setPermissions(readOnly, QFile::ReadOwner);
            m_path = name.startsWith(u'/') ? name : folder.filePath(name);
            const QString error = write(store);
            QVERIFY2(error.startsWith(m_path + ": "_L1), qPrintable(error));
            QCOMPARE(contentOf(readOnly), QByteArray("old"));
            QCOMPARE(QDir(folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(),
                     2);
            // What can't be written can't be read either, but for the old file.
            Store other;
            QVERIFY(name == "readonly.vxmt"_L1 || !read(other).isEmpty());
        }
    }

    void diskFull()
    {
        if (!FileSizeLimit::isSupported())
            QSKIP("no such limit on this system");
        Store store;
        fillProject(store, QString(200000, u'x'));
        QCOMPARE(write(store), QString());
        const QByteArray whole = contentOf(m_path);
        store.setGeneralSetting(u"new"_s, u"1"_s);
        for (const qsizetype size : {qsizetype(0), qsizetype(70000), whole.size()}) {
            QString error;
            {
                const FileSizeLimit limit{unsigned(size)};
                error = write(store);
            }
            QVERIFY2(error.startsWith(m_path), qPrintable(error));
            QVERIFY(contentOf(m_path) == whole);
            QCOMPARE(QDir(m_folder.path()).entryList({QFileInfo(m_path).fileName() + u'*'}).size(),
                     1);
        }
        QCOMPARE(write(store), QString());
        QVERIFY(contentOf(m_path) != whole);
    }

    /// Files of later versions, and comments, do no harm.
    void unknownParts()
    {
        writeFile(m_path, "; by hand\n[Future]\na\\b\\c=1\n[CANIDs0]\n1\\name=x\n[Objects0]\n"
                          "0x1000\\colour=red\n0x1000\\name=a ; note\n0x1000\\style\\x=1\n");
        Store store;
        QCOMPARE(read(store), QString());
        QCOMPARE(store.getIndexName(0, 0x1000), u"a"_s);
        store.setBlockUpdates(true);
        DatabaseTextConverter converter(store, m_path);
        QVERIFY(!converter.convertTextToSql());
        store.setBlockUpdates(false);
    }

    void readableBySettings()
    {
        Store store;
        fillProject(store, u"it's @ \"1\", ü\n"_s);
        QCOMPARE(write(store), QString());
        QSettings settings(m_path, QSettings::IniFormat);
        for (const char *key :
             {"Nodes/10/prefix", "GeneralSettings/plain", "Objects10/0x2000/description",
              "SubObjects0/0x2000/0xff/accesstype", "SubObjects0/0x2000/0xff/metadata/a/b"})
            QCOMPARE(settings.value(QLatin1String(key)).toString(), u"it's @ \"1\", ü\n"_s);
        QCOMPARE(settings.value("PGNs0/130802/85/priority").toString(), u"6"_s);
        QCOMPARE(settings.value("UDSSettings0/16/active").toString(), u"1"_s);
        QCOMPARE(settings.status(), QSettings::NoError);
    }

private:
    [[nodiscard]] QString write(Store &store)
    {
        DatabaseTextConverter converter(store, m_path);
        return converter.convertSqlToText() ? QString() : converter.errorText();
    }
    [[nodiscard]] QString read(Store &store)
    {
        if (!store.createNewDataBase())
            return u"no database"_s;
        DatabaseTextConverter converter(store, m_path);
        return converter.convertTextToSql() ? QString() : converter.errorText();
    }

    QTemporaryDir m_folder;
    QString m_path;
    int m_count = 0;
};

QTEST_GUILESS_MAIN(TestDatabaseTextConverter)
#include "tst_databasetextconverter.moc"
