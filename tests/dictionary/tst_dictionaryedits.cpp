#include "canopen/indextext.h"
#include "dictionary/dictionaryclipboard.h"
#include "dictionary/entryrules.h"
#include "dictionary/freenumbers.h"
#include "dictionary/lineedits.h"
#include "dictionary/mappinglinks.h"
#include "dictionary/objectedits.h"
#include "dictionary/recordedits.h"
#include "dictionary/subindexedits.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Record = ObjectDataBase::SUBINDEX_DATA_T;
using Edit = EditResult (*)(const EditContext &);

constexpr EditRights::Flags user{};
constexpr EditRights::Flags expert{.expert = true};

/// A dictionary as text, "2000A 0=2 1'CH01'=7/6s; L1 2001V 0=5": object type by its first letter,
/// then value, data type (5 is left out) and the marks s shared, m kept by the network tool, c
/// changed by the user.
void read(ObjectDataBase &store, const QString &text)
{
    static const QMap<QString, quint32> types = {
        {u"V"_s, CANopen::VAR}, {u"A"_s, CANopen::ARRAY}, {u"R"_s, CANopen::RECORD}};
    static const QRegularExpression pattern(
        u"^(\\d+)(?:'([^']*)')?=([^/]*?)(?:/(\\d+))?([smc]*)$"_s);
    for (const QString &part : text.split(u';', Qt::SkipEmptyParts)) {
        QStringList words = part.simplified().split(u' ');
        const quint8 line = words.first().startsWith(u'L') ? words.takeFirst().mid(1).toUInt() : 0;
        const QString head = words.takeFirst();
        const quint16 index = head.first(4).toUShort(nullptr, 16);
        const bool isArray = head.endsWith(u'A');
        store.addIndex(line, index,
                       {.name = u"Object"_s,
                        .datatype = quint16(isArray ? CAN::UNSIGNED8 : 0),
                        .objecttype = types.value(head.mid(4))});
        for (const QString &word : std::as_const(words)) {
            const auto match = pattern.match(word);
            const QString marks = match.captured(5);
            const quint16 type = match.captured(4).isEmpty() ? 5 : match.captured(4).toUShort();
            store.addSubIndex(line, index, match.captured(1).toUInt(),
                              {.name = match.captured(2),
                               .datatype = type,
                               .accesstype = u"rw"_s,
                               .defaultvalue = match.captured(3),
                               .changedbyuser = marks.contains(u'c'),
                               .sharedlines = marks.contains(u's'),
                               .managedbytsk = marks.contains(u'm')});
        }
    }
}

QString dump(ObjectDataBase &store)
{
    QStringList objects;
    for (const quint8 line : store.getLines()) {
        ObjectWalk walk(store, line);
        for (qsizetype i = 0; i < walk.size(); ++i) {
            const DictionaryObject &object = walk.at(i);
            QString text = line > 0 ? u"L%1 "_s.arg(line) : QString();
            text += IndexText::digits(object.index);
            text += u"DOMAIN VAR ARRAY RECORD"_s.split(u' ').value(
                std::max<int>(0, int(object.data.objecttype) - 6))[0];
            for (const auto &[subindex, isReadable, data] : object.entries) {
                text += u" %1"_s.arg(subindex);
                if (!data.name.isEmpty())
                    text += u'\'' + data.name.section(u' ', 0, 0) + u'\'';
                text += u'=' + data.defaultvalue;
                if (data.datatype != CAN::UNSIGNED8)
                    text += u"/%1"_s.arg(data.datatype);
                text += QString(data.sharedlines ? u"s"_s : QString()) +
                        (data.managedbytsk ? u"m"_s : QString()) +
                        (data.changedbyuser ? u"c"_s : QString());
            }
            objects.append(text);
        }
    }
    return objects.join(u"; ");
}

EditResult retype(const EditContext &context, quint8 subindex, quint16 dataType)
{
    Record data;
    context.store.getSubIndexData(context.line, 0x2000, subindex, data);
    EntryRules::setDataType(data, dataType);
    return RecordEdits::saveEntries(context, 0x2000, {{subindex, data}});
}

