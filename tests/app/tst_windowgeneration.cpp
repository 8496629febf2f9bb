#include "app/generatoroutputform.h"
#include "gui/guihelper.h"
#include "store/usersettings.h"
#include "tests/app/windowtest.h"

#include <QAction>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace WindowParts;

/// A generation run and what the window shows of it.
class TestWindowGeneration : public WindowTest
{
    Q_OBJECT

private slots:
    void generationFillsThePane()
    {
        const QString path = project(u"device.vxmp"_s);
        Session session({u"-hidden"_s});
        QVERIFY(session.window.openProject(path));
        // Nothing may interfere with a run.
        bool closedDuringRun = true;
        bool savedDuringRun = true;
        QTimer::singleShot(50, this, [&] {
            const auto *save = session.window.findChild<QAction *>(u"actionSave_Project"_s);
            savedDuringRun = save->isEnabled();
            closedDuringRun = session.window.close();
        });
        session.window.show();
        session.trigger("actionGenerate_Output");
        QVERIFY(!closedDuringRun);
        QVERIFY(!savedDuringRun);

        const auto *pane = session.window.findChild<GeneratorOutputForm *>();
        const QString log = pane->getLogging();
        QVERIFY2(log.contains(u"Generation of device completed."_s), qPrintable(log));
        QCOMPARE(session.status(), u"Generation of device completed."_s);
        QVERIFY(log.contains(QRegularExpression(u"\\n\\n\\d\\d:\\d\\d:\\d\\d: Check of model"_s)));
        QVERIFY(QFile::exists(file(u"device.eds"_s)));
        QVERIFY(QApplication::overrideCursor() == nullptr);
        QVERIFY(session.window.findChild<QAction *>(u"actionSave_Project"_s)->isEnabled());
    }

    void criticalErrorsAreTold()
    {
        Session session({u"-hidden"_s});
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        session.store->deleteIndex(0, 0x1000);
        session.trigger("actionGenerate_Output");
        QCOMPARE(
            shownTexts(),
            QStringList{u"The project contains critical errors. Check Generator Output window."_s});
        QVERIFY(!QFile::exists(file(u"device.eds"_s)));
    }

    void anUnsavedProjectIsToBeSavedFirst()
    {
        Session session({u"-hidden"_s});
        GuiHelper::queueAnswer(QMessageBox::Ok); // there is no template
        session.window.newProject();
        UserSettings::setGeneral(u"disablecheck"_s, true);
        GuiHelper::takeShownBoxes();
        session.trigger("actionGenerate_Output");
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), 1);
        QVERIFY(boxes[0].informativeText.startsWith(u"Save the project first"_s));
    }

    void theNetworkToolCountsTheGenerations_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("count");
        QTest::newRow("alone") << QStringList{u"-hidden"_s} << QByteArray("1ul");
        QTest::newRow("network tool") << QStringList{u"-hidden"_s, u"-tsk"_s} << QByteArray("41ul");
    }

    void theNetworkToolCountsTheGenerations()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, count);
        Session session(arguments);
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        session.store->setGeneralSetting(u"generate_generation_counter"_s, u"1"_s);
        session.store->setGeneralSetting(u"tsk_generation_count"_s, u"41"_s);
        session.trigger("actionGenerate_Output");
        QFile defines(file(u"gen_define.h"_s));
        QVERIFY(defines.open(QIODevice::ReadOnly));
        const QByteArray text = defines.readAll();
        QVERIFY2(text.contains("#define GEN_GENERATION_COUNT\t" + count), text);
    }

    void networkToolModeNamesItsNode()
    {
        const QString path = project(u"device.vxmp"_s);
        ObjectDataBase store;
        QVERIFY(store.openDataBase(path));
        store.setGeneralSetting(u"co_node_id"_s, u"0x120"_s);
        store.setGeneralSetting(u"co_network_id"_s, u"3"_s);
        QVERIFY(store.saveDatabase());
        Session session({path, u"-tsk"_s});
        QVERIFY(session.window.openProject(path));
        session.window.doThingsAfter1Second();
        QCOMPARE(session.window.windowTitle(),
                 u"tolvex device systems - CANopen Quillforge 4.3.3 invoked by CANopen Tessmark "
                 "for Node 32 (network 3)"_s);
        session.edit();
        QVERIFY(session.window.isModified() && !session.window.isWindowModified());
        for (const char *name : {"actionNew_Project", "actionOpen_Project", "actionClose_Project",
                                 "actionGenerate_Output"}) {
            QVERIFY(!session.window.findChild<QAction *>(QLatin1String(name))->isEnabled());
        }
    }
};

int main(int argc, char *argv[])
{
    return WindowTest::run<TestWindowGeneration>(argc, argv);
}

#include "tst_windowgeneration.moc"
