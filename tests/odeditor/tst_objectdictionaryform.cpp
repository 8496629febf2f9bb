#include "benchmarks/syntheticproject.h"
#include "gui/guihelper.h"
#include "odeditor/manufacturersegmentform.h"
#include "odeditor/objectdictionaryform.h"
#include "odeditor/tolvextreewidget.h"
#include "store/undomanager.h"
#include "store/usersettings.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

using Row = TreeRow;

/// The page with a project of its own, used by mouse and keyboard.
struct Session : FormNavigator
{
    explicit Session(int objects = 0)
    {
        store->createNewDataBase();
        library->createNewDataBase();
        if (objects > 0) {
            SyntheticProject::fill(*store, objects);
        } else {
            add(0x1017, u"Producer Heartbeat Time"_s, 0);
            add(0x1018, u"Identity"_s, 2);
            add(0x2000, u"Motor"_s, 3);
            add(0x2001, u"Pump"_s, 0);
        }
        undo.setDatabase(store);
        form.setContext({.library = library, .undo = &undo, .navigator = this});
        form.setDatabase(store);
        form.resize(900, 600);
    }

    /// A record with so many subindices behind its count, or a variable.
    void add(quint16 index, const QString &name, int subindices, quint8 line = 0)
    {
        const bool isRecord = subindices > 0;
        store->addIndex(line, index,
                        {.name = name, .objecttype = isRecord ? CANopen::RECORD : CANopen::VAR});
        for (int sub = 0; sub <= subindices; ++sub) {
            ObjectDataBase::SUBINDEX_DATA_T data;
            data.name = u"CH%1"_s.arg(sub, 2, 10, QChar(u'0'));
            data.datatype = 5;
            data.defaultvalue = QString::number(isRecord && sub == 0 ? subindices : 0);
            store->addSubIndex(line, index, quint8(sub), data);
        }
    }

    void gotoIndex(quint8, quint16 index) override { form.gotoIndex(index); }
    void gotoSubIndex(quint8, quint16 index, quint8 sub) override { form.gotoSubIndex(index, sub); }
    void tell(const QString &text) override { told = text; }

    void show()
    {
        form.show();
        form.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        tree->setFocus();
    }
    QStringList objectTexts()
    {
        QStringList texts;
        for (int i = 0; i < tree->topLevelItemCount(); ++i) {
            for (int row = 0; row < tree->topLevelItem(i)->childCount(); ++row) {
                if (!tree->topLevelItem(i)->child(row)->isHidden())
                    texts << tree->topLevelItem(i)->child(row)->text(0);
            }
        }
        return texts;
    }
    QTreeWidgetItem *item(const QString &start)
    {
        const auto found = tree->findItems(start, Qt::MatchStartsWith | Qt::MatchRecursive |
                                                      Qt::MatchCaseSensitive);
        return found.isEmpty() ? nullptr : found.first();
    }
    void click(const QString &start, Qt::KeyboardModifiers modifiers = {})
    {
        QTreeWidgetItem *clicked = item(start);
        if (clicked == nullptr)
            QFAIL(qPrintable(start));
        tree->scrollToItem(clicked);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, modifiers,
                          tree->visualItemRect(clicked).center());
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(tree, key, modifiers);
    }
    [[nodiscard]] QList<quint16> objects(quint8 line = 0) const
    {
        return store->getIndices(line, 0x1000);
    }
    template <class Widget>
    Widget *pane(const char *name)
    {
        return form.pane()->findChild<Widget *>(QLatin1String(name));
    }

    std::shared_ptr<ObjectDataBase> store = std::make_shared<ObjectDataBase>();
    std::shared_ptr<ObjectDataBase> library = std::make_shared<ObjectDataBase>();
    UndoManager undo;
    ObjectDictionaryForm form;
    TolvexTreeWidget *tree = form.findChild<TolvexTreeWidget *>(u"treeWidget"_s);
    QString told;
};

QStringList shownTexts()
{
    QStringList texts;
    for (const GuiHelper::Box &box : GuiHelper::takeShownBoxes())
        texts << box.text;
    return texts;
}

