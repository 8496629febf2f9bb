#include "tests/app/windowtest.h"

#include <QRegularExpression>
#include <QTimer>

using namespace WindowParts;

/// A generation run and what the window shows of it.
class TestWindowGeneration : public WindowTest
{
    Q_OBJECT

private slots:
    void generationFillsThePane()
    {
        Session session({u"-hidden"_s});
        QVERIFY(session.open(project()));
        // Nothing may interfere with a run.
        bool closedDuringRun = true;
        bool savedDuringRun = true;
        QTimer::singleShot(50, this, [&] {
            savedDuringRun = session.enabled("actionSave_Project");
            closedDuringRun = session.window.close();
        });
        session.window.show();
        session.trigger("actionGenerate_Output");
        QVERIFY(!closedDuringRun && !savedDuringRun);

        const QString log = session.output()->getLogging();
        QVERIFY2(log.contains(u"Generation of device completed."_s), qPrintable(log));
        QCOMPARE(session.status(), u"Generation of device completed."_s);
        QVERIFY(log.contains(QRegularExpression(u"\\n\\n\\d\\d:\\d\\d:\\d\\d: Check of model"_s)));
        QVERIFY(QFile::exists(file(u"device.eds"_s)));
        QVERIFY(QApplication::overrideCursor() == nullptr);
        QVERIFY(session.enabled("actionSave_Project"));
    }

    void criticalErrorsAreTold()
    {
        Session session({u"-hidden"_s});
        QVERIFY(session.open(project()));
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
        addRows<const char *, QByteArray>(
            {{"alone", "-hidden", "1ul"}, {"network tool", "-hidden -tsk", "41ul"}});
    }

    void theNetworkToolCountsTheGenerations()
    {
        const auto [arguments, count] = row<const char *, QByteArray>();
        Session session(words(arguments));
        QVERIFY(session.open(project()));
        session.store->setGeneralSetting(u"generate_generation_counter"_s, u"1"_s);
        session.store->setGeneralSetting(u"tsk_generation_count"_s, u"41"_s);
        session.trigger("actionGenerate_Output");
        const QByteArray text = read(u"gen_define.h"_s);
        QVERIFY2(text.contains("#define GEN_GENERATION_COUNT\t" + count), text);
    }

    void networkToolModeNamesItsNode()
    {
        const QString path = project();
        ObjectDataBase store;
        QVERIFY(store.openDataBase(path));
        store.setGeneralSetting(u"co_node_id"_s, u"0x120"_s);
        store.setGeneralSetting(u"co_network_id"_s, u"3"_s);
        QVERIFY(store.saveDatabase());
        Session session({path, u"-tsk"_s});
        QVERIFY(session.open(path));
        session.window.doThingsAfter1Second();
        QCOMPARE(session.window.windowTitle(),
                 u"tolvex device systems - CANopen Quillforge 4.3.3 invoked by CANopen Tessmark "
                 "for Node 32 (network 3)"_s);
        session.edit();
        QVERIFY(session.window.isModified() && !session.window.isWindowModified());
        for (const char *name : {"actionNew_Project", "actionOpen_Project", "actionClose_Project",
                                 "actionGenerate_Output"})
            QVERIFY2(!session.enabled(name), name);
    }
};

WINDOW_TEST_MAIN(TestWindowGeneration)
#include "tst_windowgeneration.moc"
