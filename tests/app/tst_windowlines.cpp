#include "tests/app/windowtest.h"

using namespace WindowParts;

/// The flows of the line box.
class TestWindowLines : public WindowTest
{
    Q_OBJECT

private slots:
    void linesComeAndGo()
    {
        Session session;
        QVERIFY(session.open(project()));
        // Line 0 has an error register, so only what is shared goes along.
        session.store->addIndex(0, 0x2100, {});
        session.store->addSubIndex(0, 0x2100, 0, {.sharedlines = true});
        session.store->addIndex(0, 0x1F80, {});

        GuiHelper::queueAnswer(QMessageBox::No);
        session.choose(255);
        QVERIFY(!session.store->lineExists(1));
        QCOMPARE(session.lines()->currentData().toInt(), 0);

        GuiHelper::queueAnswer(QMessageBox::Yes);
        session.choose(255);
        QCOMPARE(session.store->getLineType(1), 1);
        QCOMPARE(session.store->getIndices(1), QList<quint16>{0x2100});
        QCOMPARE(session.window.currentLine(), 1);
        QCOMPARE(session.lines()->currentText(), u"Line 1 - CANopen"_s);

        GuiHelper::queueAnswer(QMessageBox::Yes);
        queueProtocol(u"btnCANopenCAN"_s);
        session.choose(252);
        QCOMPARE(session.store->getLineType(1), 6);
        QCOMPARE(session.lines()->currentText(), u"Line 1 - CANopen + CAN"_s);

        GuiHelper::queueAnswer(QMessageBox::Yes);
        session.choose(253);
        QCOMPARE(session.store->getLineType(2), 6);
        QCOMPARE(session.store->getIndices(2), session.store->getIndices(1));

        GuiHelper::queueAnswer(QMessageBox::Yes);
        session.choose(254);
        QVERIFY(!session.store->lineExists(2));
        QCOMPARE(session.window.currentLine(), 1);
        QCOMPARE(shownTexts(), (QStringList{u"Do you want to add a new line?"_s,
                                            u"Do you want to add a new line?"_s,
                                            u"Do you want to add change the type of line 1?"_s,
                                            u"Do you want to duplicate the last line?"_s,
                                            u"Do you want to delete this line?"_s}));

        // Links of messages lead to their line, but to none that is gone since.
        emit session.output()->goToSubobj(0, 0x1018, 1);
        QCOMPARE(session.window.currentLine(), 0);
        emit session.output()->gotoObject(1, 0x1018);
        QCOMPARE(session.window.currentLine(), 1);
        emit session.output()->gotoObject(7, 0x1018);
        QCOMPARE(session.window.currentLine(), 1);
    }

    void onlyAChoiceFromTheListStartsAFlow()
    {
        Session session;
        session.store->addNode(1, {});
        session.window.updateLinesComboBox();
        session.window.show();
        QComboBox &box = *session.lines();
        QWheelEvent wheel(QPointF(5, 5), box.mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&box, &wheel);
        QCOMPARE(session.window.currentLine(), 0);
        // The keys go no farther than the lines.
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_End, Qt::Key_D})
            QTest::keyClick(&box, key);
        QCOMPARE(session.window.currentLine(), 1);
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(session.window.currentLine(), 0);
        QCOMPARE(shownTexts(), QStringList());

        // Enter without a thought deletes nothing.
        session.choose(254);
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes[0].defaultButton, QMessageBox::No);
        QVERIFY(boxes[0].informativeText.startsWith(u"Line 1 - "_s));
        QVERIFY(session.store->lineExists(1));
        QCOMPARE(box.currentData().toInt(), 0);
    }

    void mandatoryObjectsComeFromTheLibrary()
    {
        QCoreApplication::setApplicationName(canEdition);
        Session session;
        session.library->addNode(ObjectDataBase::stagingLine, {});
        session.library->addIndex(ObjectDataBase::stagingLine, 0x1001,
                                  {.category = CANopen::Mandatory});
        session.library->addIndex(ObjectDataBase::stagingLine, 0x1002,
                                  {.category = CANopen::Optional});
        GuiHelper::queueAnswer(QMessageBox::Yes);
        queueProtocol(u"btnCANopen"_s);
        session.choose(255);
        QCOMPARE(session.store->getLineType(1), 1);
        QCOMPARE(session.store->getIndices(1), QList<quint16>{0x1001});
    }

    void theNumberOfLinesHasItsEnds()
    {
        Session session;
        session.choose(254); // line 0 stays
        QVERIFY(session.store->lineExists(0));
        for (quint8 line = 1; line < ObjectDataBase::maximumLines; ++line)
            session.store->addNode(line, {});
        session.window.updateLinesComboBox();
        GuiHelper::takeShownBoxes();
        session.choose(255);
        session.choose(253);
        QCOMPARE(session.store->getLines().size(), ObjectDataBase::maximumLines);
        QCOMPARE(shownTexts(),
                 QStringList(2, u"The maximum number of 32 lines has been reached."_s));
    }
};

WINDOW_TEST_MAIN(TestWindowLines)
#include "tst_windowlines.moc"
