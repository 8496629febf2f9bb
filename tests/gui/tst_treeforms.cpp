#include "gui/basemainform.h"
#include "gui/baseobjectmask.h"
#include "gui/emtytreeform.h"
#include "gui/guihelper.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class Mask : public BaseObjectMask
{
public:
    void saveData() override {}
    void updateData() override {}
    bool mayOverwrite(quint16 object) { return confirmOverwrite(0, object); }
};

/// Answers the first change it hears of with one of its own.
class WritingForm : public BaseMainForm
{
public:
    void updateData(ObjectDataBase::ChangeSet change) override
    {
        heard << change.index;
        if (heard.size() == 1)
            database()->addIndex(0, 0x3000, {});
    }
    void saveData() override
    {
        m_guard = true;
        database()->addIndex(0, 0x4000, {});
        m_guard = false;
    }
    void handleExpertMode(bool) override {}

    QList<quint16> heard;
};

} // namespace

class TestTreeForms : public QObject
{
    Q_OBJECT

private slots:
    void overwritingIsConfirmed()
    {
        const auto store = std::make_shared<ObjectDataBase>();
        QVERIFY(store->createNewDataBase());
        store->addIndex(0, 0x1017, {});
        Mask mask;
        QVERIFY(!mask.setDatabase(nullptr));
        QVERIFY(mask.mayOverwrite(0x1017)); // nothing to overwrite yet
        QVERIFY(mask.setDatabase(store));
        QVERIFY(mask.mayOverwrite(0x1016));
        QVERIFY(GuiHelper::takeShownBoxes().isEmpty());

        QVERIFY(mask.mayOverwrite(0x1017)); // by the default button
        GuiHelper::queueAnswer(QMessageBox::No);
        QVERIFY(!mask.mayOverwrite(0x1017));
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), 2);
        QCOMPARE(boxes[0].text, u"The existing index 0x1017 must be overwritten. Proceed?"_s);
        QCOMPARE(boxes[0].defaultButton, QMessageBox::Yes);
    }

    void combosOfferDataTypes()
    {
        QComboBox box;
        BaseTreeForm::fillDataTypes(box);
        int row = -1;
        QVERIFY(BaseObjectMask::selectComboItemByData(&box, CAN::UNSIGNED32, &row));
        QCOMPARE(row, box.currentIndex());
        QCOMPARE(box.currentText(), u"UNSIGNED32"_s);
        QVERIFY(BaseTreeForm::selectComboItem(box, CAN::UTF8_STRING));
        QVERIFY(!BaseTreeForm::selectComboItem(box, CAN::UNKNOWN_TYPE));
        QVERIFY(!BaseObjectMask::selectComboItemByData(&box, CAN::BITS3, &row));
        QCOMPARE(box.currentData().toInt(), int(CAN::UTF8_STRING)); // as it was
        for (int i = 0; i < box.count(); ++i)
            QVERIFY2(!box.itemIcon(i).pixmap(16).isNull(), qPrintable(box.itemText(i)));

        BaseTreeForm::fillDataTypes(box, u"EtherCAT"_s);
        QVERIFY(BaseTreeForm::selectComboItem(box, CAN::BITS3));
        QVERIFY(!BaseTreeForm::selectComboItem(box, CAN::BITS9));
    }

    /// Neither a change that a form causes while it hears of another, nor the order gets lost.
    void changesOfAFormAreDelivered()
    {
        const auto store = std::make_shared<ObjectDataBase>();
        QVERIFY(store->createNewDataBase());
        WritingForm form;
        QVERIFY(form.setDatabase(store));
        store->addIndex(0, 0x1000, {});
        store->addIndex(0, 0x2000, {});
        QTRY_COMPARE(form.heard, (QList<quint16>{0x1000, 0x2000, 0x3000}));
        form.saveData();
        QTest::qWait(100);
        QCOMPARE(form.heard.size(), 3); // its own edits do not come back

        GuiHelper::takeShownBoxes();
        form.doAction(BaseMainForm::Paste);
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.value(0).title, u"Not supported."_s);
        QCOMPARE(boxes.value(0).text, u"This action is not supported in this form."_s);
    }

    void aLikeChangePutsTheDeliveryOff()
    {
        const auto store = std::make_shared<ObjectDataBase>();
        QVERIFY(store->createNewDataBase());
        WritingForm form;
        form.heard << 0; // it has nothing to answer
        QVERIFY(form.setDatabase(store));
        QElapsedTimer sinceFirst;
        sinceFirst.start();
        while (sinceFirst.elapsed() < 150) {
            store->addIndex(0, 0x1000, {});
            QCoreApplication::processEvents();
        }
        QCOMPARE(form.heard.size(), 1);
        QTRY_COMPARE(form.heard.size(), 2);
    }
};

QTEST_MAIN(TestTreeForms)
#include "tst_treeforms.moc"
