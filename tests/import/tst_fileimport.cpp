#include "importsupport.h"

#include "import/fileimport.h"
#include "import/objectcargo.h"
#include "import/vxmpimporter.h"
#include "resources/codb/standardprofiles.h"
#include "store/undomanager.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

using Entry = ObjectDataBase::SUBINDEX_DATA_T;
using Kind = ImportedImplementation;
using Outcome = FileImport::Outcome;
using ImportSupport::entry;
using ImportSupport::object;

namespace {

const QByteArray eds = "[FileInfo]\nFileName=a.eds\n[DeviceInfo]\nVendorName=Somebody\n"
                       "[ManufacturerObjects]\nSupportedObjects=2\n1=0x2000\n2=0x2001\n"
                       "[2000]\nParameterName=Speed\nObjectType=0x7\nDataType=0x6\n"
                       "AccessType=rw\nDefaultValue=5\nParameterValue=7\n"
                       "[2001]\nParameterName=Data\nObjectType=0x2\nDataType=0xF\n"
                       "AccessType=rw\n";
const QByteArray xdd = "<?xml version=\"1.0\"?><C><CANopenFDObjectList>"
                       "<CANopenFDDataObject index=\"2000\" name=\"Speed\" objectType=\"7\" "
                       "dataType=\"0006\"><CANopenFDDataElement subIndex=\"00\" name=\"Value\" "
                       "dataType=\"06\"/></CANopenFDDataObject></CANopenFDObjectList></C>";
const QByteArray codb = "2000::Speed:optional::VAR:m:UNSIGNED16:m:rw:m\r\n"
                        "$2001=2000\r\n";
const QByteArray csv = "index,sub,objectcode,datatype,access,edsname,value\n"
                       "0x2000,,RECORD,,,Motor,\n"
                       "0x2000,0,,UNSIGNED8,const,Highest,2\n"
                       "0x2000,1,,UNSIGNED16,rw,Speed,5\n"
                       "0x2000,2,,VISIBLE_STRING,rw,Label,ab\n"
                       "0x2005,0,VARIABLE,UNSIGNED32,ro,Status,7\n";

/// A project with an object on line 0, another on line 3 and PGNs of both directions.
QString saveProject(const QTemporaryDir &folder, const QString &name)
{
    ObjectDataBase store;
    store.createNewDataBase();
    store.addNode(3, ObjectDataBase::NODE_DATA_T());
    const auto add = [&](quint8 line, quint16 index, const QString &objectName) {
        store.addIndex(line, index, {.name = objectName, .datatype = CAN::UNSIGNED16});
        Entry data;
        data.name = objectName;
        data.datatype = CAN::UNSIGNED16;
        data.implementation = CANopen::Variable;
        data.varname = u"mySpeed"_s;
        store.addSubIndex(line, index, 0, data);
    };
    add(0, 0x2000, u"Speed"_s);
    add(3, 0x2300, u"Third"_s);
    for (const quint32 number : {0x100U, 0x200U, 0x300U}) {
        for (const quint8 direction : {ObjectDataBase::transmit, ObjectDataBase::receive}) {
            ObjectDataBase::PGN pgn;
            pgn.number = number;
            pgn.direction = direction;
            store.addPGN(0, number, pgn);
        }
    }
    // A backup is a database under another name.
    const QString path = folder.filePath(name);
    const QString own = name.endsWith(u".bak"_s) ? path.chopped(4) : path;
    if (!store.saveDatabase(own) || (own != path && !QFile::rename(own, path)))
        qFatal("can't save %s", qPrintable(path));
    return path;
}

/// A project with its line 0, and the store that files are read into.
struct Session
{
    Session()
    {
        QObject::connect(&import, &FileImport::importError,
                         [this](const QString &text) { errors.append(text); });
    }

    Outcome read(const FileImportOptions &options)
    {
        QSignalSpy spy(&import, &FileImport::readFinished);
        refusal = import.read(options);
        if (!refusal.isEmpty() || (spy.isEmpty() && !spy.wait(20000)))
            return Outcome::Failed;
        return spy.first().first().value<Outcome>();
    }

    Outcome take(const QList<ImportedItem> &items, Kind kind, bool deviceData = false)
    {
        QSignalSpy spy(&import, &FileImport::takeFinished);
        cargo.choose(items, kind, deviceData);
        refusal = import.take();
        if (!refusal.isEmpty() || (spy.isEmpty() && !spy.wait(20000)))
            return Outcome::Failed;
        return spy.first().first().value<Outcome>();
    }