EditResult setObjectType(const EditContext &context, CANopen::ObjectCode objectCode)
{
    ObjectDataBase::INDEX_DATA_T data;
    context.store.getIndexData(context.line, 0x2000, data);
    data.objecttype = objectCode;
    return RecordEdits::saveObject(context, 0x2000, data);
}

EditResult pasteCopyOf(const EditContext &context, quint16 index, quint16 behind)
{
    DictionaryClipboard clipboard;
    if (!clipboard.copy(context.store, context.line, {index}))
        return EditResult::refused(u"nothing copied"_s);
    return ObjectEdits::paste(context, clipboard, behind);
}

} // namespace

class TestDictionaryEdits : public QObject
{
    Q_OBJECT

private slots:
    void edits_data()
    {
        struct Row
        {
            const char *name;
            EditRights::Flags flags;
            const char *before;
            Edit edit;
            const char *after; // "!" and a part of the reason for a refusal
        };
        QTest::addColumn<EditRights::Flags>("flags");
        QTest::addColumn<QString>("before");
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<QString>("after");
#define EDIT(call) [](const EditContext &c) { return call; }
        const Row rows[] = {
            // --- Objects
            {"remove 0x1018", user, "1018R 0=0", EDIT(ObjectEdits::remove(c, {0x1018})),
             "!expert mode"},
            {"remove shared", user, "2000V 0=1s; 2001V 0=1; L1 2000V 0=1s; L1 2001V 0=1",
             EDIT(ObjectEdits::remove(c, {0x2000, 0x2001})), "L1 2001V 0=1"},
            {"duplicate", user, "2000V 0=1; 2001V 0=2",
             EDIT(ObjectEdits::duplicate(c, {0x2000, 0x2001})),
             "2000V 0=1; 2001V 0=2; 2002V 0=1c; 2003V 0=2c"},
            {"duplicate shared", user, "2000V 0=1s; L1 2000V 0=1s; L1 2001V 0=9",
             EDIT(ObjectEdits::duplicate(c, {0x2000})),
             "2000V 0=1s; 2002V 0=1sc; L1 2000V 0=1s; L1 2001V 0=9; L1 2002V 0=1sc"},
            {"duplicate at the end", user, "5fffV 0=1", EDIT(ObjectEdits::duplicate(c, {0x5FFF})),
             "!expert mode"},
            {"paste", expert, "1017V 0=1; 2000V 0=2", EDIT(pasteCopyOf(c, 0x1017, 0x2000)),
             "1017V 0=1; 2000V 0=2; 2001V 0=1c"},
            {"paste outside", user, "1017V 0=1", EDIT(pasteCopyOf(c, 0x1017, 0x1017)),
             "!expert mode"},
            {"paste at", user, "2000V 0=1; 2002V 0=2; 3002V 0=9",
             [](auto &c) {
                 DictionaryClipboard clipboard;
                 const EditResult result = ObjectEdits::cut(c, {0x2002, 0x2000}, clipboard);
                 return result ? ObjectEdits::pasteAt(c, clipboard, 0x3000, u"Other"_s) : result;
             },
             "3000V 0=1c; 3002V 0=2c"},
            {"clear PDOs", expert, "13ffV 0=1; 1400R 0=0; 1a00R 0=0; 1c00V 0=1; 2000V 0=1",
             EDIT(ObjectEdits::remove(c, ObjectEdits::pdoObjects(c))),
             "13ffV 0=1; 1c00V 0=1; 2000V 0=1"},
            // --- Subindices
            {"add", user, "2000A 0=2 1'CH08'=1 2'CH09'=1m", EDIT(SubIndexEdits::addNext(c, 0x2000)),
             "2000A 0=3c 1'CH08'=1 2'CH09'=1m 3'CH10'=1c"},
            {"add of the library", user, "2000R 0=1 1'A'=1; L255 2000R 2'Lib'=7/6",
             EDIT(SubIndexEdits::add(c, 0x2000, 2)), "2000R 0=2c 1'A'=1 2'Lib'=7/6c"},
            {"add behind 254", user, "2000R 0=254 254'X'=1",
             EDIT(SubIndexEdits::addNext(c, 0x2000)), "!behind 254"},
            {"add to a variable", user, "2000V 0=1", EDIT(SubIndexEdits::addNext(c, 0x2000)),
             "!variable"},
            {"dynamic mapping keeps its count", expert, "1600R 0=1 1'M'=0/7",
             EDIT(SubIndexEdits::addNext(c, 0x1600)), "1600R 0=1 1'M'=0/7 2'M'=0/7c"},
            {"count above the rest is lowered", expert, "1600R 0=2 1'M'=0/7 2'M'=0/7",
             EDIT(SubIndexEdits::remove(c, {{0x1600, 2}})), "1600R 0=1c 1'M'=0/7"},
            {"MPDO mark stays", expert, "1600R 0=255 1'M'=0/7 2'M'=0/7",
             EDIT(SubIndexEdits::remove(c, {{0x1600, 2}})), "1600R 0=255 1'M'=0/7"},
            {"right count is not spelled anew", user, "2000R 0=0x02 1'A'=1 2'B'=1",
             EDIT(SubIndexEdits::remove(c, {{0x2000, 1}})), "2000R 0=0x02 2'B'=1"},
            {"remove the count", user, "2000R 0=1 1'A'=1",
             EDIT(SubIndexEdits::remove(c, {{0x2000, 0}})), "!with its object"},
            {"remove what the tool keeps", user, "2000R 0=1 1'A'=1m",
             EDIT(SubIndexEdits::remove(c, {{0x2000, 1}})), "!network tool"},
            {"remove shared subindex", user,
             "2000R 0=2 1'A'=1s 2'B'=1s; L1 2000R 0=2 1'A'=1s 2'B'=1s",
             EDIT(SubIndexEdits::remove(c, {{0x2000, 2}})),
             "2000R 0=1c 1'A'=1s; L1 2000R 0=1c 1'A'=1s"},
            {"duplicate subindex", user, "2000R 0=3 1'A'=1 3'C'=3",
             EDIT(SubIndexEdits::duplicate(c, {{0x2000, 1}})), "2000R 0=3 1'A'=1 2'A'=1c 3'C'=3"},
            {"increment", user, "1a00R 0=1 1'M'=0x20000208/7; 2000R 0=2 1'A'=1 2'B'=2",
             EDIT(SubIndexEdits::increment(c, {0x2000, 1})),
             "1a00R 0=1 1'M'=0x20000308/7c; 2000R 0=3c 2'A'=1c 3'B'=2c"},
            {"decrement", user, "2000R 0=3 2'A'=1 3'B'=2",
             EDIT(SubIndexEdits::decrement(c, {0x2000, 2})), "2000R 0=2c 1'A'=1c 2'B'=2c"},
            {"decrement to 0", user, "2000R 0=1 1'A'=1",
             EDIT(SubIndexEdits::decrement(c, {0x2000, 1})), "!not free"},
            {"move", user, "1400R 0=0; 1600R 0=1 1'M'=0x20000108/7; 2000R 0=1 1'A'=1; 2001R 0=0",
             EDIT(SubIndexEdits::move(c, {0x2000, 1}, 0, {0x2001, 5})),
             "1400R 0=0; 1600R 0=1 1'M'=0x20010508/7c; 2000R 0=0c; 2001R 0=5c 5'A'=1c"},
            // --- Records
            {"data type of a mapped value", user, "1600R 0=1 1'M'=0x20000110/7; 2000R 0=1 1'A'=1/6",
             EDIT(retype(c, 1, CAN::UNSIGNED8)), "1600R 0=1 1'M'=0x20000108/7c; 2000R 0=1 1'A'=1c"},
            {"data type of a shared mapped value", user,
             "2000V 0=1/6s; L1 1600R 0=1 1'M'=0x20000010/7; L1 2000V 0=1/6s",
             EDIT(retype(c, 0, CAN::UNSIGNED8)),
             "2000V 0=1sc; L1 1600R 0=1 1'M'=0x20000008/7c; L1 2000V 0=1sc"},
            {"default values of the library", user,
             "2000R 0=2 1'A'=1 2'B'=5; L255 2000R 0=9 1'A'=7",
             EDIT(RecordEdits::resetDefaults(c, 0x2000)), "2000R 0=2 1'A'=7c 2'B'=5"},
            {"data type without length", user, "1600R 0=1 1'M'=0x20000110/7; 2000R 0=1 1'A'=1/6",
             EDIT(retype(c, 1, CAN::VISIBLE_STRING)),
             "1600R 0=1 1'M'=0x20000110/7; 2000R 0=1 1'A'=1/9c"},
            {"data type outside", user, "2000R 0=1 1'A'=1m", EDIT(retype(c, 1, CAN::UNSIGNED16)),
             "!network tool"},
            {"object without a change", user, "2000V 0=1", EDIT(setObjectType(c, CANopen::VAR)),
             "2000V 0=1"},
            {"variable to array", user, "1a00R 0=1 1'M'=0x20000010/7; 2000V 0'Name'=7/6",
             EDIT(setObjectType(c, CANopen::ARRAY)),
             "1a00R 0=1 1'M'=0x20000110/7c; 2000A 0'Highest'=1c 1'Name'=7/6c"},
            {"shared variable to record", user, "2000V 0'Name'=7s; L1 2000V 0'Name'=7s",
             EDIT(setObjectType(c, CANopen::RECORD)),
             "2000R 0'Highest'=1sc 1'Name'=7sc; L1 2000R 0'Highest'=1sc 1'Name'=7sc"},
            {"record to variable", user, "1a00R 0=1 1'M'=0x20000108/7; 2000R 0=2 1'A'=7 2'B'=8",
             EDIT(setObjectType(c, CANopen::VAR)), "1a00R 0=1 1'M'=0x20000008/7c; 2000V 0'A'=7c"},
            {"attribute of all", expert, "1000V 0=1/7; 2000V 0=1c; 2001V 0=1/9; 2002V 0=1m",
             EDIT(LineEdits::run(c, LineEdits::Command::SetLimitCheck)),
             "1000V 0=1/7c; 2000V 0=1c; 2001V 0=1/9; 2002V 0=1m"},
            {"attribute of all by a user", user, "2000V 0=1",
             EDIT(LineEdits::run(c, LineEdits::Command::SetHasDefault)), "!expert mode"},
            {"shared object is made where it misses", user, "2000R 0=1 1'A'=1; L1 2001V 0=1",
             [](auto &c) {
                 Record data;
                 c.store.getSubIndexData(0, 0x2000, 1, data);
                 data.sharedlines = true;
                 return RecordEdits::saveEntries(c, 0x2000, {{1, data}});
             },
             "2000R 0=1 1'A'=1sc; L1 2000R 0=1c 1'A'=1sc; L1 2001V 0=1"},
        };
#undef EDIT
        for (const Row &row : rows)
            QTest::newRow(row.name)
                << row.flags << QString(row.before) << row.edit << QString(row.after);
    }
    void edits()
    {
        QFETCH(EditRights::Flags, flags);
        QFETCH(QString, before);
        QFETCH(Edit, edit);
        QFETCH(QString, after);
        ObjectDataBase store;
        ObjectDataBase library;
        QVERIFY(store.createNewDataBase() && library.createNewDataBase());
        QVERIFY(library.addNode(ObjectDataBase::stagingLine, {}));
        QStringList own;
        for (const QString &part : before.split(u"; "_s)) {
            if (part.contains(u"L1 "_s) && !store.lineExists(1))
                QVERIFY(store.addNode(1, {}));
            part.startsWith(u"L255"_s) ? read(library, part) : own.append(part);
        }
        before = own.join(u"; ");
        read(store, before);
        QCOMPARE(dump(store), before);

        const QString hash = store.contentHash();
        const EditContext context{store, 0, EditRights(flags), &library};
        const EditResult result = edit(context);
        if (after.startsWith(u'!')) {
            QVERIFY2(result.reason().contains(after.mid(1)), qPrintable(result.reason()));
            QCOMPARE(store.contentHash(), hash);
            return;
        }
        QVERIFY2(result, qPrintable(result.reason()));
        QCOMPARE(dump(store), after);
        // What was read before doesn't stand in the way.
        QVERIFY(store.cacheAllSubs(0));
        QCOMPARE(dump(store), after);
    }

