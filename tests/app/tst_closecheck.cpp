#include "gui/guihelper.h"
#include "tests/app/windowtest.h"

#include <QCheckBox>
#include <QFile>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTableWidget>
#include <QTreeWidget>

using namespace Qt::StringLiterals;
using namespace WindowParts;

namespace {

void setNodeId(Session &session, const QString &value)
{
    session.store->setGeneralSetting(u"co_node_id"_s, value);
}

/// Rows of a tree, as they are shown.
QStringList rowsOf(const QTreeWidget &tree)
{
    QStringList rows;
    for (QTreeWidgetItemIterator it(const_cast<QTreeWidget *>(&tree)); *it != nullptr; ++it)
        rows << (*it)->text(0);
    return rows;
}

} // namespace

/// The guard before a project is replaced.
class TestCloseCheck : public WindowTest
{
    Q_OBJECT

private slots:
    void guardsChanges_data()
    {
        QTest::addColumn<int>("answer"); // 0: no question is expected
        QTest::addColumn<bool>("edited");
        QTest::addColumn<bool>("proceeds");
        QTest::addColumn<QString>("saved");
        QTest::newRow("nothing changed") << 0 << false << true << u"32"_s;
        QTest::newRow("save") << int(QMessageBox::Save) << true << true << u"7"_s;
        QTest::newRow("discard") << int(QMessageBox::Discard) << true << true << u"32"_s;
        QTest::newRow("cancel") << int(QMessageBox::Cancel) << true << false << u"32"_s;
        QTest::newRow("details") << GuiHelper::firstExtraButton << true << false << u"32"_s;
    }

