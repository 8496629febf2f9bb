#include "app/generatoroutputform.h"
#include "app/guioutputhandler.h"
#include "app/guipostgenprogresshandler.h"
#include "app/vxmmainwindow.h"
#include "gui/guihelper.h"
#include "store/usersettings.h"

#include <QAction>
#include <QClipboard>
#include <QMenu>
#include <QProgressDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>

using namespace Qt::StringLiterals;
using OutputClass::Kind;

namespace {

/// A message with the links that it must have, each as "text=anchor".
struct Links
{
    const char *name;
    const char *message;
    QStringList expected;
};

} // namespace

class TestGeneratorOutputForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void links_data();
    void links();
    void lineOfTheCheck();
    void signalsOfLinks_data();
    void signalsOfLinks();
    void clickOnLink();
    void keyboardFollowsLink();
    void contextMenu();
    void text_data();
    void text();
    void emphasis();
    void times();
    void emptyLineBeforeAMessage();
    void htmlAsItStands();
    void kinds_data();
    void kinds();
    void countsAndFilters();
    void fromMessageToMessage();
    void clearing();
    void copying();
    void selectionSurvivesNewMessages();
    void longRun();
    void progressDialog();
    void windowFollowsLinks();

private:
    QTextBrowser *pane() { return m_form->findChild<QTextBrowser *>(u"tbLogging"_s); }
    QTextDocument *document() { return pane()->document(); }
    /// Lets the messages that wait reach the text.
    void settle() { static_cast<void>(m_form->getLogging()); }
    /// The lines of the pane without the times before them.
    QStringList lines();
    /// Every link of the pane as "text=anchor".
    QStringList shownLinks();
    QMenu *openMenu(const QString &text);
    /// A run that puts out these messages.
    void run(const QStringList &messages);
    /// The last word of every message in the pane.
    QStringList shownWords()
    {
        QStringList words;
        for (const QString &line : pane()->toPlainText().split(u'\n'))
            words.append(line.section(u' ', -1));
        return words;
    }

    std::unique_ptr<GeneratorOutputForm> m_form;
};

void TestGeneratorOutputForm::initTestCase()
{
    qApp->setOrganizationName(u"tolvex"_s);
    qApp->setApplicationName(u"CANopen Quillforge"_s);
    qApp->setProperty("AppNameWithVersion", u"Output Test 1.0"_s);
}

void TestGeneratorOutputForm::init()
{
    UserSettings().clear();
    m_form = std::make_unique<GeneratorOutputForm>();
    m_form->resize(800, 400);
    m_form->show();
}

void TestGeneratorOutputForm::cleanup()
{
    m_form.reset();
    QCOMPARE(GuiHelper::takeUnusedAnswers(), 0);
}

QStringList TestGeneratorOutputForm::lines()
{
    static const QRegularExpression time(u"^\\d\\d:\\d\\d:\\d\\d: "_s);
    QStringList result = m_form->getLogging().split(u'\n');
    for (QString &line : result)
        line.remove(time);
    return result;
}

QStringList TestGeneratorOutputForm::shownLinks()
{
    settle();
    QStringList result;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment piece = it.fragment();
            if (piece.charFormat().isAnchor())
                result.append(piece.text() + u'=' + piece.charFormat().anchorHref());
        }
    }
    return result;
}