    void newObjects()
    {
        ObjectDataBase store;
        QVERIFY(store.createNewDataBase());
        const EditContext context{store, 0, EditRights(), nullptr};
        for (const auto &[index, reason] : {std::pair{0x1000U, "communication segment manually"},
                                            {0x6000U, "only supported in the expert mode"},
                                            {0x12000U, "0xFFFF"}})
            QVERIFY(ObjectEdits::add(context, index, CANopen::VAR)
                        .reason()
                        .contains(QLatin1String(reason)));
        QVERIFY(ObjectEdits::add(context, 0x2000, CANopen::RECORD));
        QVERIFY(!ObjectEdits::add(context, 0x2000, CANopen::VAR));
        QCOMPARE(dump(store), u"2000R 0'Highest'=1c 1'Subindex'=0c"_s);
        store.addIndex(0, 0x2000, {.objecttype = CANopen::RECORD, .metadata = {{u"a"_s, u"b"_s}}});
        QVERIFY(ObjectEdits::add(context, 0x2000, CANopen::VAR, ObjectEdits::Existing::Replace));
        QCOMPARE(dump(store), u"2000V 0'New'=0c"_s);
        ObjectDataBase::INDEX_DATA_T data;
        QVERIFY(store.getIndexData(0, 0x2000, data) && data.metadata.isEmpty());
    }

