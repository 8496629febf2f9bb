#include "gui/guihelper.h"
#include "gui/indexdestinationdialog.h"
#include "gui/subselectdialog.h"
#include "importgui/fileimportdialog.h"
#include "importgui/importobjectmodel.h"
#include "resources/codb/standardprofiles.h"
#include "store/objectdatabase.h"
#include "store/usersettings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray table = "index,sub,objectcode,datatype,access,edsname,value\n"
                         "0x1017,0,VARIABLE,UNSIGNED16,rw,Heartbeat,0\n"
                         "0x2000,,RECORD,,,Motor,\n"
                         "0x2000,0,,UNSIGNED8,const,Highest,2\n"
                         "0x2000,1,,UNSIGNED16,rw,Speed,5\n"
                         "0x2000,2,,UNSIGNED16,rw,Torque,6\n"
                         "0x2001,0,VARIABLE,UNSIGNED32,ro,Pump,7\n"
                         "0x6000,0,VARIABLE,UNSIGNED32,ro,Motor state,7\n";

/// The dialog with its stores, driven by the names of its widgets.
struct Session
{
    Session()
    {
        project.createNewDataBase();
        project.addIndex(0, 0x2001, {.name = u"Mine"_s});
        scratch.createNewDataBase();
        dialog.show();
    }

    template <class Widget>
    [[nodiscard]] Widget *get(const char *name) const
    {
        auto *widget = dialog.findChild<Widget *>(QLatin1String(name));
        if (widget == nullptr)
            qFatal("no widget %s", name);
        return widget;
    }

    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("can't write");
        return file.fileName();
    }

    void click(const char *button) const
    {
        QTest::mouseClick(get<QPushButton>(button), Qt::LeftButton);
    }

    void waitForEnd() const
    {
        // Whatever was begun shows its progress until it is over.
        QTRY_VERIFY_WITH_TIMEOUT(!get<QProgressBar>("progressBar")->isVisible(), 20000);
    }

    void read(const QString &path, const QString &low = u"0x1000"_s,
              const QString &high = u"0xFFFF"_s) const
    {
        get<QComboBox>("cbFile")->setEditText(path);
        get<QLineEdit>("leStartIndex")->setText(low);
        get<QLineEdit>("leEndIndex")->setText(high);
        click("btnReadFile");
        waitForEnd();
    }

    [[nodiscard]] QStringList shown() const
    {
        QStringList texts;
        const QAbstractItemModel *model = get<QListView>("lvObjects")->model();
        for (int row = 0; row < model->rowCount(); ++row)
            texts.append(model->index(row, 0).data().toString());
        return texts;
    }

    [[nodiscard]] QString text(const char *label) const { return get<QLabel>(label)->text(); }

    QTemporaryDir folder;
    ObjectDataBase project;
    ObjectDataBase scratch;
    FileImportDialog dialog{project, 0, scratch};
};

} // namespace

class TestFileImportDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { StandardProfiles::makeAvailable(); }
    void init() { UserSettings().clear(); }
    void cleanup()
    {
        QCOMPARE(GuiHelper::takeUnusedAnswers(), 0);
        QCOMPARE(GuiHelper::takeShownBoxes().size(), 0);
    }

    void remembersFileAndRange()
    {
        QString path;
        {
            const Session session;
            QCOMPARE(session.get<QLineEdit>("leStartIndex")->text(), u"0x6000"_s);
            QCOMPARE(session.get<QLineEdit>("leEndIndex")->text(), u"0x9FFF"_s);
            path = session.write(u"a.csv"_s, table);
            session.read(path, u"0x2000"_s, u"0x2FFF"_s);
            QCOMPARE(session.shown(), (QStringList{u"0x2000 - Motor"_s, u"0x2001 - Pump"_s}));
            // What is listed is of the file that stands above it.
            session.get<QComboBox>("cbFile")->setEditText(path + u'x');
            QCOMPARE(session.shown(), QStringList());
            QCOMPARE(session.text("lblObjects"), QString());
            QVERIFY(!session.get<QPushButton>("btnImport")->isEnabled());
        }
        QCOMPARE(UserSettings::general(u"importpath"_s).toString(), path);
        const Session again;
        QCOMPARE(again.get<QComboBox>("cbFile")->currentText(), path);
        QCOMPARE(again.get<QLineEdit>("leStartIndex")->text(), u"0x2000"_s);
        QCOMPARE(again.get<QLineEdit>("leEndIndex")->text(), u"0x2FFF"_s);
    }

    void offersProfilesAndFiles()
    {
        const Session session;
        auto *files = session.get<QComboBox>("cbFile");
        const int profile = files->findText(u"CiA 401 - I/O modules"_s);
        QVERIFY(profile >= 0);
        files->setCurrentIndex(profile);
        QVERIFY(session.get<QCheckBox>("chkObjectCopies")->isEnabled());
        session.click("btnReadFile");
        session.waitForEnd();
        QVERIFY(session.shown().size() > 5);

        GuiHelper::queueFileName(session.folder.filePath(u"b.eds"_s));
        session.click("btnSelectFile");
        QCOMPARE(files->currentText(), session.folder.filePath(u"b.eds"_s));
        QVERIFY(!session.get<QCheckBox>("chkObjectCopies")->isEnabled());
        QVERIFY(session.get<QCheckBox>("chkDeviceInfo")->isEnabled());
        GuiHelper::queueFileName(QString());
        session.click("btnSelectFile");
        QCOMPARE(files->currentText(), session.folder.filePath(u"b.eds"_s));
    }

    void tellsOfFaults_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("low");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text"); // %1 is the file
        QTest::newRow("missing") << u"none.eds"_s << u"0"_s << u"File error"_s
                                 << u"File %1 is not readable."_s;
        QTest::newRow("suffix") << u"a.pdf"_s << u"0"_s << u"File error"_s
                                << u"Format of  %1 is not supported."_s;
        QTest::newRow("content") << u"a.xdd"_s << u"0"_s << u"Import error"_s
                                 << u"%1 has is not in CiA 1311 XDD format."_s;
        QTest::newRow("range")
            << u"a.csv"_s << u"0xG"_s << u"Import error"_s
            << u"\"0xG\" to \"0xFFFF\" is no range of indices. Indices are numbers "
               "up to 0xFFFF, such as 0x6000."_s;
    }

    void tellsOfFaults()
    {
        QFETCH(QString, file);
        QFETCH(QString, low);
        QFETCH(QString, title);
        QFETCH(QString, text);
        const Session session;
        for (const QString &name : {u"a.pdf"_s, u"a.xdd"_s, u"a.csv"_s})
            (void)session.write(name, name == u"a.csv"_s ? table : QByteArray("<a/>"));
        const QString path = session.folder.filePath(file);
        session.read(path, low);
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes.first().title, title);
        QCOMPARE(boxes.first().text, text.contains(u"%1"_s) ? text.arg(path) : text);
        QCOMPARE(session.shown(), QStringList());
        QVERIFY(!session.get<QPushButton>("btnImport")->isEnabled());
        QVERIFY(session.get<QPushButton>("btnReadFile")->isEnabled());
    }

    void listsAndFilters()
    {
        const Session session;
        session.read(session.write(u"a.csv"_s, table));
        QCOMPARE(
            session.text("lblObjects"),
            u"4 objects read. (1 red objects already exist in project. Import overwrites them.)"_s);
        QCOMPARE(session.shown(), (QStringList{u"0x1017 - Heartbeat"_s, u"0x2000 - Motor"_s,
                                               u"0x2001 - Pump"_s, u"0x6000 - Motor state"_s}));
        // Red, and not red alone.
        const QAbstractItemModel *model = session.get<QListView>("lvObjects")->model();
        const QModelIndex fresh = model->index(1, 0);
        const QModelIndex existing = model->index(2, 0);
        QVERIFY(!fresh.data(Qt::ForegroundRole).isValid());
        QVERIFY(existing.data(Qt::ForegroundRole).value<QColor>().red() > 150);
        QVERIFY(existing.data(Qt::ToolTipRole).toString().contains(u"already exists"_s));
        QVERIFY(existing.data(Qt::AccessibleTextRole).toString().contains(u"already exists"_s));

        session.get<QLineEdit>("leFilter")->setText(u"MOTOR"_s);
        QCOMPARE(session.shown().size(), 2);
        session.click("btnSelectAll");
        QCOMPARE(session.text("lblSelected"), u"2 shown, 2 selected"_s);
        session.get<QLineEdit>("leFilter")->clear();
        auto *segment = session.get<QComboBox>("cbSegment");
        segment->setCurrentIndex(1);
        QCOMPARE(session.shown(), QStringList{u"0x1017 - Heartbeat"_s});
        session.click("btnSelectAll");
        segment->setCurrentIndex(3);
        QCOMPARE(session.shown(), QStringList{u"0x6000 - Motor state"_s});
        segment->setCurrentIndex(0);
        QCOMPARE(session.text("lblSelected"), u"4 shown, 3 selected"_s);
        session.click("btnSelectNone");
        QCOMPARE(session.text("lblSelected"), u"4 shown, 0 selected"_s);
        QVERIFY(!session.get<QPushButton>("btnImport")->isEnabled());
    }

    void worksByKeyboard()
    {
        const Session session;
        (void)session.write(u"a.csv"_s, table);
        auto *files = session.get<QComboBox>("cbFile");
        files->setEditText(session.folder.filePath(u"a.csv"_s));
        auto *low = session.get<QLineEdit>("leStartIndex");
        low->setText(u"0x1000"_s);
        QTest::keyClick(low, Qt::Key_Return);
        session.waitForEnd();
        auto *list = session.get<QListView>("lvObjects");
        QCOMPARE(session.shown().size(), 4); // without a click
        QVERIFY(session.dialog.isVisible());
        QTest::keyClick(list, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(list, Qt::Key_Space);
        QCOMPARE(session.text("lblSelected"), u"4 shown, 2 selected"_s);
        QTest::keyClick(list, Qt::Key_Space);
        QCOMPARE(session.text("lblSelected"), u"4 shown, 0 selected"_s);
    }

    void importsWhatIsSelected()
    {
        Session session;
        QSignalSpy imported(&session.dialog, &FileImportDialog::imported);
        QSignalSpy announced(&session.dialog, &FileImportDialog::aboutToChange);
        session.read(session.write(u"a.csv"_s, table));
        session.get<QComboBox>("cbSegment")->setCurrentIndex(2);
        session.click("btnSelectAll");
        session.get<QRadioButton>("rbApplication")->click();
        session.click("btnImport");
        session.waitForEnd();
        QCOMPARE(session.text("lblResult"), u"2 objects imported as application variables."_s);
        QCOMPARE(imported.size(), 1);
        QCOMPARE(announced.size(), 1);
        QCOMPARE(session.project.getIndices(0), (QList<quint16>{0x2000, 0x2001}));
        QCOMPARE(session.project.getIndexName(0, 0x2001), u"Pump"_s);
        ObjectDataBase::SUBINDEX_DATA_T data;
        QVERIFY(session.project.getSubIndexData(0, 0x2000, 1, data));
        QCOMPARE(int(data.implementation), int(CANopen::Variable));
        // What is there now is red.
        QVERIFY(session.text("lblObjects").contains(u"2 red objects"_s));
        QCOMPARE(session.text("lblSelected"), u"2 shown, 0 selected"_s);
    }

    void keepsImplementationsOfProjects()
    {
        Session session;
        ObjectDataBase source;
        source.createNewDataBase();
        source.addNode(4, ObjectDataBase::NODE_DATA_T());
        for (const quint8 line : {0, 4}) {
            const auto index = quint16(0x3000 + line);
            source.addIndex(line, index, {.name = u"Own"_s, .datatype = CAN::UNSIGNED8});
            ObjectDataBase::SUBINDEX_DATA_T data;
            data.datatype = CAN::UNSIGNED8;
            data.implementation = CANopen::Variable;
            data.varname = u"own"_s;
            source.addSubIndex(line, index, 0, data);
        }
        const QString path = session.folder.filePath(u"b.vxmp"_s);
        QVERIFY(source.saveDatabase(path));
        session.read(path);
        QCOMPARE(session.shown(), QStringList{u"0x3000 - Own"_s});
        // Another line of the file is another list.
        auto *lines = session.get<QComboBox>("cbSourceLine");
        QCOMPARE(lines->count(), 2);
        QCOMPARE(lines->toolTip(), u"Source line for import. Only for multi-line VXMP files."_s);
        lines->setFocus();
        QTest::keyClick(lines, Qt::Key_Down);
        session.waitForEnd();
        QCOMPARE(session.shown(), QStringList{u"0x3004 - Own"_s});
        QCOMPARE(lines->currentIndex(), 1);

        ObjectDataBase::SUBINDEX_DATA_T data;
        QVERIFY(!session.get<QRadioButton>("rbManaged")->isEnabled());
        session.click("btnSelectAll");
        session.click("btnImport");
        session.waitForEnd();
        QCOMPARE(session.text("lblResult"),
                 u"1 objects imported as original implementation types."_s);
        QVERIFY(session.project.getSubIndexData(0, 0x3004, 0, data));
        QCOMPARE(int(data.implementation), int(CANopen::Variable));
        session.get<QCheckBox>("chkIgnoreImplementation")->click();
        session.click("btnSelectAll");
        session.click("btnImport");
        session.waitForEnd();
        QCOMPARE(session.text("lblResult"), u"1 objects imported as managed variables."_s);
        QVERIFY(session.project.getSubIndexData(0, 0x3004, 0, data));
        QCOMPARE(int(data.implementation), int(CANopen::ManagedVariable));
    }

    void asksForPlaceAndSubindices()
    {
        Session session;
        session.read(session.write(u"a.csv"_s, table), u"0x2000"_s, u"0x2000"_s);
        GuiHelper::queueDialog([](QDialog &dialog) {
            auto *list = dialog.findChild<QListWidget *>();
            if (list->count() != 3)
                return int(QDialog::Rejected);
            list->item(1)->setCheckState(Qt::Unchecked);
            return int(QDialog::Accepted);
        });
        session.click("btnSubIndices");
        QCOMPARE(session.text("lblSelected"), u"1 shown, 1 selected"_s);
        GuiHelper::queueDialog([](QDialog &dialog) {
            // 0x2000 is free, so it is what the dialog offers.
            auto *index = dialog.findChild<QLineEdit *>(u"leIndex"_s);
            if (index->text() != u"0x2000"_s)
                return int(QDialog::Rejected);
            index->setText(u"0x2100"_s);
            dialog.findChild<QLineEdit *>(u"leName"_s)->setText(u"Engine"_s);
            return int(QDialog::Accepted);
        });
        session.click("btnTarget");
        QCOMPARE(session.shown(), QStringList{u"0x2000 - Motor  (to 0x2100)  (2 subindices)"_s});
        session.click("btnImport");
        session.waitForEnd();
        QCOMPARE(session.project.getIndices(0), (QList<quint16>{0x2001, 0x2100}));
        QCOMPARE(session.project.getIndexName(0, 0x2100), u"Engine"_s);
        QCOMPARE(session.project.getSubIndices(0, 0x2100), (QList<quint8>{0, 2}));
    }

    void cancelsBeforeItCloses()
    {
        Session session;
        QByteArray rows = "index,sub,objectcode,datatype,edsname\n";
        for (int index = 0x2000; index < 0x6000; ++index)
            rows += "0x" + QByteArray::number(index, 16) + ",0,VARIABLE,UNSIGNED8,Some name\n";
        session.read(session.write(u"a.csv"_s, rows));
        QCOMPARE(session.shown().size(), 0x4000);
        session.click("btnSelectAll");
        const QString before = session.project.contentHash();
        auto *close = session.get<QPushButton>("btnClose");
        QCOMPARE(close->text(), u"Close"_s);
        session.click("btnImport");
        QCOMPARE(close->text(), u"Cancel"_s);
        QVERIFY(!session.get<QPushButton>("btnImport")->isEnabled());
        QTest::keyClick(&session.dialog, Qt::Key_Escape);
        session.waitForEnd();
        QVERIFY(session.dialog.isVisible());
        QCOMPARE(session.text("lblResult"), u"Cancelled. The project is as it was before."_s);
        QCOMPARE(session.project.contentHash(), before);
        QTest::keyClick(&session.dialog, Qt::Key_Escape);
        QVERIFY(!session.dialog.isVisible());
    }

    void fitsSmallScreens()
    {
        const Session session;
        session.read(session.write(u"a.csv"_s, table));
        QVERIFY(session.dialog.minimumSizeHint().width() <= 1000);
        QVERIFY(session.dialog.minimumSizeHint().height() <= 700);
        QVERIFY(session.dialog.size().width() <= 1000 && session.dialog.size().height() <= 720);
    }

    void asksForTargetIndex()
    {
        ObjectDataBase store;
        store.createNewDataBase();
        store.addIndex(0, 0x2000, {.name = u"Mine"_s});
        IndexDestinationDialog dialog(store, 0, 0x2000, u"Copy"_s);
        auto *index = dialog.findChild<QLineEdit *>(u"leIndex"_s);
        auto *hint = dialog.findChild<QLabel *>(u"lblHint"_s);
        auto *ok = dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
        QCOMPARE(dialog.targetIndex(), quint16(0x2001));
        QVERIFY(ok->isEnabled());
        index->setText(u"0x2000"_s);
        QVERIFY(ok->isEnabled() && hint->text().contains(u"0x2000 already exists"_s));
        dialog.setAllowedRange(0x2000, 0x5FFF);
        for (const QString &text : {u"0x6000"_s, u"0x1FFF"_s, u"x"_s, QString()}) {
            index->setText(text);
            QVERIFY2(!ok->isEnabled(), qPrintable(text));
            QVERIFY(hint->text().contains(u"0x5fff"_s));
        }
        // The last of those that go along has to fit too.
        index->setText(u"0x5ff0"_s);
        QVERIFY(ok->isEnabled());
        dialog.setFollowers(3, 0x10);
        QVERIFY(!ok->isEnabled());
        index->setText(u"0x5fef"_s);
        QVERIFY(ok->isEnabled() && dialog.targetIndex() == 0x5FEF);
        dialog.findChild<QLineEdit *>(u"leName"_s)->setText(u" "_s);
        QVERIFY(!ok->isEnabled());
    }

    void asksForTargetSubindex()
    {
        ObjectDataBase store;
        store.createNewDataBase();
        store.addNode(1, ObjectDataBase::NODE_DATA_T());
        store.addIndex(0, 0x2000, {.name = u"Single"_s});
        for (const quint8 line : {0, 1}) {
            const quint16 index = line == 0 ? 0x2001 : 0x2101;
            store.addIndex(line, index, {.name = u"Record"_s, .objecttype = CANopen::RECORD});
            for (const quint8 subindex : {0, 1, 3})
                store.addSubIndex(line, index, subindex, {});
        }
        SubSelectDialog dialog(store, 0, 0x2001);
        auto *object = dialog.findChild<QComboBox *>(u"cbObject"_s);
        auto *subindex = dialog.findChild<QComboBox *>(u"cbSubIndex"_s);
        QCOMPARE(object->count(), 1); // a variable has no room
        QCOMPARE(dialog.targetIndex(), quint16(0x2001));
        QCOMPARE(dialog.targetSubindex(), quint8(4));
        QVERIFY(subindex->findText(u"2"_s) >= 0 && subindex->findText(u"3"_s) < 0);
        dialog.findChild<QComboBox *>(u"cbLine"_s)->setCurrentIndex(1);
        QCOMPARE(dialog.targetLine(), quint8(1));
        QCOMPARE(dialog.targetIndex(), quint16(0x2101));
    }
};

QTEST_MAIN(TestFileImportDialog)
#include "tst_fileimportdialog.moc"