void TestGeneratorOutputForm::links_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("expected");

    const Links rows[] = {
        {"object",
         "<strong>Error: </strong>Object 0x1018: The object does not have a name.",
         {"Object 0x1018=0 - 0x1018"}},
        {"object at the end", "Object 0x20Ab", {"Object 0x20Ab=0 - 0x20ab"}},
        {"subindex",
         "<strong>Error: </strong>Object 0x1018-0x02: The value is empty.",
         {"Object 0x1018-0x02=0 - 0x1018-0x02"}},
        {"subindex 0 without 0x",
         "<i>Corrected: Object 0x1A00-0</i>:'Managed Const' is used",
         {"Object 0x1A00-0=0 - 0x1a00-0x00"}},
        {"two objects",
         "Object 0x1400: COB-ID '0x200' is already used by PDO object 0x1401.",
         {"Object 0x1400=0 - 0x1400", "object 0x1401=0 - 0x1401"}},
        {"decimal subindex",
         "<strong>Error: </strong>Value conversion failed with Object 0x2000-0x16.",
         {"Object 0x2000-0x16=0 - 0x2000-0x10"}},
        {"subindex too large", "Object 0x2000-0xfff: x", {"Object 0x2000-0xfff=0 - 0x2000"}},
        {"line in the text",
         "Object 0x1A01 of line 3: The PDO mapping table is empty.",
         {"Object 0x1A01=3 - 0x1a01"}},
        {"tags inside",
         "Object <b>0x1018</b>-0x01: x",
         {"Object =0 - 0x1018-0x01", "0x1018=0 - 0x1018-0x01", "-0x01=0 - 0x1018-0x01"}},
        {"no object", "Object 0x12345 and 0x1018 and Objects 0x1018", {}},
        {"setting and object",
         "Warning: Object 0x2000-0x01: Limit Check is activated",
         {"Object 0x2000-0x01=0 - 0x2000-0x01", "Limit Check=Limit Check"}},
        {"node-ID",
         "CANopen basic Stack Settings: No Node-Id specified for line 0:",
         {"Node-Id=Node-ID"}},
        {"misspelt", "Industy Group not defined", {"Industy Group=Industry Group"}},
        {"other case",
         "<strong>Warning: The manufacturer code 1777 may not be used",
         {"manufacturer code=Manufacturer Code"}},
        {"part of a word", "MyECU instances", {}},
    };
    for (const Links &row : rows)
        QTest::newRow(row.name) << QString(QLatin1String(row.message)) << row.expected;
}

void TestGeneratorOutputForm::links()
{
    QFETCH(QString, message);
    QFETCH(QStringList, expected);
    m_form->appendLogging(message);
    QCOMPARE(shownLinks(), expected);
}

void TestGeneratorOutputForm::lineOfTheCheck()
{
    const QString heading = u"<strong>____ Checking line %1 ____</strong>"_s;
    const QString message = u"Error: Object 0x1018: x"_s;
    m_form->appendLogging(u"\nCheck of model consistency started"_s);
    m_form->appendLogging(message);
    m_form->appendHtml(heading.arg(0));
    m_form->appendLogging(message);
    m_form->appendHtml(heading.arg(12));
    m_form->appendLogging(message);
    m_form->appendLogging(u"Error: other"_s);
    m_form->appendLogging(u"\nCheck of model consistency finished.\n"_s);
    m_form->appendLogging(message);
    QCOMPARE(lines(), (QStringList{u"Check of model consistency started"_s, message,
                                   u"____ Checking line 0 ____"_s, u" Line 0 - "_s + message,
                                   u"____ Checking line 12 ____"_s, u" Line 12 - "_s + message,
                                   u"Error: other"_s, QString(),
                                   u"Check of model consistency finished."_s, message}));
    QCOMPARE(shownLinks(),
             (QStringList{u"Object 0x1018=0 - 0x1018"_s, u"Object 0x1018=0 - 0x1018"_s,
                          u"Object 0x1018=12 - 0x1018"_s, u"Object 0x1018=0 - 0x1018"_s}));
}

void TestGeneratorOutputForm::signalsOfLinks_data()
{
    QTest::addColumn<QString>("anchor");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QVariantList>("arguments");

    const auto byte = [](int value) { return QVariant::fromValue(static_cast<quint8>(value)); };
    const QVariant index = QVariant::fromValue<quint16>(0x1018);
    QTest::newRow("object") << "2 - 0x1018"
                            << "object" << QVariantList{byte(2), index};
    QTest::newRow("plain number") << "2 - 1018"
                                  << "object" << QVariantList{byte(2), index};
    QTest::newRow("subindex") << "31 - 0x1018-0xff"
                              << "subindex" << QVariantList{byte(31), index, byte(255)};
    QTest::newRow("setting") << "Industry Group"
                             << "setting" << QVariantList{u"Industry Group"_s};
    QTest::newRow("no such line") << "256 - 0x1018"
                                  << "" << QVariantList{};
    QTest::newRow("empty") << ""
                           << "" << QVariantList{};
}