    void freeNumbers()
    {
        ObjectDataBase store;
        QVERIFY(store.createNewDataBase() && store.addNode(1, {}));
        read(store, u"2000V 0=1; 2001V 0=1s; ffffV 0=1; L1 2002V 0=1; 3000R 0=0 1=0 4=0;"
                    "3001R 0=0 127=0; 1381R 0=0 1=0x20000008/7; 1a05R 0=0 3=536870920/7"_s);
        QCOMPARE(FreeNumbers::getNextFreeIndex(store, 0, 0x2000), quint16(0x2002));
        QCOMPARE(FreeNumbers::getNextFreeIndex(store, 0, 0x2001), quint16(0x2003));
        QCOMPARE(FreeNumbers::getNextFreeIndex(store, 0, 0xFFFF), quint16(0));
        const auto offered = [&](quint16 index) {
            return FreeNumbers::definedSubindices(readDictionaryObject(store, 0, index));
        };
        QCOMPARE(offered(0x3000), (QList<quint8>{2, 3, 5, 128}));
        QCOMPARE(offered(0x3001).last(2), (QList<quint8>{126, 128}));
        QCOMPARE(getMappingsOfObject(store, 0, 0x2000, 0),
                 (QList<ObjectDataBase::SubIndexKey>{{0x1381, 1}, {0x1A05, 3}}));
    }