    void guardsChanges()
    {
        QFETCH(int, answer);
        QFETCH(bool, edited);
        QFETCH(bool, proceeds);
        const QString path = project(u"device.vxmp"_s);
        const QString other = project(u"other.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(path));
        if (edited)
            setNodeId(session, u"7"_s);
        if (answer != 0)
            GuiHelper::queueAnswer(answer);

        // A dropped project stands for all flows that replace the one that is open.
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file(u"notes.txt"_s)), QUrl::fromLocalFile(other)});
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton,
                              Qt::NoModifier);
        QCoreApplication::sendEvent(&session.window, &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&session.window, &drop);

        QCOMPARE(session.window.projectBaseName(), proceeds ? u"other"_s : u"device"_s);
        QTEST(ProjectFixture::generalSetting(path, u"co_node_id"_s), "saved");
        QCOMPARE(session.window.isModified(), edited && !proceeds);
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), answer != 0 ? 1 : 0);
        if (!boxes.isEmpty()) {
            QCOMPARE(boxes[0].text, u"The current project contains 1 unsaved modifications."_s);
            QCOMPARE(boxes[0].informativeText, u"Do you want to save your changes?"_s);
            QCOMPARE(boxes[0].defaultButton, QMessageBox::Save);
            QCOMPARE(boxes[0].extraButtons.value(0).text, u"Show Details"_s);
        }
    }

    void aNewProjectIsAskedAbout()
    {
        QCoreApplication::setApplicationName(j1939Edition); // its template is inside the program
        Session session;
        session.window.newProject();
        setNodeId(session, u"9"_s);
        GuiHelper::queueAnswer(QMessageBox::Save);
        GuiHelper::queueFileName(QString()); // cancelled
        session.trigger("actionNew_Project");
        QCOMPARE(session.store->getGeneralSetting(u"co_node_id"_s), u"9"_s);
        GuiHelper::queueAnswer(QMessageBox::Save);
        GuiHelper::queueFileName(file(u"kept.vxmp"_s));
        QVERIFY(session.window.closeCheck());
        QCOMPARE(ProjectFixture::generalSetting(file(u"kept.vxmp"_s), u"co_node_id"_s), u"9"_s);
        const QString question = u"The current project contains 1 unsaved modifications."_s;
        QCOMPARE(shownTexts(), (QStringList{question, question}));
    }

    void aLostFileIsAskedAbout_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isDamaged");
        QTest::newRow("missing database") << u"device.vxmp"_s << false;
        QTest::newRow("damaged database") << u"device.vxmp"_s << true;
        QTest::newRow("missing text") << u"device.vxmt"_s << false;
        QTest::newRow("damaged text") << u"device.vxmt"_s << true;
    }

    void aLostFileIsAskedAbout()
    {
        QFETCH(QString, name);
        QFETCH(bool, isDamaged);
        const QString path = project(name);
        Session session;
        QVERIFY(session.window.openProject(path));
        session.edit();
        GuiHelper::takeShownBoxes();
        QFile saved(path);
        if (isDamaged) {
            QVERIFY(saved.open(QIODevice::WriteOnly));
            saved.write("no project");
            saved.close();
        } else {
            QVERIFY(saved.remove());
        }
        GuiHelper::queueAnswer(QMessageBox::Cancel);
        QVERIFY(!session.window.closeCheck());
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), 1);
        QVERIFY(boxes[0].informativeText.startsWith(u"The saved project can't be read: "_s));
        QVERIFY(boxes[0].informativeText.endsWith(u"\n\nDo you want to save your changes?"_s));
        // Nothing of the working state is lost, and saving it is still possible.
        QVERIFY(session.store->indexExists(0, 0x2000));
        GuiHelper::queueAnswer(QMessageBox::Save);
        QVERIFY(session.window.closeCheck());
        ObjectDataBase written;
        QVERIFY(written.openDataBase(path) && written.indexExists(0, 0x2000));
    }

    void detailsShowTheDifferences()
    {
        Session session;
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s, {.withPgn = true})));
        setNodeId(session, u"7"_s);
        session.store->setSubIndexDefaultValue(0, 0x2000, 0, u"5"_s);
        session.store->deleteIndex(0, 0x1017);
        session.store->addCANID(0, 0x181, {.id = 0x181, .name = u"Drive"_s, .direction = 119});
        GuiHelper::queueAnswer(GuiHelper::firstExtraButton);
        GuiHelper::queueDialog([&](QDialog &dialog) {
            dialog.show();
            const auto tree = [&](const char *name) {
                return dialog.findChild<QTreeWidget *>(QLatin1String(name));
            };
            const auto table = [&](const char *name) {
                return dialog.findChild<QTableWidget *>(QLatin1String(name));
            };
            const auto compare = [&] {
                QCOMPARE(dialog.windowTitle(), u"Project Diff"_s);
                QVERIFY(dialog.minimumSizeHint().width() <= 1000);
                QCOMPARE(dialog.focusWidget(), tree("treeWidget"));
                QCOMPARE(rowsOf(*tree("treeWidget")).size(), 3);
                QVERIFY(rowsOf(*tree("treeWidget"))[0].endsWith(u" - other"_s));
                QCOMPARE(
                    rowsOf(*tree("treeWidget")).mid(1),
                    (QStringList{u"0x2000 - Speed - different"_s, u"0 - Speed - different"_s}));
                QCOMPARE(rowsOf(*tree("treeCANID")),
                         (QStringList{u"Transmit CAN-IDs"_s, u"Receive CAN-IDs"_s,
                                      u"0x181 - 385 Drive - current"_s}));
                QCOMPARE(table("tblGeneralSettings")->rowCount(), 1);
                QCOMPARE(table("tblGeneralSettings")->item(0, 2)->text(), u"32"_s);

                tree("treeWidget")->setCurrentItem(tree("treeWidget")->topLevelItem(1)->child(0));
                const QTableWidget *properties = table("tableWidget");
                const auto rows = properties->findItems(u"DefaultValue"_s, Qt::MatchExactly);
                QCOMPARE(rows.size(), 1);
                QCOMPARE(properties->item(rows[0]->row(), 1)->text(), u"5"_s);
                QCOMPARE(properties->item(rows[0]->row(), 2)->text(), u"100"_s);
                QCOMPARE(properties->verticalHeaderItem(rows[0]->row())->text(), u"≠"_s);

                const int before = properties->rowCount();
                dialog.findChild<QCheckBox *>(u"cbInternal"_s)->click();
                QVERIFY(properties->rowCount() > before);
                dialog.findChild<QCheckBox *>(u"cbOnlyDifferences"_s)->click();
                QVERIFY(rowsOf(*tree("treeWidget")).size() > 3);
            };
            compare();
            dialog.findChild<QPushButton *>(u"btnClose"_s)->click();
            return dialog.result();
        });
        QVERIFY(!session.window.closeCheck());
        QVERIFY(session.window.isModified());

        // Choices of the dialog do not change what the next check counts.
        ObjectDataBase::SUBINDEX_DATA_T marked;
        QVERIFY(session.store->getSubIndexData(0, 0x1000, 0, marked));
        marked.changedbyuser = !marked.changedbyuser;
        session.store->addSubIndex(0, 0x1000, 0, marked);
        const QStringList former = shownTexts();
        GuiHelper::queueAnswer(QMessageBox::Cancel);
        QVERIFY(!session.window.closeCheck());
        QCOMPARE(shownTexts(), former);
    }
};

int main(int argc, char *argv[])
{
    return WindowTest::run<TestCloseCheck>(argc, argv);
}

#include "tst_closecheck.moc"
