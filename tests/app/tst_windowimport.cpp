#include "gui/guihelper.h"
#include "resources/codb/standardprofiles.h"
#include "tests/app/windowtest.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QStatusBar>

using namespace Qt::StringLiterals;
using namespace WindowParts;

namespace {

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

/// What comes into the project of the window from files, and what goes out.
class TestWindowImport : public WindowTest
{
    Q_OBJECT

private slots:
    void importIsOneUndoStep()
    {
        const QString source = project(u"other.vxmp"_s);
        const QString path = project(u"device.vxmp"_s);
        Session session;
        const auto *import = session.window.findChild<QAction *>(u"action_Import_File"_s);
        QVERIFY(!import->isEnabled());
        QVERIFY(session.window.openProject(path));
        QTRY_VERIFY(import->isEnabled());
        for (const quint16 index : session.store->getIndices(0, 0x2000))
            session.store->deleteIndex(0, index);
        session.steps().handleDebounceTimeout();
        const QString before = session.store->contentHash();

        GuiHelper::queueDialog([&](QDialog &dialog) { return importAll(dialog, source); });
        session.trigger("action_Import_File");
        QVERIFY(session.store->indexExists(0, 0x2000));
        QVERIFY(session.window.isModified());
        QVERIFY(session.window.statusBar()->currentMessage().contains(u"objects imported as"_s));
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
        const QString text = u"Line 0 has no CANopen object dictionary."_s;
        QCOMPARE(shownTexts(), (QStringList{text, text}));
    }

    void loadsProfiles()
    {
        StandardProfiles::makeAvailable();
        Session session;
        session.trigger("actionLoad_CiA_302");
        QTRY_VERIFY(session.window.statusBar()->currentMessage().contains(u"CiA 302"_s));
        QVERIFY(session.library->indexExists(ObjectDataBase::stagingLine, 0x1F80));
        session.trigger("actionLoad_CiA_301");
        QTRY_VERIFY(session.window.statusBar()->currentMessage().contains(u"CiA 301"_s));
        QVERIFY(session.library->indexExists(ObjectDataBase::stagingLine, 0x1000));
        QVERIFY(!session.library->indexExists(ObjectDataBase::stagingLine, 0x1F80));
    }

    void exports_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("action_EDS_File") << u"my.eds"_s << QByteArray("FileName=my.eds");
        QTest::newRow("action_XDD_File") << u"my.xdd"_s << QByteArray("<ISO15745ProfileContainer");
        QTest::newRow("action_HTML_Documenation") << u"my.html"_s << QByteArray("<html");
        QTest::newRow("action_CSV_File") << u"my.csv"_s << QByteArray("0x2000");
        QTest::newRow("action_CSV_File") << u"my.icsv"_s << QByteArray("# This is an importable");
        QTest::newRow("action_Text_Documentation") << u"my.txt"_s << QByteArray("2000");
    }

    void exports()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        const QString path = project(u"device.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(path));
        const QString before = session.store->contentHash();
        QFile file(this->file(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("former") == 6);
        file.close();
        GuiHelper::queueFileName(file.fileName());
        session.trigger(QTest::currentDataTag());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray written = file.readAll();
        QVERIFY2(written.contains(content), written.left(400).constData());
        QVERIFY(!written.contains("former"));
        QVERIFY(session.window.statusBar()->currentMessage().contains(name));
        QVERIFY(!session.window.isModified());
        QCOMPARE(session.store->contentHash(), before);
        QCOMPARE(shownTexts(), QStringList());
        // Nothing is left beside it.
        QCOMPARE(QDir(folder()).entryList({u"my*"_s}, QDir::Files), QStringList{name});
    }

    void tellsWhereItCannotWrite()
    {
        Session session;
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        GuiHelper::queueFileName(file(u"none/my.eds"_s));
        session.trigger("action_EDS_File");
        const QStringList texts = shownTexts();
        QCOMPARE(texts.size(), 1);
        QVERIFY2(texts.first().contains(u"my.eds"_s), qPrintable(texts.first()));
        GuiHelper::queueFileName(QString());
        session.trigger("action_EDS_File");
        QCOMPARE(shownTexts(), QStringList());
    }
};

int main(int argc, char *argv[])
{
    return WindowTest::run<TestWindowImport>(argc, argv);
}

#include "tst_windowimport.moc"