    void recordRules()
    {
        Record data{.datatype = CAN::UNSIGNED8, .lowlimit = u"1"_s, .limitineds = true};
        EntryRules::setDataType(data, CAN::UNSIGNED64);
        QVERIFY(data.lowlimit.isEmpty() && data.uplimit.isEmpty() && !data.limitineds);
        EntryRules::setLimitCheck(data, true);
        QVERIFY(!data.limitineds);
        EntryRules::setDataType(data, CAN::INTEGER8);
        EntryRules::setLimitCheck(data, true);
        QCOMPARE(data.lowlimit + u'/' + data.uplimit, u"-128/127"_s);
        EntryRules::setDataType(data, CAN::REAL32);
        QCOMPARE(data.uplimit, u"127"_s);

        QCOMPARE(EntryRules::raised(u"Channel"_s), u"Channel"_s);
        QCOMPARE(EntryRules::raised(u"Sensor 3 in 99 m"_s), u"Sensor 3 in 100 m"_s);
        QCOMPARE(EntryRules::convertHexDec(u"0xFFFFFFFFFFFFFFFF"_s), u"18446744073709551615"_s);
        QCOMPARE(EntryRules::convertHexDec(u"16"_s), u"0x10"_s);
        for (const QString &text : {u"-1"_s, u"$NODEID+1"_s, u""_s, u"0x-1"_s})
            QVERIFY2(!EntryRules::convertHexDec(text), qPrintable(text));

        const EditRights rights;
        const auto mayEdit = [&](quint16 index, quint8 subindex, SubIndexField field) {
            return rights.edit(index, subindex, data, field).isDone();
        };
        data.implementation = CANopen::Variable;
        QVERIFY(mayEdit(0x1018, 1, SubIndexField::Implementation));
        QVERIFY(!mayEdit(0x1017, 0, SubIndexField::Implementation));
        QVERIFY(!mayEdit(0x1010, 3, SubIndexField::VariableName));
        QVERIFY(mayEdit(0x1010, 4, SubIndexField::VariableName));
        QVERIFY(mayEdit(0x1000, 0, SubIndexField::DefaultValue));
        QVERIFY(!mayEdit(0x1000, 0, SubIndexField::AccessType));
        QCOMPARE(offeredAccessTypes({.accesstype = u"rx"_s, .allowedaccesstypes = u"ro, rw"_s}),
                 (QStringList{u"ro"_s, u"rw"_s, u"rx"_s}));
    }