    /// Everything that was read, as it is.
    [[nodiscard]] QList<ImportedItem> all() const
    {
        QList<ImportedItem> items;
        for (const ObjectCargo::Object &found : cargo.objects())
            items.append({found.index, found.index, {}, {}});
        return items;
    }

    [[nodiscard]] QList<quint16> listed() const
    {
        QList<quint16> indices;
        for (const ObjectCargo::Object &found : cargo.objects())
            indices.append(found.index);
        return indices;
    }

    QTemporaryDir folder;
    std::shared_ptr<ObjectDataBase> project{ImportSupport::newStore()};
    std::shared_ptr<ObjectDataBase> scratch{ImportSupport::newStore()};
    QStringList errors;
    QString refusal;
    ObjectCargo cargo;
    FileImport import{{*project, 0, *scratch}, cargo};
};

} // namespace

/// Imports in which somebody chooses among the objects of a file.
class TestFileImport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { StandardProfiles::makeAvailable(); }

    void readsEverySuffix_data()
    {
        QTest::addColumn<QByteArray>("content"); // empty: a project
        QTest::addColumn<QList<quint16>>("indices");
        const QList<quint16> one{0x2000};
        QTest::newRow("a.codb") << codb << one;
        QTest::newRow("a.EDS") << eds << QList<quint16>{0x2000, 0x2001};
        QTest::newRow("a.dcf") << eds << QList<quint16>{0x2000, 0x2001};
        QTest::newRow("a.xdd") << xdd << one;
        QTest::newRow("a.vxmp") << QByteArray() << one;
        QTest::newRow("a.vxmt") << QByteArray() << one;
        QTest::newRow("a.vxmp.bak") << QByteArray() << one;
        QTest::newRow("a.csv") << csv << QList<quint16>{0x2000, 0x2005};
        QTest::newRow("a.icsv") << csv << QList<quint16>{0x2000, 0x2005};
    }

    void readsEverySuffix()
    {
        QFETCH(QByteArray, content);
        QFETCH(QList<quint16>, indices);
        Session session;
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        const QString path = content.isEmpty()
                                 ? saveProject(session.folder, name)
                                 : ImportSupport::write(session.folder, name, content);
        const QString before = session.project->contentHash();
        QCOMPARE(session.read({path}), Outcome::Done);
        QCOMPARE(session.listed(), indices);
        QCOMPARE(session.cargo.summary(), u"%1 objects read."_s.arg(indices.size()));
        QCOMPARE(session.project->contentHash(), before);
        // The range is that of the caller.
        QCOMPARE(session.read({path, 0x2001, 0x5FFF}), Outcome::Done);
        QCOMPARE(session.listed(), indices.mid(1));

        QCOMPARE(session.read({path}), Outcome::Done);
        QCOMPARE(session.take(session.all(), Kind::Original), Outcome::Done);
        QCOMPARE(session.project->getIndices(0), indices);
        QCOMPARE(session.import.resultText(),
                 u"%1 objects imported as original implementation types."_s.arg(indices.size()));
        QCOMPARE(session.errors, QStringList());
    }

    void refusesFiles_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("refusal"); // empty: the importer refuses
        QTest::newRow("none.eds") << QByteArray() << u"File %1 is not readable."_s;
        QTest::newRow("a.doc") << eds << u"Format of  %1 is not supported."_s;
        QTest::newRow("eds") << eds << u"Format of  %1 is not supported."_s;
        QTest::newRow("broken.vxmp") << QByteArray("no project") << QString();
        QTest::newRow("other.xdd") << QByteArray("<?xml version=\"1.0\"?><a/>") << QString();
        QTest::newRow("other.eds") << QByteArray("<?xml version=\"1.0\"?><a/>") << QString();
        QTest::newRow("nothing.csv") << QByteArray() << u"-"_s;
    }

    void refusesFiles()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, refusal);
        Session session;
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        const QString path = session.folder.filePath(name);
        if (name != u"none.eds"_s)
            (void)ImportSupport::write(session.folder, name, content);
        const QString before = session.project->contentHash();
        const Outcome outcome = session.read({path});
        QCOMPARE(session.listed(), QList<quint16>());
        QCOMPARE(session.project->contentHash(), before);
        if (refusal == u"-"_s)
            return; // a file without a row is a short one, and no fault of anybody's
        QCOMPARE(outcome, Outcome::Failed);
        if (refusal.isEmpty())
            QVERIFY(!session.errors.isEmpty() && session.errors.first().contains(name));
        else
            QCOMPARE(session.refusal, refusal.arg(path));
    }

    void listsAndReplacesWhatExists()
    {
        Session session;
        session.project->addIndex(0, 0x2000, {.name = u"Mine"_s, .objecttype = CANopen::RECORD});
        for (const quint8 subindex : {0, 1, 9}) {
            Entry data;
            data.name = u"old"_s;
            session.project->addSubIndex(0, 0x2000, subindex, data);
        }
        QCOMPARE(session.read({ImportSupport::write(session.folder, u"a.csv"_s, csv)}),
                 Outcome::Done);
        QCOMPARE(
            session.cargo.summary(),
            u"2 objects read. (1 red objects already exist in project. Import overwrites them.)"_s);
        QVERIFY(session.cargo.objects().first().exists && !session.cargo.objects().last().exists);
        QCOMPARE(session.cargo.subindices(0x2000),
                 (QList<std::pair<quint8, QString>>{
                     {0, u"Highest"_s}, {1, u"Speed"_s}, {2, u"Label"_s}}));
        QCOMPARE(session.take({{0x2000, 0x2000, {}, {}}}, Kind::Managed), Outcome::Done);
        QCOMPARE(object(*session.project, 0x2000).name, u"Motor"_s);
        QCOMPARE(session.project->getSubIndices(0, 0x2000), (QList<quint8>{0, 1, 2}));
        QCOMPARE(session.project->getIndices(0), QList<quint16>{0x2000});
        QCOMPARE(session.take({{0x2005, 0x2005, {}, {}}}, Kind::Managed), Outcome::Done);
        QVERIFY(session.cargo.objects().last().exists);
    }

    void readsOneSourceLine()
    {
        Session session;
        const QString path = saveProject(session.folder, u"two.vxmp"_s);
        QCOMPARE(session.read({path, 0x1000, 0xFFFF, 3}), Outcome::Done);
        QCOMPARE(session.cargo.sourceLines(), (QList<quint8>{0, 3}));
        QCOMPARE(session.listed(), QList<quint16>{0x2300});
        QCOMPARE(session.read({path, 0x1000, 0xFFFF, 7}), Outcome::Done);
        QCOMPARE(session.listed(), QList<quint16>());
        QCOMPARE(session.cargo.summary(),
                 u"0 objects read. The file has none from 0x1000 to 0xffff."_s);
    }

    void asksTheImporterForCopiesAndDcfValues()
    {
        Session session;
        const QString profile = ImportSupport::write(session.folder, u"a.codb"_s, codb);
        QCOMPARE(session.read({profile, 0x1000, 0xFFFF, 0, true}), Outcome::Done);
        QCOMPARE(session.listed(), (QList<quint16>{0x2000, 0x2001}));
        for (const auto &[name, value] : {std::pair{u"a.eds"_s, u"5"_s}, {u"a.dcf"_s, u"7"_s}}) {
            QCOMPARE(session.read({ImportSupport::write(session.folder, name, eds)}),
                     Outcome::Done);
            QCOMPARE(
                session.scratch->getSubIndexDefaultValue(ObjectDataBase::stagingLine, 0x2000, 0),
                value);
        }
    }

    void makesImplementations_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("number");   // 0x2000-1
        QTest::addColumn<QString>("name"); // its variable
        QTest::newRow("managed") << Kind::Managed << u"managed variables"_s
                                 << int(CANopen::ManagedVariable) << QString();
        QTest::newRow("application") << Kind::Application << u"application variables"_s
                                     << int(CANopen::Variable) << u"v_81921"_s;
        QTest::newRow("original") << Kind::Original << u"original implementation types"_s
                                  << int(CANopen::ManagedVariable) << QString();
    }

    void makesImplementations()
    {
        QFETCH(Kind, kind);
        QFETCH(QString, text);
        QFETCH(int, number);
        Session session;
        const QByteArray communication = "0x1017,0,VARIABLE,UNSIGNED16,rw,Heartbeat,0\n";
        const QString path = ImportSupport::write(session.folder, u"a.csv"_s, csv + communication);
        QCOMPARE(session.read({path}), Outcome::Done);
        QCOMPARE(session.take(session.all(), kind), Outcome::Done);
        QCOMPARE(session.import.resultText(), u"3 objects imported as %1."_s.arg(text));
        QCOMPARE(int(entry(*session.project, 0x2000, 1).implementation), number);
        QTEST(kind == Kind::Application ? entry(*session.project, 0x2000, 1).varname : QString(),
              "name");
        // A string that is written to can't be managed; the protocol stack itself uses 0x1017, and
        // the count is no value of the application's.
        QCOMPARE(int(entry(*session.project, 0x2000, 2).implementation), int(CANopen::Variable));
        QVERIFY(!entry(*session.project, 0x2000, 2).varname.isEmpty());
        QVERIFY(entry(*session.project, 0x1017).implementation != CANopen::Variable);
        QVERIFY(entry(*session.project, 0x2000, 0).implementation != CANopen::Variable);
    }

    void placesObjectsElsewhere()
    {
        Session session;
        QCOMPARE(session.read({ImportSupport::write(session.folder, u"a.eds"_s, eds)}),
                 Outcome::Done);
        QCOMPARE(session.take({{0x2000, 0x3000, u"Fast"_s, {}}, {0x2001, 0x3001, {}, {}}},
                              Kind::Original),
                 Outcome::Done);
        QCOMPARE(session.project->getIndices(0), (QList<quint16>{0x3000, 0x3001}));
        QCOMPARE(object(*session.project, 0x3000).name, u"Fast"_s);
        QCOMPARE(entry(*session.project, 0x3000).name, u"Fast"_s);
        // The automatic name belongs to the place.
        QCOMPARE(entry(*session.project, 0x3001).varname, u"v_122890"_s);

        const QString before = session.project->contentHash();
        QCOMPARE(session.take({{0x2000, 0x3000, {}, {}}, {0x2001, 0x3000, {}, {}}}, Kind::Original),
                 Outcome::Failed);
        QVERIFY(session.refusal.contains(u"0x3000"_s));
        QCOMPARE(session.project->contentHash(), before);
    }

    void takesChosenSubindices()
    {
        Session session;
        QCOMPARE(session.read({ImportSupport::write(session.folder, u"a.csv"_s, csv)}),
                 Outcome::Done);
        // A new object gets the count along, fitting what is there.
        QCOMPARE(session.take({{0x2000, 0x2000, {}, {1}}}, Kind::Managed), Outcome::Done);
        QCOMPARE(session.project->getSubIndices(0, 0x2000), (QList<quint8>{0, 1}));
        QCOMPARE(entry(*session.project, 0x2000, 0).defaultvalue, u"1"_s);
        // In one that exists, all others stay.
        session.project->setIndexName(0, 0x2000, u"Mine"_s);
        session.project->setSubIndexName(0, 0x2000, 1, u"Also mine"_s);
        QCOMPARE(session.take({{0x2000, 0x2000, {}, {2}}}, Kind::Managed), Outcome::Done);
        QCOMPARE(session.project->getSubIndices(0, 0x2000), (QList<quint8>{0, 1, 2}));
        QCOMPARE(entry(*session.project, 0x2000, 0).defaultvalue, u"2"_s);
        QCOMPARE(entry(*session.project, 0x2000, 1).name, u"Also mine"_s);
        QCOMPARE(object(*session.project, 0x2000).name, u"Mine"_s);
    }

    void runsCommandsLast()
    {
        Session session;
        session.project->addIndex(0, 0x2009, {.name = u"Old"_s});
        const QString path =
            ImportSupport::write(session.folder, u"a.csv"_s,
                                 "d,0x2005\nc,0x2100,0x2005\nc,0x2000,7,1\nd,0x2009\n" + csv);
        QCOMPARE(session.read({path}), Outcome::Done);
        QVERIFY(session.cargo.hasCommands());
        QCOMPARE(session.listed(), (QList<quint16>{0x2000, 0x2005}));
        QVERIFY(session.project->indexExists(0, 0x2009));
        QCOMPARE(session.take(session.all(), Kind::Managed), Outcome::Done);
        QCOMPARE(session.project->getIndices(0), (QList<quint16>{0x2000, 0x2100}));
        QCOMPARE(entry(*session.project, 0x2000, 7).name, u"Speed"_s);
        // The commands of one file are none of the next.
        QCOMPARE(session.read({ImportSupport::write(session.folder, u"b.csv"_s, csv)}),
                 Outcome::Done);
        QVERIFY(!session.cargo.hasCommands());
    }

    void takesDeviceDataIfWanted()
    {
        Session session;
        const QString key = u"VendorName"_s;
        session.project->setDescriptionSetting(key, u"Me"_s);
        QCOMPARE(session.read({ImportSupport::write(session.folder, u"a.eds"_s, eds)}),
                 Outcome::Done);
        QCOMPARE(session.take(session.all(), Kind::Managed, false), Outcome::Done);
        QCOMPARE(session.project->getDescriptionSetting(key), u"Me"_s);
        QCOMPARE(session.take(session.all(), Kind::Managed, true), Outcome::Done);
        QCOMPARE(session.project->getDescriptionSetting(key), u"Somebody"_s);
    }

    void permitsDynamicMappings()
    {
        for (const auto &[access, before, after] :
             {std::array{u"rw"_s, u"0"_s, u"8"_s}, std::array{u"rw"_s, QString(), u"8"_s},
              std::array{u"rw"_s, u"1"_s, u"1"_s}, std::array{u"const"_s, u"0"_s, u"0"_s}}) {
            Session session;
            session.project->setDescriptionSetting(u"Granularity"_s, before);
            const QByteArray rows = "index,sub,objectcode,datatype,access,edsname,value\n"
                                    "0x1A00,,RECORD,,,Mapping,\n0x1A00,0,,UNSIGNED8," +
                                    access.toLatin1() + ",Count,0\n";
            QCOMPARE(session.read({ImportSupport::write(session.folder, u"a.csv"_s, rows)}),
                     Outcome::Done);
            QCOMPARE(session.take(session.all(), Kind::Managed), Outcome::Done);
            QCOMPARE(session.project->getDescriptionSetting(u"Granularity"_s), after);
            QCOMPARE(session.import.resultText().contains(u"granularity"_s), before != after);
        }
    }

    void isOneUndoStep()
    {
        Session session;
        UndoManager undo;
        undo.setDatabase(session.project);
        const QString before = session.project->contentHash();
        QSignalSpy notified(session.project.get(), &ObjectDataBase::updateNotify);
        connect(&session.import, &FileImport::aboutToChange, &undo,
                &UndoManager::handleDebounceTimeout);
        QCOMPARE(session.read({u":/codb/v301.codb"_s}), Outcome::Done);
        QCOMPARE(notified.size(), 0);
        // An edit from right before stays a step of its own.
        session.project->setGeneralSetting(u"mine"_s, u"1"_s);
        QCOMPARE(session.take(session.all(), Kind::Managed), Outcome::Done);
        QVERIFY(session.cargo.objects().size() > 40);
        QTRY_VERIFY(!undo.currentState().isEmpty());
        QCOMPARE(notified.size(), 2);
        QCOMPARE(notified.last().first().value<ObjectDataBase::ChangeSet>().kind,
                 ObjectDataBase::ProjectReplaced);
        undo.undo();
        QCOMPARE(session.project->getIndices(0), QList<quint16>());
        QCOMPARE(session.project->getGeneralSetting(u"mine"_s), u"1"_s);
        undo.undo();
        QCOMPARE(session.project->contentHash(), before);
        QVERIFY(!undo.canUndo());
    }

    void cancelLeavesTheProject()
    {
        Session session;
        session.project->addIndex(0, 0x2005, {.name = u"Mine"_s});
        const QString before = session.project->contentHash();
        QSignalSpy notified(session.project.get(), &ObjectDataBase::updateNotify);
        QByteArray rows = "index,sub,objectcode,datatype,edsname\n";
        for (int index = 0x2000; index < 0x5000; ++index)
            rows += "0x" + QByteArray::number(index, 16) + ",0,VARIABLE,UNSIGNED8,Some name\n";
        const QString path = ImportSupport::write(session.folder, u"a.csv"_s, rows);

        QCOMPARE(session.import.read({path}), QString());
        session.import.cancel();
        QSignalSpy read(&session.import, &FileImport::readFinished);
        QVERIFY(read.wait(20000));
        QCOMPARE(read.first().first().value<Outcome>(), Outcome::Cancelled);
        QCOMPARE(session.listed(), QList<quint16>());

        QCOMPARE(session.read({path}), Outcome::Done);
        QVERIFY(!session.import.read({path}).isEmpty() || session.import.isRunning());
        session.import.cancel();
        QTRY_VERIFY(!session.import.isRunning());
        QCOMPARE(session.read({path}), Outcome::Done);
        QSignalSpy taken(&session.import, &FileImport::takeFinished);
        // In the middle of the writing.
        connect(&session.import, &FileImport::progress, &session.import, [&](int percent) {
            if (percent > 20 && percent < 100)
                session.import.cancel();
        });
        session.cargo.choose(session.all(), Kind::Managed, false);
        QCOMPARE(session.import.take(), QString());
        QVERIFY(!session.import.take().isEmpty());
        QVERIFY(taken.wait(20000));
        QCOMPARE(taken.first().first().value<Outcome>(), Outcome::Cancelled);
        QCOMPARE(session.project->contentHash(), before);
        QCOMPARE(notified.size(), 0);
        QCOMPARE(session.import.resultText(), QString());
        QCOMPARE(session.errors, QStringList());
        // The store works on.
        QVERIFY(session.project->addIndex(0, 0x3000, {.name = u"New"_s}));
        QCOMPARE(notified.size(), 1);
    }

    void offersShippedSources_data()
    {
        QTest::addColumn<QStringList>("databases");
        QTest::newRow("CANopen Quillforge") << QStringList{u"other.vxmp"_s};
        QTest::newRow("J1939 Quillforge")
            << QStringList{u"J1939all.vxmp"_s, u"nmea2000.vxmp"_s, u"other.vxmp"_s};
        QTest::newRow("EnergyBus Marlwright") << QStringList{u"ebd.vxmp"_s, u"other.vxmp"_s};
        QTest::newRow("CAN Quillforge")
            << QStringList{u"J1939all.vxmp"_s, u"ebd.vxmp"_s, u"nmea2000.vxmp"_s, u"other.vxmp"_s};
    }

    void offersShippedSources()
    {
        const QTemporaryDir folder;
        for (const char *name :
             {"J1939all.vxmp", "ebd.vxmp", "nmea2000.vxmp", "other.vxmp", "mt.data"})
            (void)ImportSupport::write(folder, QLatin1String(name), "x");
        QStringList labels;
        int profiles = 0;
        const auto sources = FileImportSource::shipped(QString::fromLatin1(QTest::currentDataTag()),
                                                       {folder.path(), u":/none"_s});
        for (const FileImportSource &source : sources) {
            QVERIFY(FileImportFormat::of(source.path) != nullptr);
            if (source.path.startsWith(u":/codb/"_s)) {
                ++profiles;
                QVERIFY2(source.label.startsWith(u"CiA "_s), qPrintable(source.label));
            } else {
                labels.append(source.label);
            }
        }
        QCOMPARE(sources[3].label, u"CiA 402 - Drives"_s);
        QTEST(labels, "databases");
        QVERIFY(profiles >= 7);
    }

    void choosesPgns_data()
    {
        QTest::addColumn<quint32>("low");
        QTest::addColumn<quint32>("high");
        QTest::addColumn<int>("direction");
        QTest::addColumn<QList<quint32>>("sent");
        QTest::addColumn<QList<quint32>>("received");
        const QList<quint32> all{0x100, 0x200, 0x300};
        const QList<quint32> none;
        QTest::newRow("all") << 0U << 0x3FFFFU << 0 << all << all;
        QTest::newRow("range") << 0x101U << 0x200U << 0 << QList<quint32>{0x200}
                               << QList<quint32>{0x200};
        QTest::newRow("transmit") << 0U << 0x3FFFFU << int(ObjectDataBase::transmit) << all << none;
        QTest::newRow("receive") << 0x200U << 0x3FFFFU << int(ObjectDataBase::receive) << none
                                 << QList<quint32>{0x200, 0x300};
        QTest::newRow("nothing") << 1U << 0U << 0 << none << none;
    }

    void choosesPgns()
    {
        QFETCH(quint32, low);
        QFETCH(quint32, high);
        QFETCH(int, direction);
        const QTemporaryDir folder;
        const QString path = saveProject(folder, u"a.vxmp"_s);
        const auto store = ImportSupport::newStore();
        store->addNode(ObjectDataBase::stagingLine, ObjectDataBase::NODE_DATA_T());
        VXMPImporter importer;
        importer.setPgnRange(low, high);
        importer.setDirection(quint8(direction));
        ImportSupport::run(importer, *store, path, ObjectDataBase::stagingLine);
        QCOMPARE(importer.errorString(), QString());
        QTEST(store->getPGNList(ObjectDataBase::stagingLine, ObjectDataBase::transmit), "sent");
        QTEST(store->getPGNList(ObjectDataBase::stagingLine, ObjectDataBase::receive), "received");
        QCOMPARE(store->getIndices(ObjectDataBase::stagingLine), QList<quint16>{0x2000});
        // The file itself is only read.
        ObjectDataBase again;
        QVERIFY(again.openDataBase(path));
        QCOMPARE(again.getPGNList(0).size(), 6);
    }
};

QTEST_GUILESS_MAIN(TestFileImport)
#include "tst_fileimport.moc"