void TestGeneratorOutputForm::signalsOfLinks()
{
    QFETCH(QString, anchor);
    QFETCH(QString, signal);
    QFETCH(QVariantList, arguments);
    const QMap<QString, std::shared_ptr<QSignalSpy>> spies = {
        {u"object"_s, std::make_shared<QSignalSpy>(m_form.get(), &GeneratorOutputForm::gotoObject)},
        {u"subindex"_s,
         std::make_shared<QSignalSpy>(m_form.get(), &GeneratorOutputForm::goToSubobj)},
        {u"setting"_s,
         std::make_shared<QSignalSpy>(m_form.get(), &GeneratorOutputForm::searchRequest)}};
    m_form->on_tbLogging_anchorClicked(QUrl(anchor));
    for (auto spy = spies.begin(); spy != spies.end(); ++spy)
        QCOMPARE((*spy)->value(0), spy.key() == signal ? arguments : QVariantList());
}

void TestGeneratorOutputForm::clickOnLink()
{
    m_form->appendLogging(u"<b>Error:</b> Object 0x1018-0x03: empty"_s);
    const QString text = m_form->getLogging();
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(text.indexOf(u"1018"_s)));
    const QPoint point = pane()->cursorRect(cursor).center();
    QSignalSpy spy(m_form.get(), &GeneratorOutputForm::goToSubobj);
    QTest::mouseClick(pane()->viewport(), Qt::LeftButton, {}, point);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.constFirst().at(2).value<quint8>(), quint8(3));
    // The page itself stays.
    QCOMPARE(m_form->getLogging(), text);
}

void TestGeneratorOutputForm::keyboardFollowsLink()
{
    m_form->appendLogging(u"Object 0x1018: empty"_s);
    settle();
    QSignalSpy spy(m_form.get(), &GeneratorOutputForm::gotoObject);
    pane()->moveCursor(QTextCursor::Start);
    pane()->setFocus();
    QTest::keyClick(pane(), Qt::Key_Tab);
    QTest::keyClick(pane(), Qt::Key_Return);
    QCOMPARE(spy.size(), 1);
}

QMenu *TestGeneratorOutputForm::openMenu(const QString &text)
{
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(m_form->getLogging().indexOf(text)));
    emit pane()->customContextMenuRequested(pane()->cursorRect(cursor).center());
    return m_form->findChild<QMenu *>(u"outputMenu"_s);
}

void TestGeneratorOutputForm::contextMenu()
{
    m_form->appendLogging(u"Object 0x1A00-0x01: The Limit Check of it"_s);
    m_form->appendLogging(u"nothing to go to"_s);
    settle();
    QSignalSpy spy(m_form.get(), &GeneratorOutputForm::goToSubobj);
    // Anywhere in the message.
    for (const QString &place : {u"1A00"_s, u"Limit"_s, u"of it"_s}) {
        std::unique_ptr<QMenu> menu(openMenu(place));
        auto *action = menu->findChild<QAction *>(u"actionGoToObject"_s);
        QVERIFY2(action != nullptr, qPrintable(place));
        QCOMPARE(action->text(), u"Go to object 0x1a00"_s);
        action->trigger();
    }
    QCOMPARE(spy.size(), 3);
    const std::unique_ptr<QMenu> menu(openMenu(u"nothing"_s));
    QVERIFY(menu->findChild<QAction *>(u"actionGoToObject"_s) == nullptr);
}

void TestGeneratorOutputForm::text_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("shown");

    QTest::newRow("angle brackets") << "#include <stdio.h> a < b && c"
                                    << "#include <stdio.h> a < b && c";
    QTest::newRow("entities") << "&lt;b&gt; a &amp; b"
                              << "<b> a & b";
    QTest::newRow("blanks") << "a    b\tc"
                            << "a    b\tc";
    QTest::newRow("lines") << "a\nb<br>c\n"
                           << "a\nb\nc";
    QTest::newRow("unbalanced tags") << "a</b></b><i>b"
                                     << "ab";
    // A message brings no resources.
    QTest::newRow("image") << "a<img src='file:///x.png'>b"
                           << "ab";
    QTest::newRow("empty") << ""
                           << "";
}