    void failedWriteLeavesNothing()
    {
        ObjectDataBase store;
        QVERIFY(store.createNewDataBase());
        read(store, u"2000R 0=1 1'A'=1; 2001V 0=5"_s);
        const QString hash = store.contentHash();
        const EditContext context{store, 0, EditRights(), nullptr};
        store.setGenerating(true);
        QVERIFY(ObjectEdits::remove(context, {0x2000}).reason().contains(u"can't be changed"_s));
        store.setGenerating(false);
        // The second object can't be written.
        QVERIFY(
            store.executeSql(u"create trigger t before insert on Objects0 when "
                             "new.objectindex = 8195 begin select raise(abort, 'full'); end"_s));
        QVERIFY(!ObjectEdits::duplicate(context, {0x2000, 0x2001}));
        QVERIFY(store.executeSql(u"drop trigger t"_s));
        QCOMPARE(dump(store), u"2000R 0=1 1'A'=1; 2001V 0=5"_s);
        store.purgeStrings();
        QCOMPARE(store.contentHash(), hash);
    }

    void manyObjectsAtOnce()
    {
        ObjectDataBase store;
        QVERIFY(store.createNewDataBase());
        QList<quint16> indices;
        QString text;
        for (quint16 index = 0x2000; index < 0x2000 + 1000; ++index) {
            text += IndexText::digits(index) + u"R 0=4 1'A'=1 2'B'=1 3'C'=1 4'D'=1;"_s;
            indices.append(index);
        }
        read(store, text);
        const EditContext context{store, 0, EditRights(), nullptr};
        DictionaryClipboard clipboard;
        QVERIFY(clipboard.copy(store, 0, indices));
        QList<quint16> made;
        QVERIFY(ObjectEdits::paste(context, clipboard, 0x2000, &made));
        QCOMPARE(made.size(), 1000);
        QVERIFY(ObjectEdits::remove(context, indices));
        QCOMPARE(store.getIndices(0, 0x2000), made);
    }
};

QTEST_GUILESS_MAIN(TestDictionaryEdits)
#include "tst_dictionaryedits.moc"
