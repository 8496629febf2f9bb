#include "canopen/cohelper.h"
#include "canopen/helper.h"
#include "documents/xddgenerator.h"
#include "import/xddimporter.h"
#include "tests/documents/textdocproject.h"

using Entry = DocumentProject::Entry;
using Object = DocumentProject::Object;

namespace {

QStringList accesses()
{
    return {"const", "ro", "wo", "rw", "rwr", "rww"};
}

/// What a document says of an entry, as a reader can tell it.
QStringList fieldsOf(const Entry &entry)
{
    return {entry.name,     entry.accesstype, entry.pdomapping.label(),       entry.defaultvalue,
            entry.lowlimit, entry.uplimit,    QString::number(entry.datatype)};
}

/// The entry as it comes back: the document knows no direction of services, no mapping by default,
/// no value that is not meant for it.
Entry carried(Entry entry, quint16 index, quint8 subindex)
{
    entry.name = Helper::substituteVariables(entry.name, index, subindex, 0);
    if (entry.accesstype.startsWith("rw"))
        entry.accesstype = "rw";
    if (!entry.pdomapping.isEqualToType(PDOMapping::Forbidden) &&
        !entry.pdomapping.isEqualToType(PDOMapping::RPDO))
        entry.pdomapping = PDOMapping::Allowed;
    if (entry.writedefaulttoeds == 0)
        entry.defaultvalue.clear();
    if (!entry.limitineds) {
        entry.lowlimit.clear();
        entry.uplimit.clear();
        COHelper::getDefaultLimits(entry.datatype, entry.lowlimit, entry.uplimit);
    }
    return entry;
}

} // namespace

class TestXddRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { DocumentProject::initApplication(); }

    void roundTrip()
    {
        DocumentProject project;
        QVERIFY(project.isReady());
        const QMap<quint16, QString> &types = COHelper::stringDataTypeIndexMap();
        QList<quint16> indices;
        quint16 index = 0x2000;
        int turn = 0;
        for (auto type = types.begin(); type != types.end(); ++type, ++index, ++turn) {
            const quint32 code = turn % 3 == 0   ? CANopen::VAR
                                 : turn % 3 == 1 ? CANopen::ARRAY
                                                 : CANopen::RECORD;
            indices.append(index);
            project.add(index, code, "<&\"' ä漢😀 $I", {},
                        code == CANopen::VAR ? type.key() : quint16(5));
            for (int subindex = 0; subindex <= (code == CANopen::VAR ? 0 : 11);
                 ++subindex, ++turn) {
                Entry entry = DocumentProject::entry("sub\n{$s}", type.key(),
                                                     accesses().at(turn % 6), "$NODEID+<5>\t ");
                entry.pdomapping = PDOMapping::fromUInt(static_cast<uint>(turn % 5));
                entry.writedefaulttoeds = turn % 2 == 0 ? 2 : 0;
                entry.limitineds = turn % 7 == 0;
                entry.lowlimit = entry.limitineds ? "-1" : "";
                project.add(index, static_cast<quint8>(subindex), entry);
            }
        }
        XDDGenerator generator;
        QVERIFY(project.generate(generator).startsWith("<?xml"));

        XDDImporter importer;
        importer.setLine(1);
        importer.setDatabase(&project.store());
        importer.setRange(0x1000, 0xFFFF);
        importer.setFile(project.folder() + "/" + generator.fileName());
        importer.doImport();
        QCOMPARE(importer.errorString(), QString());
        QCOMPARE(importer.messages(), QStringList());

        ObjectDataBase &store = project.store();
        QCOMPARE(store.getIndices(1, 0x1000), indices);
        for (const quint16 number : std::as_const(indices)) {
            Object before;
            Object after;
            QVERIFY(store.getIndexData(0, number, before) && store.getIndexData(1, number, after));
            QCOMPARE(after.name, Helper::substituteVariables(before.name, number, 0, 0));
            QCOMPARE(after.objecttype, before.objecttype);
            QCOMPARE(after.datatype, before.datatype);
            QCOMPARE(store.getSubIndices(1, number), store.getSubIndices(0, number));
            const QList<quint8> subindices = store.getSubIndices(0, number);
            for (const quint8 subindex : subindices) {
                Entry written;
                Entry read;
                store.getSubIndexData(0, number, subindex, written);
                store.getSubIndexData(1, number, subindex, read);
                QCOMPARE(fieldsOf(read), fieldsOf(carried(written, number, subindex)));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestXddRoundTrip)
#include "xddroundtrip.moc"
