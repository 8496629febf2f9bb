#include "canopen/cohelper.h"
#include "import/codbimporterline.h"
#include "resources/codb/standardprofiles.h"
#include "tests/support/storefile.h"

#include <QDir>
#include <QMap>
#include <QRegularExpression>
#include <QtTest>

#include <array>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace {

const auto dataFolder = QStringLiteral(REFERENCE_DATA_DIR "/");

/// What a profile says of one object.
struct Object
{
    quint32 code = 0;
    quint16 dataType = 0;
    QMap<quint8, CodbLine> entries;
};

QList<QByteArray> linesOf(const QString &name)
{
    QFile file(StandardProfiles::folder + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> lines = file.readAll().split('\n');
    // Each line has its end, so behind the last one there is nothing.
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QString numberText(int index, int subindex = -1)
{
    const QString text = QString::number(index, 16).toUpper();
    return subindex < 0 ? text : text + u':' + QString::number(subindex, 16);
}

struct Range
{
    int first;
    int last;
};

} // namespace

/// The profile databases and the prototypes that ship with the program.
class TestProfiles : public QObject
{
    Q_OBJECT

private:
    static void addProfiles()
    {
        QTest::addColumn<QString>("name");
        const QStringList names = QDir(StandardProfiles::folder).entryList(QDir::Files);
        for (const QString &name : names)
            QTest::newRow(qPrintable(name)) << name;
    }

    static QMap<int, Object> read(const QString &name)
    {
        QMap<int, Object> objects;
        const QList<QByteArray> lines = linesOf(name);
        for (const QByteArray &text : lines) {
            const CodbLine line = CodbLine::parse(QString::fromUtf8(text).chopped(1));
            if (line.kind() == CodbLine::Kind::Object) {
                Object &object = objects[line.index()];
                object.code = line.objectCode();
                object.dataType = COHelper::mapDataTypeString(line.field(CodbLine::DataType));
                if (object.code == CANopen::VAR)
                    object.entries.insert(0, line);
            } else if (line.kind() == CodbLine::Kind::Subindex) {
                objects[line.index()].entries.insert(line.subindex(), line);
            } else if (line.kind() == CodbLine::Kind::Copy) {
                objects[line.index()] = objects.value(line.source());
            }
        }
        return objects;
    }

private slots:
    void initTestCase() { StandardProfiles::makeAvailable(); }

    void profilesAreThere()
    {
        const QStringList names{u"v301.codb"_s, u"v302.codb"_s, u"v401.codb"_s, u"v402.codb"_s,
                                u"v406.codb"_s, u"v410.codb"_s, u"v418.codb"_s};
        QCOMPARE(QDir(StandardProfiles::folder).entryList(QDir::Files), names);
    }

    void linesAreWellFormed_data() { addProfiles(); }
    void linesAreWellFormed()
    {
        QFETCH(QString, name);
        const QList<QByteArray> lines = linesOf(name);
        QSet<QByteArray> keys;
        QSet<int> objects;
        for (const QByteArray &text : lines) {
            QVERIFY2(text.endsWith('\r') && text.count('\r') == 1, text);
            const CodbLine line = CodbLine::parse(QString::fromUtf8(text).chopped(1));
            QVERIFY2(line.kind() != CodbLine::Kind::Faulty && line.kind() != CodbLine::Kind::Unused,
                     text);
            if (line.kind() == CodbLine::Kind::Nothing)
                continue;
            if (line.kind() == CodbLine::Kind::Copy) {
                QVERIFY2(objects.contains(line.source()) && !objects.contains(line.index()), text);
                objects.insert(line.index());
                continue;
            }
            QVERIFY2(text.count(':') == 22 && line.doubt().isEmpty(), text);
            QVERIFY2(!line.field(CodbLine::Name).trimmed().isEmpty(), text);
            // Nothing stands twice, but for a variable whose subindex says more than its object
            // line.
            const QByteArray key = text.left(line.kind() == CodbLine::Kind::Object ? 6 : 7);
            QVERIFY2(!keys.contains(key), text);
            keys.insert(key);
            if (line.kind() == CodbLine::Kind::Object)
                objects.insert(line.index());
            static const QStringList categories{u"mandatory"_s, u"optional"_s, u"conditional"_s};
            QVERIFY2(categories.contains(line.field(CodbLine::Category)), text);
        }
        QVERIFY(!objects.isEmpty());
    }

    void objectsAreComplete_data() { addProfiles(); }
    void objectsAreComplete()
    {
        QFETCH(QString, name);
        const QMap<int, Object> base = read(u"v301.codb"_s);
        const QMap<int, Object> objects = read(name);
        // Lists whose subindex 0 counts what is in use.
        constexpr std::array counters{Range{0x1003, 0x1003}, Range{0x1600, 0x17FF},
                                      Range{0x1A00, 0x1BFF}};
        for (auto object = objects.begin(); object != objects.end(); ++object) {
            const QByteArray tag = numberText(object.key()).toLatin1();
            if (object->code == 0) {
                // Single values of an object of the communication profile.
                QVERIFY2(base.contains(object.key()), tag);
                for (const quint8 subindex : object->entries.keys())
                    QVERIFY2(base.value(object.key()).entries.contains(subindex), tag);
                continue;
            }
            QVERIFY2(object->entries.contains(0), tag);
            if (object->code == CANopen::VAR) {
                QCOMPARE(object->entries.size(), 1);
                continue;
            }
            QVERIFY2(object->entries.size() > 1, tag);
            const auto count = object->entries.value(0).entryData();
            QVERIFY2(count.datatype == CAN::UNSIGNED8, tag);
            const bool counts =
                std::any_of(counters.begin(), counters.end(), [&](const Range &range) {
                    return object.key() >= range.first && object.key() <= range.last;
                });
            const int highest = count.defaultvalue.toInt(nullptr, 0);
            QVERIFY2(counts ? highest <= object->entries.lastKey()
                            : highest == object->entries.lastKey(),
                     tag);
            if (object->code != CANopen::ARRAY)
                continue;
            for (auto entry = object->entries.begin(); entry != object->entries.end(); ++entry)
                QVERIFY2(entry.key() == 0 || entry->entryData().datatype == object->dataType, tag);
        }
    }

    void valuesFitTheirTypes_data() { addProfiles(); }
    void valuesFitTheirTypes()
    {
        QFETCH(QString, name);
        static const QStringList accessTypes{u"const"_s, u"ro"_s,  u"wo"_s,
                                             u"rw"_s,    u"rwr"_s, u"rww"_s};
        const QMap<int, Object> objects = read(name);
        for (auto object = objects.begin(); object != objects.end(); ++object) {
            for (auto line = object->entries.begin(); line != object->entries.end(); ++line) {
                const QByteArray tag = numberText(object.key(), line.key()).toLatin1();
                const auto entry = line->entryData();
                QVERIFY2(entry.datatype != 0, tag);
                QVERIFY2(accessTypes.contains(line->field(CodbLine::AccessType)), tag);
                const QStringList allowed =
                    entry.allowedaccesstypes.split(u',', Qt::SkipEmptyParts);
                for (const QString &access : allowed)
                    QVERIFY2(accessTypes.contains(access), tag);
                QVERIFY2(allowed.isEmpty() || allowed.contains(entry.accesstype), tag);
                QString value = line->field(CodbLine::DefaultValue);
                QString low;
                QString high;
                if (value.isEmpty() || entry.datatype == CAN::REAL32)
                    continue;
                value.remove(u"$NODEID+"_s);
                bool isNumber = false;
                const qint64 number = value.toLongLong(&isNumber, 0);
                QVERIFY2(isNumber, tag);
                if (COHelper::getDefaultLimits(entry.datatype, low, high))
                    QVERIFY2(number >= low.toLongLong() && number <= high.toLongLong(), tag);
            }
        }
    }

    void indicesAreKnown_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QList<Range>>("ranges");
        constexpr Range deviceType{0x1000, 0x1000};
        constexpr Range mappings{0x1600, 0x1603};
        constexpr Range sent{0x1A00, 0x1A03};
        const auto row = [](const char *name, const QList<Range> &ranges) {
            QTest::newRow(name) << QString::fromLatin1(name) << ranges;
        };
        row("v301.codb", {{0x1000, 0x102A}, {0x1200, 0x12FF}, {0x1400, 0x17FF}, {0x1800, 0x1BFF}});
        row("v302.codb", {{0x102A, 0x102A}, {0x1F00, 0x1F9F}});
        row("v401.codb", {deviceType,
                          {0x1400, 0x1403},
                          mappings,
                          {0x1800, 0x1803},
                          sent,
                          {0x6000, 0x6128},
                          {0x6200, 0x6328},
                          {0x6400, 0x6450},
                          {0x67FF, 0x67FF}});
        row("v402.codb", {deviceType,
                          mappings,
                          sent,
                          {0x6007, 0x6007},
                          {0x603F, 0x60FF},
                          {0x6402, 0x6407},
                          {0x6502, 0x6505},
                          {0x67FF, 0x67FF}});
        row("v406.codb", {deviceType,
                          {0x1A00, 0x1A01},
                          {0x6000, 0x6050},
                          {0x6200, 0x6200},
                          {0x6300, 0x6337},
                          {0x6400, 0x6402},
                          {0x6500, 0x650B}});
        row("v410.codb",
            {deviceType, {0x1A00, 0x1A00}, {0x6000, 0x6000}, {0x6010, 0x6024}, {0x6110, 0x6124}});
        row("v418.codb", {deviceType, {0x6000, 0x6080}});
    }
    void indicesAreKnown()
    {
        QFETCH(QString, name);
        QFETCH(QList<Range>, ranges);
        const QList<int> indices = read(name).keys();
        QList<bool> used(ranges.size());
        for (const int index : indices) {
            bool known = false;
            for (qsizetype i = 0; i < ranges.size(); ++i) {
                if (index >= ranges[i].first && index <= ranges[i].last)
                    known = used[i] = true;
            }
            QVERIFY2(known, qPrintable(numberText(index)));
        }
        QVERIFY(!used.contains(false));
    }

    void communicationProfileIsComplete()
    {
        const QMap<int, Object> objects = read(u"v301.codb"_s);
        // CiA 301 leaves these numbers free.
        const QSet<int> gaps{0x1004, 0x100B, 0x100E, 0x100F};
        for (int index = 0x1000; index <= 0x102A; ++index) {
            const bool expected = !gaps.contains(index) && (index < 0x101A || index > 0x101F);
            QVERIFY2(objects.contains(index) == expected, qPrintable(numberText(index)));
        }
        for (const Range range : {Range{0x1200, 0x12FF}, Range{0x1400, 0x1BFF}}) {
            for (int index = range.first; index <= range.last; ++index)
                QVERIFY2(objects.contains(index), qPrintable(numberText(index)));
        }
    }

    void defaultMappingsResolve()
    {
        const std::tuple<QString, int> rows[] = {
            {u"v401.codb"_s, 8}, {u"v402.codb"_s, 8}, {u"v406.codb"_s, 2}, {u"v410.codb"_s, 1}};
        for (auto [name, mappings] : rows) {
            const QMap<int, Object> objects = read(name);
            for (auto object = objects.lowerBound(0x1600); object != objects.lowerBound(0x1C00);
                 ++object) {
                if (object.key() >= 0x1800 && object.key() < 0x1A00)
                    continue;
                --mappings;
                int bits = 0;
                const int count =
                    object->entries.value(0).entryData().defaultvalue.toInt(nullptr, 0);
                QVERIFY(count > 0);
                for (int i = 1; i <= count; ++i) {
                    const uint entry =
                        object->entries.value(quint8(i)).entryData().defaultvalue.toUInt(nullptr,
                                                                                         0);
                    const QByteArray tag = numberText(object.key(), i).toLatin1();
                    const auto &target = objects.value(int(entry >> 16)).entries;
                    QVERIFY2(target.contains(quint8(entry >> 8)), tag);
                    const auto data = target.value(quint8(entry >> 8)).entryData();
                    QVERIFY2(COHelper::getDataLengthBits(data.datatype) == quint8(entry), tag);
                    QVERIFY2(data.pdomapping == PDOMapping::Allowed, tag);
                    QVERIFY2((data.accesstype == "ro"_L1) == (object.key() >= 0x1A00), tag);
                    bits += quint8(entry);
                }
                QVERIFY(bits <= 64);
            }
            QCOMPARE(mappings, 0);
        }
    }

    void prototypes()
    {
        ObjectDataBase store;
        QVERIFY2(store.openDataBase(dataFolder + u"objects.data"_s),
                 qPrintable(store.lastErrorText()));
        const QList<quint16> indices{0x1005, 0x1006, 0x1007, 0x100C, 0x100D, 0x1012, 0x1014, 0x1015,
                                     0x1016, 0x1019, 0x1028, 0x102A, 0x1280, 0x1300, 0x1301, 0x1381,
                                     0x13FE, 0x13FF, 0x1400, 0x1600, 0x1800, 0x1A00};
        QCOMPARE(store.getIndices(0), indices);
        QCOMPARE(store.getLines(), QList<quint8>{0});
        // What the forms multiply or delete has to be there.
        QCOMPARE(store.getSubIndices(0, 0x1016), QList<quint8>({0, 1}));
        QCOMPARE(store.getSubIndices(0, 0x1280), QList<quint8>({0, 1, 2, 3}));
        QCOMPARE(store.getSubIndices(0, 0x1301), QList<quint8>({0, 1, 2, 3, 4, 5, 6}));
        QCOMPARE(store.getSubIndices(0, 0x1400), QList<quint8>({0, 1, 2, 3, 5}));
        QCOMPARE(store.getSubIndices(0, 0x1800), QList<quint8>({0, 1, 2, 3, 5, 6}));
        for (const quint16 mapping : {0x1381, 0x1600, 0x1A00}) {
            QCOMPARE(store.getSubIndexDefaultValue(0, mapping, 0).toInt(), 0);
            QVERIFY(store.subIndexExists(0, mapping, 1));
        }
    }
};

QTEST_GUILESS_MAIN(TestProfiles)
#include "tst_profiles.moc"