void TestGeneratorOutputForm::text()
{
    QFETCH(QString, message);
    QFETCH(QString, shown);
    m_form->appendLogging(message);
    QCOMPARE(lines().join(u'\n'), shown);
}

void TestGeneratorOutputForm::emphasis()
{
    m_form->appendLogging(
        u"<strong><font color='red'>Error: </font></strong>Object 0x1018: <i>a</i>b"_s);
    const QString text = m_form->getLogging();
    const auto formatAt = [&](const QString &piece) {
        QTextCursor cursor(document());
        cursor.setPosition(static_cast<int>(text.indexOf(piece)) + 1);
        return cursor.charFormat();
    };
    QCOMPARE(formatAt(u"Error"_s).fontWeight(), int(QFont::Bold));
    // A red that can be read on this ground.
    QCOMPARE(formatAt(u"Error"_s).foreground().color(),
             m_form->palette().color(QPalette::BrightText));
    QVERIFY(formatAt(u"Object"_s).fontWeight() != QFont::Bold);
    QVERIFY(formatAt(u"ab"_s).fontItalic());
    QVERIFY(!formatAt(u"ab"_s).isAnchor());
    QVERIFY(formatAt(u"Object"_s).isAnchor());
}

void TestGeneratorOutputForm::times()
{
    const auto firstLine = [this] {
        m_form->clearLogging();
        m_form->appendLogging(u"x"_s);
        return m_form->getLogging();
    };
    const QRegularExpression plain(u"^\\d\\d:\\d\\d:\\d\\d: x$"_s);
    QVERIFY2(plain.match(firstLine()).hasMatch(), qPrintable(firstLine()));
    UserSettings::setGeneral(u"date_time_format"_s, u"ddd MMM dd yyyy  HH:mm:ss "_s);
    QVERIFY2(plain.match(firstLine()).hasMatch(), qPrintable(firstLine()));
    UserSettings::setGeneral(u"date_time_format"_s, u"'on' yyyy-MM-dd"_s);
    QCOMPARE(firstLine(), QDate::currentDate().toString(u"'on' yyyy-MM-dd: 'x"_s));
}

void TestGeneratorOutputForm::emptyLineBeforeAMessage()
{
    m_form->appendLogging(u"a"_s);
    m_form->appendLogging(u"\n\nb"_s);
    QCOMPARE(lines(), (QStringList{u"a"_s, QString(), QString(), u"b"_s}));
    QVERIFY(m_form->getLogging().endsWith(u": \nb"_s));
}

void TestGeneratorOutputForm::htmlAsItStands()
{
    GUIOutputHandler handler(m_form.get());
    handler.outputMessage(u"a"_s);
    handler.outputHtml(QString());
    handler.outputHtml(u"<strong>____ b</strong> &lt;"_s);
    handler.outputMessage(u"c"_s);
    QCOMPARE(handler.loggingText().mid(10, 14),
             u"a\n\n____ b <\n"_s + handler.loggingText().mid(22, 2));
    QCOMPARE(lines(), (QStringList{u"a"_s, QString(), u"____ b <"_s, u"c"_s}));
    QVERIFY(document()->lastBlock().charFormat().fontWeight() != QFont::Bold);
}

void TestGeneratorOutputForm::kinds_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<Kind>("kind");

    const std::pair<const char *, Kind> rows[] = {
        {"<strong>Error: </strong>Object 0x1018: x", Kind::Error},
        {"<strong><font color='red'>Error: </font></strong>Timer", Kind::Error},
        {"<b>ERROR - Generation of x failed. y</b>", Kind::Error},
        {"ABORT - The output folder /x is not writeable.", Kind::Error},
        {"The EDS file x.eds in /x is not writable", Kind::Error},
        {"ABORT - Check of model consistency finished: failed (2 errors)", Kind::Progress},
        {"Warning: Object 0x1018: x", Kind::Warning},
        {"<strong>Warning</strong>: x", Kind::Warning},
        {"<strong>Warning: x</strong>", Kind::Warning},
        {"Warning line type not set for line 3.", Kind::Warning},
        {"<strong>Hint: </strong>x", Kind::Note},
        {"Info: x", Kind::Note},
        {"<i>Corrected: Object 0x1018-0</i>:x", Kind::Note},
        {"<strong>Note: </strong>x", Kind::Note},
        {"Generation of Error: completed.", Kind::Progress},
    };
    for (const auto &[message, kind] : rows)
        QTest::newRow(message) << QString::fromLatin1(message) << kind;
}

