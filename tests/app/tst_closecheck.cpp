#include "tests/app/windowtest.h"

#include <QCheckBox>
#include <QMimeData>
#include <QPushButton>
#include <QTableWidget>
#include <QTreeWidget>

using namespace WindowParts;

namespace {

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
        addRows<int, bool, bool, QString>({
            {"nothing changed", 0, false, true, "32"},
            {"save", QMessageBox::Save, true, true, "7"},
            {"discard", QMessageBox::Discard, true, true, "32"},
            {"cancel", QMessageBox::Cancel, true, false, "32"},
            {"details", GuiHelper::firstExtraButton, true, false, "32"},
        });
    }

    void guardsChanges()
    {
        const auto [answer, edited, proceeds, saved] = row<int, bool, bool, QString>();
        const QString path = project();
        const QString other = project(u"other.vxmp"_s);
        Session session;
        QVERIFY(session.open(path));
        if (edited)
            session.setNodeId(u"7"_s);
        if (answer != 0)
            GuiHelper::queueAnswer(answer);

        // A dropped project stands for all flows that replace the one that is open.
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file(u"notes.txt"_s)), QUrl::fromLocalFile(other)});
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&session.window, &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&session.window, &drop);

        QCOMPARE(session.window.projectBaseName(), proceeds ? u"other"_s : u"device"_s);
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), saved);
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
        session.setNodeId(u"9"_s);
        GuiHelper::queueAnswer(QMessageBox::Save);
        GuiHelper::queueFileName(QString()); // cancelled
        session.trigger("actionNew_Project");
        QCOMPARE(session.nodeId(), u"9"_s);
        GuiHelper::queueAnswer(QMessageBox::Save);
        GuiHelper::queueFileName(file(u"kept.vxmp"_s));
        QVERIFY(session.window.closeCheck());
        QCOMPARE(ProjectFixture::generalSetting(file(u"kept.vxmp"_s), u"co_node_id"_s), u"9"_s);
        const QString question = u"The current project contains 1 unsaved modifications."_s;
        QCOMPARE(shownTexts(), (QStringList{question, question}));
    }

    void aLostFileIsAskedAbout_data()
    {
        addRows<QString, bool>({
            {"missing database", "device.vxmp", false},
            {"damaged database", "device.vxmp", true},
            {"missing text", "device.vxmt", false},
            {"damaged text", "device.vxmt", true},
        });
    }

    void aLostFileIsAskedAbout()
    {
        const auto [name, isDamaged] = row<QString, bool>();
        const QString path = project(name);
        Session session;
        QVERIFY(session.open(path));
        session.edit();
        GuiHelper::takeShownBoxes();
        QVERIFY(QFile::remove(path));
        if (isDamaged)
            write(name, "no project");
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
        QVERIFY(session.open(project(u"device.vxmp"_s, {.withPgn = true})));
        session.setNodeId(u"7"_s);
        session.store->setSubIndexDefaultValue(0, 0x2000, 0, u"5"_s);
        session.store->deleteIndex(0, 0x1017);
        session.store->addCANID(0, 0x181, {.id = 0x181, .name = u"Drive"_s, .direction = 119});
        GuiHelper::queueAnswer(GuiHelper::firstExtraButton);
        GuiHelper::queueDialog([&](QDialog &dialog) {
            dialog.show();
            const auto tree = [&](const char *name) {
                return dialog.findChild<QTreeWidget *>(QLatin1String(name));
            };
            const auto compare = [&] {
                QTreeWidget *const objects = tree("treeWidget");
                QCOMPARE(dialog.windowTitle(), u"Project Diff"_s);
                QVERIFY(dialog.minimumSizeHint().width() <= 1000);
                QCOMPARE(dialog.focusWidget(), objects);
                QCOMPARE(rowsOf(*objects).size(), 3);
                QVERIFY(rowsOf(*objects)[0].endsWith(u" - other"_s));
                QCOMPARE(rowsOf(*objects).mid(1), (QStringList{u"0x2000 - Speed - different"_s,
                                                               u"0 - Speed - different"_s}));
                QCOMPARE(rowsOf(*tree("treeCANID")),
                         (QStringList{u"Transmit CAN-IDs"_s, u"Receive CAN-IDs"_s,
                                      u"0x181 - 385 Drive - current"_s}));
                const auto *settings = dialog.findChild<QTableWidget *>(u"tblGeneralSettings"_s);
                QCOMPARE(settings->rowCount(), 1);
                QCOMPARE(settings->item(0, 2)->text(), u"32"_s);

                objects->setCurrentItem(objects->topLevelItem(1)->child(0));
                const auto *properties = dialog.findChild<QTableWidget *>(u"tableWidget"_s);
                const auto rows = properties->findItems(u"DefaultValue"_s, Qt::MatchExactly);
                QCOMPARE(rows.size(), 1);
                const int at = rows[0]->row();
                QCOMPARE(properties->item(at, 1)->text(), u"5"_s);
                QCOMPARE(properties->item(at, 2)->text(), u"100"_s);
                QCOMPARE(properties->verticalHeaderItem(at)->text(), u"≠"_s);

                const int before = properties->rowCount();
                dialog.findChild<QCheckBox *>(u"cbInternal"_s)->click();
                QVERIFY(properties->rowCount() > before);
                dialog.findChild<QCheckBox *>(u"cbOnlyDifferences"_s)->click();
                QVERIFY(rowsOf(*objects).size() > 3);
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

WINDOW_TEST_MAIN(TestCloseCheck)
#include "tst_closecheck.moc"
