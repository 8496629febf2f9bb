#include "resources/templates/projecttemplates.h"
#include "session/projectsession.h"
#include "session/versionnotes.h"
#include "store/undomanager.h"
#include "tests/support/projectfixture.h"
#include "tests/support/rows.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

const QString canopenEdition = u"CANopen Quillforge"_s;
const QString j1939Edition = u"J1939 Quillforge"_s;
const QString canEdition = u"CAN Quillforge"_s;
const QString energyBusEdition = u"EnergyBus Marlwright"_s;

/// A session with a store of its own.
struct Opened
{
    Opened()
    {
        const auto store = std::make_shared<ObjectDataBase>();
        store->createNewDataBase();
        session.setStore(store);
    }
    /// Empty if the project is open and up to date.
    QString open(const QString &path)
    {
        const QString error = session.open(path);
        if (error.isEmpty())
            notes = session.bringUpToDate(ProjectSession::Notes::All);
        return error;
    }
    void setNodeId(const QString &value) { store().setGeneralSetting(u"co_node_id"_s, value); }
    void step(const QString &nodeId)
    {
        setNodeId(nodeId);
        session.undo().handleDebounceTimeout();
    }
    ObjectDataBase &store() { return session.store(); }

    ProjectSession session;
    QStringList notes;
};

using Story = void (*)(Opened &);

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// What an open project is, without a window.
class TestProjectSession : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    QString project(const QString &name, const ProjectFixture::Options &options = {})
    {
        const QString path = m_folder.filePath(name);
        return ProjectFixture::save(path, options) ? path : QString();
    }