void TestGeneratorOutputForm::kinds()
{
    QFETCH(QString, message);
    QFETCH(Kind, kind);
    QCOMPARE(OutputClass::of(message), kind);
}

void TestGeneratorOutputForm::run(const QStringList &messages)
{
    m_form->appendLogging(u"\nCheck of model consistency started"_s);
    for (const QString &message : messages)
        m_form->appendLogging(message);
    settle();
}

/// Counts, filters and F8 are about the last run; the text and what is copied stay whole.
void TestGeneratorOutputForm::countsAndFilters()
{
    auto *errors = m_form->findChild<QPushButton *>(u"btnErrors"_s);
    auto *notes = m_form->findChild<QPushButton *>(u"btnNotes"_s);
    run({u"Error: old"_s});
    run({u"Error: a"_s, u"Hint: b"_s, u"Error: c"_s, u"done"_s});
    QCOMPARE(m_form->count(Kind::Error), 2);
    QCOMPARE(errors->text(), u"2 errors"_s);
    QCOMPARE(notes->text(), u"1 note"_s);
    QVERIFY(!m_form->findChild<QPushButton *>(u"btnWarnings"_s)->isEnabled());

    const QString all = m_form->getLogging();
    QCOMPARE(pane()->toPlainText(), all);
    errors->click();
    QCOMPARE(m_form->getLogging(), all); // and what waits is shown
    QCOMPARE(shownWords(), (QStringList{u"a"_s, u"c"_s}));
    notes->click();
    settle();
    QCOMPARE(shownWords(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    errors->click();
    run({u"Hint: d"_s});
    QCOMPARE(shownWords(), QStringList{u"d"_s});
    notes->click();
    settle();
    QCOMPARE(pane()->toPlainText(), m_form->getLogging());
}

void TestGeneratorOutputForm::fromMessageToMessage()
{
    QVERIFY(!m_form->goToNextMessage());
    run({u"Error: old"_s});
    run({u"Warning: a\nsecond line"_s, u"x"_s, u"Error: b"_s, u"Info: c"_s});
    const auto word = [this] { return pane()->textCursor().block().text().right(1); };
    QString way;
    for (int i = 0; i < 4; ++i) {
        QVERIFY(m_form->goToNextMessage());
        way += word();
    }
    QCOMPARE(way, u"abca"_s);
    QVERIFY(m_form->goToPreviousMessage());
    QCOMPARE(word(), u"c"_s);
    // Where it went is where Tab looks for the first link.
    QVERIFY(pane()->textCursor().atBlockStart());
    QCOMPARE(pane()->extraSelections().size(), 1);
}

void TestGeneratorOutputForm::clearing()
{
    m_form->appendLogging(u"shown"_s);
    settle();
    m_form->appendLogging(u"still waiting"_s);
    m_form->findChild<QPushButton *>(u"btnClear"_s)->click();
    QTest::qWait(100);
    QCOMPARE(m_form->getLogging(), QString());
    m_form->appendLogging(u"new"_s);
    QCOMPARE(lines(), QStringList{u"new"_s});
}

void TestGeneratorOutputForm::copying()
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    m_form->appendLogging(u"Object 0x1018: <b>a</b>"_s);
    m_form->appendLogging(u"b"_s);
    const QString all = m_form->getLogging();
    m_form->activateWindow();
    pane()->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));

    clipboard->clear();
    QTest::keyClick(pane(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(pane(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard->text(), all);
    pane()->moveCursor(QTextCursor::End);
    clipboard->clear();
    QTest::keyClick(pane(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(clipboard->text(), all);
    QTest::keyClick(pane(), Qt::Key_Left, Qt::ShiftModifier);
    m_form->doAction(BaseMainForm::Copy);
    QCOMPARE(clipboard->text(), u"b"_s);

    const std::unique_ptr<QMenu> menu(openMenu(u"0x1018"_s));
    for (QAction *action : menu->actions()) {
        if (action->text().remove(u'&') == u"Copy All")
            action->trigger();
    }
    QCOMPARE(clipboard->text(), all);
}

void TestGeneratorOutputForm::selectionSurvivesNewMessages()
{
    m_form->appendLogging(u"to be marked"_s);
    settle();
    pane()->selectAll();
    const QString marked = pane()->textCursor().selectedText();
    m_form->appendLogging(u"later"_s);
    settle();
    QCOMPARE(pane()->textCursor().selectedText(), marked);
    pane()->moveCursor(QTextCursor::Start);
    m_form->appendLogging(u"newest"_s);
    settle();
    QVERIFY(pane()->textCursor().atEnd());
}

/// Thousands of messages reach the text in few steps, whole and in order.
void TestGeneratorOutputForm::longRun()
{
    constexpr int count = 5000;
    int changes = 0;
    connect(document(), &QTextDocument::contentsChanged, this, [&changes] { ++changes; });
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        m_form->appendLogging(u"<strong>Error: </strong>Object 0x%1-0x01: The defaultvalue is not "
                              "in the range of the limits."_s.arg(0x2000 + i, 4, 16));
        if (i % 10 == 0)
            QCoreApplication::processEvents();
    }
    const QString last =
        u"Object 0x%1-0x01: The defaultvalue is not in the range of the limits."_s.arg(
            0x2000 + count - 1, 4, 16);
    QTRY_VERIFY(pane()->toPlainText().endsWith(last));
    qInfo("%d messages in %lld ms, %d changes of the text", count, timer.elapsed(), changes);
    QVERIFY2(changes < count / 10, qPrintable(QString::number(changes)));
    QCOMPARE(lines().size(), count);
    QCOMPARE(shownLinks().size(), count);
}

void TestGeneratorOutputForm::progressDialog()
{
    QProgressDialog dialog;
    dialog.setMinimumDuration(100000);
    dialog.setCancelButtonText(u"Stop"_s);
    dialog.show();
    GUIPostGenProgressHandler handler;
    QSignalSpy cancelled(&handler, &PostGenProgressHandler::cancelProcess);
    handler.setDialog(&dialog);
    handler.setLabelText(u"Post generation process running ... "_s);
    handler.setCancelButtonText(u"Cancel process"_s);
    handler.show();
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.labelText(), u"Post generation process running ... "_s);
    auto *button = dialog.findChild<QPushButton *>();
    QVERIFY(button != nullptr);
    QCOMPARE(button->text(), u"Cancel process"_s);
    QVERIFY(button->width() >= button->sizeHint().width());
    button->click();
    QCOMPARE(cancelled.size(), 1);
    handler.hide();
    QVERIFY(!dialog.isVisible());

    handler.showMessage(nullptr, u"title"_s, u"text"_s, u"detail"_s);
    const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.constFirst().informativeText, u"detail"_s);
    QCOMPARE(int(boxes.constFirst().buttons), int(QMessageBox::Ok));
}

void TestGeneratorOutputForm::windowFollowsLinks()
{
    const auto store = std::make_shared<ObjectDataBase>();
    store->createNewDataBase();
    for (const quint8 line : {0, 1}) {
        store->addNode(line, {});
        store->setGeneralSetting(u"line%1type"_s.arg(line), u"1"_s);
    }
    VxmMainWindow window(StartOptions::parse({u"program"_s}));
    window.setDatabase(store);
    window.setLibraryDatabase(store);
    window.selectLine(0);
    window.updateLinesComboBox();
    auto *form = window.findChild<GeneratorOutputForm *>();
    emit form->gotoObject(1, 0x1018);
    QCOMPARE(window.currentLine(), quint8(1));
    emit form->goToSubobj(0, 0x1018, 1);
    QCOMPARE(window.currentLine(), quint8(0));
    // A line that is gone since the message was written.
    emit form->gotoObject(7, 0x1018);
    QCOMPARE(window.currentLine(), quint8(0));
}

QTEST_MAIN(TestGeneratorOutputForm)
#include "tst_generatoroutputform.moc"
