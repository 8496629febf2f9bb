#include "resources/codb/standardprofiles.h"
#include "tests/app/windowtest.h"

#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>

using namespace WindowParts;

namespace {

constexpr quint8 staging = ObjectDataBase::stagingLine;

/// What a user does with the import dialog.
int importAll(QDialog &dialog, const QString &path)
{
    const auto press = [&](const char *button) {
        QTest::mouseClick(dialog.findChild<QPushButton *>(QLatin1String(button)), Qt::LeftButton);
    };
    dialog.show();
    dialog.findChild<QComboBox *>(u"cbFile"_s)->setEditText(path);
    dialog.findChild<QLineEdit *>(u"leStartIndex"_s)->setText(u"0x2000"_s);
    dialog.findChild<QLineEdit *>(u"leEndIndex"_s)->setText(u"0x5FFF"_s);
    press("btnReadFile");
    const auto *list = dialog.findChild<QListView *>(u"lvObjects"_s);
    (void)QTest::qWaitFor([&] { return list->model()->rowCount() > 0; });
    press("btnSelectAll");
    press("btnImport");
    (void)QTest::qWaitFor(
        [&] { return dialog.findChild<QPushButton *>(u"btnClose"_s)->text() == u"Close"_s; });
    return QDialog::Rejected;
}

} // namespace

/// What comes into the project and the library of the window from files, and what goes out.
class TestWindowImport : public WindowTest
{
    Q_OBJECT

private slots:
    void importIsOneUndoStep()
    {
        const QString source = project(u"other.vxmp"_s);
        Session session;
        QVERIFY(!session.enabled("action_Import_File"));
        QVERIFY(session.open(project()));
        QTRY_VERIFY(session.enabled("action_Import_File"));
        for (const quint16 index : session.store->getIndices(0, 0x2000))
            session.store->deleteIndex(0, index);
        session.steps().handleDebounceTimeout();
        const QString before = session.store->contentHash();

        GuiHelper::queueDialog([&](QDialog &dialog) { return importAll(dialog, source); });
        session.trigger("action_Import_File");
        QVERIFY(session.store->indexExists(0, 0x2000));
        QVERIFY(session.window.isModified());
        QVERIFY(session.status().contains(u"objects imported as"_s));
        QTRY_VERIFY(!session.steps().currentState().isEmpty());
        session.trigger("actionUndo");
        QCOMPARE(session.store->contentHash(), before);
    }

    void importNeedsADictionary()
    {
        Session session;
        session.store->setGeneralSetting(u"line0type"_s, u"4"_s);
        session.window.selectLine(0);
        session.window.setActionEnabled("action_Import_File", true);
        session.trigger("action_Import_File");
        session.trigger("action_EDS_File");
        QCOMPARE(shownTexts(), QStringList(2, u"Line 0 has no CANopen object dictionary."_s));
    }

    void loadsProfiles()
    {
        Session session;
        session.trigger("actionLoad_CiA_302");
        QTRY_VERIFY(session.status().contains(u"CiA 302"_s));
        QVERIFY(session.library->indexExists(staging, 0x1F80));
        session.trigger("actionLoad_CiA_301");
        QTRY_VERIFY(session.status().contains(u"CiA 301"_s));
        QVERIFY(!session.library->indexExists(staging, 0x1F80));
        const QList<quint16> indices = session.library->getIndices(staging);
        QVERIFY(indices.size() > 40 && indices.first() == 0x1000 && indices.last() <= 0x1FFF);
        // Only what is listed: the copies would make the list of objects on offer endless.
        QVERIFY(!session.library->indexExists(staging, 0x1202));
        QCOMPARE(session.store->getIndices(0), QList<quint16>());
        QVERIFY(!session.window.isModified());
    }

    /// A later load takes the former's place, a missing profile leaves nothing and bothers nobody.
    void loadsTheLastProfileAskedFor()
    {
        Session session;
        QSignalSpy ready(&session.window, &VxmMainWindow::standardObjectsReady);
        session.window.loadLibrary(StandardProfiles::communication);
        session.window.loadLibrary(StandardProfiles::additional);
        QTRY_VERIFY(!ready.isEmpty());
        QVERIFY(session.library->indexExists(staging, 0x1F80));
        QVERIFY(!session.library->indexExists(staging, 0x1000));
        ready.clear();
        session.window.loadLibrary(u":/codb/none.codb"_s);
        QTRY_COMPARE(ready.size(), 1);
        QCOMPARE(session.library->getIndices(staging), QList<quint16>());
        QCOMPARE(shownTexts(), QStringList());
        for (int turn = 0; turn < 10; ++turn) { // the window may close meanwhile
            Session closing;
            closing.window.loadLibrary(StandardProfiles::communication);
            QTest::qWait(turn);
        }
    }

    void exports_data()
    {
        addRows<QString, QByteArray>({
            {"action_EDS_File", "my.eds", "FileName=my.eds"},
            {"action_XDD_File", "my.xdd", "<ISO15745ProfileContainer"},
            {"action_HTML_Documenation", "my.html", "<html"},
            {"action_CSV_File", "my.csv", "0x2000"},
            {"action_CSV_File", "my.icsv", "# This is an importable"},
            {"action_Text_Documentation", "my.txt", "2000"},
        });
    }

    void exports()
    {
        const auto [name, content] = row<QString, QByteArray>();
        Session session;
        QVERIFY(session.open(project()));
        const QString before = session.store->contentHash();
        write(name, "former");
        GuiHelper::queueFileName(file(name));
        session.trigger(QTest::currentDataTag());
        const QByteArray written = read(name);
        QVERIFY2(written.contains(content), written.left(400).constData());
        QVERIFY(!written.contains("former"));
        QVERIFY(session.status().contains(name));
        QVERIFY(!session.window.isModified());
        QCOMPARE(session.store->contentHash(), before);
        QCOMPARE(shownTexts(), QStringList());
        // Nothing is left beside it.
        QCOMPARE(QDir(folder()).entryList({u"my*"_s}, QDir::Files), QStringList{name});
    }

    void tellsWhereItCannotWrite()
    {
        Session session;
        QVERIFY(session.open(project()));
        GuiHelper::queueFileName(file(u"none/my.eds"_s));
        session.trigger("action_EDS_File");
        const QStringList texts = shownTexts();
        QVERIFY2(texts.size() == 1 && texts[0].contains(u"my.eds"_s), qPrintable(texts.join(u' ')));
        GuiHelper::queueFileName(QString());
        session.trigger("action_EDS_File");
        QCOMPARE(shownTexts(), QStringList());
    }
};

WINDOW_TEST_MAIN(TestWindowImport)
#include "tst_windowimport.moc"