private slots:
    void init() { QCoreApplication::setApplicationName(canopenEdition); }

    void unsavedIsWhatDiffersFromTheFile_data()
    {
        addRows<int, Story>({
            {"set back by hand", 0,
             [](Opened &o) {
                 o.setNodeId(u"7"_s);
                 o.setNodeId(u"32"_s);
             }},
            {"object deleted and copied back", 0,
             [](Opened &o) {
                 o.store().copyIndex(0, 0x2000, 0, 0x2001);
                 o.store().deleteIndex(0, 0x2000);
                 o.store().moveIndex(0, 0x2001, 0, 0x2000);
             }},
            {"twice the same setting, and an object", 3,
             [](Opened &o) {
                 o.setNodeId(u"7"_s);
                 o.setNodeId(u"8"_s);
                 o.store().setSubIndexDefaultValue(0, 0x2000, 0, u"5"_s);
                 o.store().addIndex(0, 0x2001, {});
             }},
            {"edited after a save", 1,
             [](Opened &o) {
                 o.setNodeId(u"7"_s);
                 QCOMPARE(o.session.save(), QString());
                 o.setNodeId(u"32"_s);
             }},
            {"undone, and a key that saving writes", 0,
             [](Opened &o) {
                 o.step(u"7"_s);
                 o.session.undo().undo();
                 o.store().setMiscSetting(u"SaveToolVersion"_s, u"1"_s);
             }},
        });
    }

    void unsavedIsWhatDiffersFromTheFile()
    {
        const auto [count, story] = row<int, Story>();
        for (const QString &name : {u"device.vxmp"_s, u"device.vxmt"_s}) {
            Opened opened;
            QCOMPARE(opened.open(project(name)), QString());
            story(opened);
            const QString before = opened.store().contentHash();
            const ProjectSession::Unsaved unsaved = opened.session.findUnsaved();
            QCOMPARE(unsaved.count, count);
            QCOMPARE(unsaved.readError, QString());
            QCOMPARE(opened.store().contentHash(), before);
        }
    }

    void aNewProjectIsComparedWithItsBegin_data()
    {
        addRows<QString, int>({
            {"CANopen", canopenEdition, 0},
            {"J1939", j1939Edition, 0},
            {"EnergyBus", energyBusEdition, 0},
            {"CAN, J1939", canEdition, 2},
            {"CAN, both", canEdition, 6},
        });
    }

    void aNewProjectIsComparedWithItsBegin()
    {
        const auto [edition, type] = row<QString, int>();
        QCoreApplication::setApplicationName(edition);
        Opened opened;
        (void)opened.session.startNew(type); // there may be no template
        QVERIFY(opened.session.isAtSavedState());
        QCOMPARE(opened.session.findUnsaved().count, 0);
        opened.store().addIndex(0, 0x2000, {});
        QVERIFY(!opened.session.isAtSavedState());
        QCOMPARE(opened.session.findUnsaved().count, 1);
        opened.store().deleteIndex(0, 0x2000);
        QCOMPARE(opened.session.findUnsaved().count, 0);
    }

    /// What opening corrects is none of the user's modifications.
    void correctionsOfOlderProjectsDoNotCount()
    {
        const QString path = project(u"device.vxmp"_s);
        {
            ObjectDataBase store;
            QVERIFY(store.openDataBase(path));
            store.setGeneralSetting(u"udsserver_version"_s, u"5"_s);
            store.setGeneralSetting(u"drv_group_filter"_s, u"1"_s);
            QVERIFY(store.saveDatabase());
        }
        Opened opened;
        QCOMPARE(opened.open(path), QString());
        QCOMPARE(opened.store().getGeneralSetting(u"udsserver_version"_s), u"6"_s);
        QCOMPARE(opened.session.findUnsaved().count, 0);
        opened.setNodeId(u"7"_s);
        QCOMPARE(opened.session.findUnsaved().count, 1);
    }

    void failedOpenKeepsWhatIsThere_data()
    {
        addRows<QString, QByteArray>({
            {"missing", "none.vxmp", ""},
            {"missing text", "none.vxmt", ""},
            {"another suffix", "a.db", "x"},
            {"no suffix", "device", "x"},
            {"no database", "a.vxmp", QByteArray(5000, 'x')},
            {"no text project", "a.vxmt", "no project"},
            {"no path", "", ""},
        });
    }

    void failedOpenKeepsWhatIsThere()
    {
        const auto [name, content] = row<QString, QByteArray>();
        const QString bad = name.isEmpty() ? name : m_folder.filePath(name);
        QFile broken(bad);
        if (!content.isEmpty())
            QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write(content) > 0);
        broken.close();
        const QString good = project(u"good.vxmp"_s);
        Opened opened;
        QCOMPARE(opened.open(good), QString());
        opened.step(u"7"_s);
        QVERIFY(!opened.open(bad).isEmpty());
        QCOMPARE(opened.session.filePath(), good);
        QVERIFY(opened.session.undo().canUndo());
        QCOMPARE(opened.session.save(), QString());
        QCOMPARE(ProjectFixture::generalSetting(good, u"co_node_id"_s), u"7"_s);
    }

    void version3ProjectsAreNoted_data()
    {
        using enum ProjectSession::Notes;
        const QString common = u"co_common.c"_s;
        const QString memory = u"co_memcpy.c"_s;
        const QString copy = u"A copy"_s;
        // The notes by the first words that tell one from another.
        addRows<QString, QString, ProjectSession::Notes, bool, QStringList>({
            {"3.6", canopenEdition, "3.6.0", All, false, {common, copy}},
            {"3.6, CAN", canEdition, "3.6.2", All, false, {common, copy}},
            {"3.8, J1939", j1939Edition, "3.8.9", All, false, {memory, copy}},
            {"3.6, no notes", canopenEdition, "3.6.0", SkipStackFiles, false, {copy}},
            {"3.6, network tool", canopenEdition, "3.6.0", None, false, {}},
            {"3.8, copy there", canopenEdition, "3.8.0", All, true, {memory}},
            {"3.9", canEdition, "3.9.0", All, false, {copy}},
            {"4.0", canopenEdition, "4.0.0", All, false, {}},
            {"EnergyBus", energyBusEdition, "3.6.0", All, false, {"re-apply EnergyBus"}},
        });
    }

    void version3ProjectsAreNoted()
    {
        const auto [edition, version, wanted, copyExists, notes] =
            row<QString, QString, ProjectSession::Notes, bool, QStringList>();
        QCoreApplication::setApplicationName(edition);
        const QString path = project(u"old.vxmp"_s, {.savedByVersion = version});
        const QString copy = path + u".bak_v3"_s;
        QFile::remove(copy);
        if (copyExists)
            QVERIFY(QFile::copy(path, copy));
        const QByteArray before = contentOf(path);

        Opened opened;
        QCOMPARE(opened.session.open(path), QString());
        const QStringList told = opened.session.bringUpToDate(wanted);
        QCOMPARE(told.size(), notes.size());
        for (qsizetype i = 0; i < told.size(); ++i)
            QVERIFY2(told[i].contains(notes[i]), qPrintable(told[i]));
        const bool noted = !notes.isEmpty() && notes.first().startsWith(u"co_"_s);
        QCOMPARE(opened.store().getMiscSetting(u"PreviousToolVersion"_s),
                 noted ? version : QString());
        const bool copied = notes.contains(u"A copy"_s);
        QCOMPARE(QFile::exists(copy), copied || copyExists);
        if (copied) {
            QCOMPARE(told.last(), VersionNotes::copyKept(copy, path));
            QVERIFY(!before.isEmpty());
            QCOMPARE(contentOf(copy), before);
        }
    }

    void aStateBesideACorrectionIsNotSaved()
    {
        Opened opened;
        QCOMPARE(opened.open(project(u"device.vxmp"_s)), QString());
        opened.step(u"7"_s);
        opened.step(u"8"_s);
        opened.session.noteCorrection();
        QCOMPARE(opened.session.save(), QString());
        opened.session.undo().undo();
        opened.session.undo().redo();
        QVERIFY(!opened.session.isAtSavedState()); // the correction is in the file alone
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"tolvex"_s);
    QCoreApplication::setApplicationVersion(u"4.3.3"_s);
    ProjectTemplates::makeAvailable();
    TestProjectSession test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_projectsession.moc"