/// Milliseconds of processor time.
double processorTime(const std::function<void()> &work)
{
    const std::clock_t begin = std::clock();
    work();
    return 1000.0 * double(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// Opens the context menu on the current row and gives what it offers.
QStringList menuTexts(Session &session, bool onlyEnabled)
{
    QStringList texts;
    QTimer::singleShot(0, &session.form, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        for (const QAction *action : menu->actions()) {
            if (!action->isSeparator() && (action->isEnabled() || !onlyEnabled))
                texts << action->text();
        }
        menu->close();
    });
    session.form.displayContextMenu(
        session.tree->visualItemRect(session.tree->currentItem()).center());
    return texts;
}

} // namespace

class TstObjectDictionaryForm : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        UserSettings().clear();
        GuiHelper::takeShownBoxes();
    }
    void cleanup() { QCOMPARE(GuiHelper::takeUnusedAnswers(), 0); }

    void showsAndFilters()
    {
        Session session;
        session.show();
        QCOMPARE(session.tree->topLevelItemCount(), 3);
        session.add(0xA000, u"Net {$I}"_s, 0);
        session.add(0xC000, QString(), 0);
        QTRY_COMPARE(session.tree->topLevelItemCount(), 5);
        QCOMPARE(session.tree->topLevelItem(4)->text(0), u"Additional Segment"_s);
        QVERIFY(session.item(u"0xc000 - unnamed object"_s) != nullptr);
        QTest::keyClicks(session.form.findChild<QLineEdit *>(u"leFilter"_s), u"heart"_s);
        QCOMPARE(session.objectTexts(), QStringList{u"0x1017 - Producer Heartbeat Time"_s});
        session.form.gotoSubIndex(0x2000, 2); // hidden by the filter, which gives way
        QCOMPARE(session.tree->currentItem()->text(0), u"2 - CH02"_s);
        QCOMPARE(session.form.shownSubindex(), 2);
        session.form.gotoIndex(0x5FFF);
        QCOMPARE(session.told, u"There is no object 0x5fff on line 0."_s);
        session.store->deleteIndex(0, 0xC000);
        session.store->deleteIndex(0, 0x2000);
        QTRY_COMPARE(session.tree->topLevelItemCount(), 4);
        QTRY_COMPARE(session.form.shownIndex(), 0);
    }

    void keepsStateOverUndo()
    {
        Session session;
        session.show();
        session.undo.handleDebounceTimeout();
        const QString hash = session.store->contentHash();
        session.tree->topLevelItem(0)->setExpanded(false);
        session.item(u"0x2000"_s)->setExpanded(true);
        session.click(u"3 - "_s);
        session.key(Qt::Key_Insert);
        QCOMPARE(session.tree->currentItem()->text(0), u"4 - CH04"_s);
        QCOMPARE(session.store->getSubIndexDefaultValue(0, 0x2000, 0), u"4"_s);
        session.undo.undo();
        QTRY_VERIFY(session.item(u"4 - "_s) == nullptr);
        QCOMPARE(session.store->contentHash(), hash);
        QVERIFY(!session.tree->topLevelItem(0)->isExpanded());
        QVERIFY(session.item(u"0x2000"_s)->isExpanded());
        QVERIFY(session.form.pane() == nullptr);
    }

    void editsManyObjects()
    {
        Session session;
        session.show();
        session.click(u"0x2000"_s);
        session.click(u"0x2001"_s, Qt::ControlModifier);
        session.form.doAction(BaseMainForm::Duplicate);
        QCOMPARE(session.objects().mid(2), (QList<quint16>{0x2000, 0x2001, 0x2002, 0x2003}));
        QCOMPARE(session.tree->selectedItems().size(), 2);
        session.form.doAction(BaseMainForm::Copy);
        session.form.doAction(BaseMainForm::Paste);
        QCOMPARE(session.objects().size(), 8);
        UserSettings::setGeneral(u"warnbeforedeleting"_s, 1);
        session.key(Qt::Key_Delete);
        QCOMPARE(shownTexts(), QStringList{u"Do you really want to delete 2 items?"_s});
        QCOMPARE(session.objects().size(), 8);
        UserSettings::setGeneral(u"warnbeforedeleting"_s, 0);
        session.form.doAction(BaseMainForm::Cut);
        QCOMPARE(session.objects().size(), 6);
        QCOMPARE(DictionaryTree::rowOf(session.tree->currentItem()), Row::ofObject(0x2003));
        QCOMPARE(session.form.shownIndex(), 0x2003);

        session.store->addNode(1, {});
        session.form.setLine(1);
        QVERIFY(session.objectTexts().isEmpty());
        session.tree->setCurrentItem(session.tree->topLevelItem(1));
        GuiHelper::queueDialog([](QDialog &dialog) {
            dialog.findChild<QLineEdit *>(u"leIndex"_s)->setText(u"0x4000"_s);
            dialog.findChild<QLineEdit *>(u"leName"_s)->setText(u"Other"_s);
            return int(QDialog::Accepted);
        });
        session.key(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(session.objectTexts().value(0), u"0x4000 - Other"_s);
        QCOMPARE(session.objects(1), (QList<quint16>{0x4000, 0x4001}));
    }

    void editsSubindices()
    {
        Session session;
        session.show();
        session.item(u"0x2000"_s)->setExpanded(true);
        session.click(u"2 - "_s);
        session.key(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(session.store->getSubIndices(0, 0x2000), (QList<quint8>{0, 1, 3, 4}));
        QCOMPARE(session.form.shownSubindex(), 3);
        session.key(Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
        session.key(Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(session.store->getSubIndices(0, 0x2000), (QList<quint8>{0, 1, 2, 3}));
        QVERIFY(!session.told.isEmpty());
        QVERIFY(!menuTexts(session, true).contains(u"Decrement sub index"_s));
        session.key(Qt::Key_F2);
        auto *editor = session.tree->viewport()->findChild<QLineEdit *>();
        QVERIFY(editor != nullptr);
        QTest::keyClicks(editor, u"Torque"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(session.store->getSubIndexName(0, 0x2000, 2), u"Torque"_s);
        QTRY_COMPARE(session.tree->currentItem()->text(0), u"2 - Torque"_s);
        session.show(); // the menu took the focus
        session.key(Qt::Key_Delete);
        QCOMPARE(session.store->getSubIndices(0, 0x2000), (QList<quint8>{0, 1, 3}));
        GuiHelper::queueDialog([](QDialog &dialog) {
            auto *numbers = dialog.findChild<QComboBox *>(u"cbSubs"_s);
            numbers->setCurrentIndex(numbers->findData(128));
            return int(QDialog::Accepted);
        });
        session.click(u"0x2000"_s);
        session.form.addSpecificSub();
        QCOMPARE(session.store->getSubIndexDefaultValue(0, 0x2000, 0), u"128"_s);
    }

    void heedsExpertMode()
    {
        Session session;
        session.show();
        session.click(u"0x1018"_s);
        QVERIFY(!session.form.canDoAction(BaseMainForm::Delete));
        session.key(Qt::Key_Delete);
        QCOMPARE(session.objects().size(), 4);
        QVERIFY(!session.told.isEmpty());
        QVERIFY(menuTexts(session, false).contains(u"Remove Index"_s));
        QVERIFY(!menuTexts(session, true).contains(u"Remove Index"_s));
        session.click(u"Communication"_s);
        QVERIFY(!menuTexts(session, false).contains(u"Clear PDOs"_s));
        session.form.handleExpertMode(true);
        QVERIFY(menuTexts(session, false).contains(u"Clear PDOs"_s));
        session.form.clearSegment();
        QCOMPARE(shownTexts(), QStringList{u"Do you really want to delete 2 items?"_s});
        QCOMPARE(session.objects().size(), 4);
        GuiHelper::queueAnswer(QMessageBox::Yes);
        session.form.clearSegment();
        QCOMPARE(session.objects(), (QList<quint16>{0x2000, 0x2001}));
    }

    void addsObjects_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QList<quint8>>("subindices");
        const QList<quint8> none;
        QTest::newRow("record") << u"0x3000"_s << u"Record"_s << QString() << QList<quint8>{0, 1};
        QTest::newRow("decimal") << u"12288"_s << u"Variable"_s << QString() << QList<quint8>{0};
        QTest::newRow("communication")
            << u"0x1000"_s << u"Variable"_s
            << u"It is not allowed to add an index in the communication segment manually. Please "
               "use 'add service' or import an object."_s
            << none;
        QTest::newRow("profile") << u"0x6000"_s << u"Array"_s
                                 << u"The action is only supported in the expert mode."_s << none;
        QTest::newRow("too large")
            << u"0x13000"_s << u"Array"_s << u"An index is a number up to 0xFFFF."_s << none;
        QTest::newRow("no number") << QString(20000, u'x') << u"Array"_s << QString() << none;
        QTest::newRow("taken") << u"0x2000"_s << u"Array"_s
                               << u"The existing index 0x2000 must be overwritten. Proceed?"_s
                               << none;
    }
    void addsObjects()
    {
        QFETCH(QString, text);
        QFETCH(QString, type);
        QFETCH(QString, message);
        QFETCH(QList<quint8>, subindices);
        Session session;
        session.show();
        session.click(u"Manufacturer"_s);
        session.pane<QLineEdit>("lineEdit")->setText(text);
        session.pane<QComboBox>("cbObjectType")->setCurrentText(type);
        session.pane<QPushButton>("btnAddObject")->click();
        QCOMPARE(shownTexts().value(0), message);
        if (subindices.isEmpty()) {
            QCOMPARE(session.objects().size(), 4);
            return;
        }
        QCOMPARE(session.store->getSubIndices(0, 0x3000), subindices);
        QCOMPARE(session.form.shownIndex(), 0x3000);
        auto *editor = session.tree->viewport()->findChild<QLineEdit *>();
        QVERIFY(editor != nullptr);
        QCOMPARE(editor->selectedText(), u"New object"_s);
    }

    void staysQuickWithManyObjects()
    {
        Session session(10000);
        const auto within = [](const char *what, double limit, const std::function<void()> &work) {
            const double used = processorTime([&] {
                work();
                QCoreApplication::processEvents();
            });
            qInfo("%s: %.0f ms", what, used);
            return used < limit;
        };
        QVERIFY(within("show", 250, [&] { session.show(); }));
        auto *filter = session.form.findChild<QLineEdit *>(u"leFilter"_s);
        for (const QChar letter : u"0x2fa"_s)
            QVERIFY(within("filter", 50, [&] { QTest::keyClicks(filter, QString(letter)); }));
        QVERIFY(within("filter away", 50, [&] { filter->clear(); }));

        const auto segment = [&] { return session.tree->topLevelItem(1); };
        session.tree->setCurrentItem(segment()->child(0));
        for (int row = 0; row < 1000; ++row)
            segment()->child(2 * row)->setSelected(true);
        QVERIFY(within("copy", 500, [&] { session.form.doAction(BaseMainForm::Copy); }));
        QVERIFY(within("delete", 500, [&] { session.key(Qt::Key_Delete); }));
        QCOMPARE(segment()->childCount(), 9000);
        session.tree->setCurrentItem(segment()->child(8999));
        QVERIFY(within("paste", 500, [&] { session.form.doAction(BaseMainForm::Paste); }));
        QCOMPARE(segment()->childCount(), 10000);
        const QList<quint16> indices = session.objects();
        QVERIFY(within("burst", 1000, [&] {
            for (const quint16 index : indices)
                emit session.store->updateNotify(
                    {.kind = ObjectDataBase::IndexAdded, .index = index});
        }));
        QVERIFY(within("undo", 250, [&] { session.form.updateAllTree(); }));
        within("expand all", 0, [&] {
            emit session.tree->aboutToExpandAll();
            session.tree->expandAll();
        });
    }
};

QTEST_MAIN(TstObjectDictionaryForm)
#include "tst_objectdictionaryform.moc"
