#include "app/generatoroutputform.h"
#include "app/guioutputhandler.h"
#include "app/guipostgenprogresshandler.h"
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

class TestGeneratorOutputForm : public QObject
{
    Q_OBJECT

    std::unique_ptr<GeneratorOutputForm> m_form;

    QTextBrowser *pane() { return m_form->findChild<QTextBrowser *>(u"tbLogging"_s); }
    QTextDocument *document() { return pane()->document(); }
    QPushButton *button(const char *name)
    {
        return m_form->findChild<QPushButton *>(QLatin1String(name));
    }
    /// Lets the messages that wait reach the text.
    void settle() { static_cast<void>(m_form->getLogging()); }
    void append(const QStringList &messages)
    {
        for (const QString &message : messages)
            m_form->appendLogging(message);
        settle();
    }
    /// A run that puts out these messages.
    void run(const QStringList &messages)
    {
        m_form->appendLogging(u"\nCheck of model consistency started"_s);
        append(messages);
    }
    /// The lines of the pane without the times before them.
    QStringList lines()
    {
        static const QRegularExpression time(u"^\\d\\d:\\d\\d:\\d\\d: "_s);
        return m_form->getLogging().split(u'\n').replaceInStrings(time, QString());
    }
    /// Every link of the pane as "text=anchor".
    QStringList shownLinks()
    {
        settle();
        QStringList result;
        for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
            for (auto it = block.begin(); !it.atEnd(); ++it) {
                const QTextCharFormat format = it.fragment().charFormat();
                if (format.isAnchor())
                    result.append(it.fragment().text() + u'=' + format.anchorHref());
            }
        }
        return result;
    }
    /// The last word of every message in the pane.
    QStringList shownWords()
    {
        static const QRegularExpression before(u"^.* "_s);
        return pane()->toPlainText().split(u'\n').replaceInStrings(before, QString());
    }
    QTextCursor cursorAt(const QString &text, int offset = 0)
    {
        QTextCursor cursor(document());
        cursor.setPosition(static_cast<int>(m_form->getLogging().indexOf(text)) + offset);
        return cursor;
    }
    QPoint placeOf(const QString &text) { return pane()->cursorRect(cursorAt(text)).center(); }
    QMenu *openMenu(const QString &text)
    {
        emit pane()->customContextMenuRequested(placeOf(text));
        return m_form->findChild<QMenu *>(u"outputMenu"_s);
    }

private slots:
    void initTestCase()
    {
        qApp->setOrganizationName(u"tolvex"_s);
        qApp->setApplicationName(u"CANopen Quillforge"_s);
        qApp->setProperty("AppNameWithVersion", u"Output Test 1.0"_s);
    }

    void init()
    {
        UserSettings().clear();
        m_form = std::make_unique<GeneratorOutputForm>();
        m_form->resize(800, 400);
        m_form->show();
    }

    void cleanup()
    {
        m_form.reset();
        QCOMPARE(GuiHelper::takeUnusedAnswers(), 0);
    }

    void links()
    {
        const std::pair<const char *, const char *> rows[] = {
            {"<strong>Error: </strong>Object 0x1018: x.", "Object 0x1018=0 - 0x1018"},
            {"Object 0x20Ab", "Object 0x20Ab=0 - 0x20ab"},
            {"<b>Error: </b>Object 0x1018-0x02: x", "Object 0x1018-0x02=0 - 0x1018-0x02"},
            {"<i>Corrected: Object 0x1A00-0</i>:'x'", "Object 0x1A00-0=0 - 0x1a00-0x00"},
            {"Object 0x1400: COB-ID '0x200' is already used by PDO object 0x1401.",
             "Object 0x1400=0 - 0x1400|object 0x1401=0 - 0x1401"},
            {"Value conversion failed with Object 0x2000-0x16.", // decimal
             "Object 0x2000-0x16=0 - 0x2000-0x10"},
            {"Object 0x2000-0xfff: x", "Object 0x2000-0xfff=0 - 0x2000"}, // no such subindex
            {"Object 0x1A01 of line 3: x", "Object 0x1A01=3 - 0x1a01"},
            {"Object <b>0x1018</b>-0x01: x",
             "Object =0 - 0x1018-0x01|0x1018=0 - 0x1018-0x01|-0x01=0 - 0x1018-0x01"},
            {"Object 0x12345 and 0x1018 and Objects 0x1018", ""},
            {"Warning: Object 0x2000-0x01: Limit Check is activated",
             "Object 0x2000-0x01=0 - 0x2000-0x01|Limit Check=Limit Check"},
            {"Settings: No Node-Id specified for line 0:", "Node-Id=Node-ID"},
            {"Industy Group not defined", "Industy Group=Industry Group"},
            {"<b>Warning: The manufacturer code x", "manufacturer code=Manufacturer Code"},
            {"MyECU instances", ""}, // part of a word
        };
        for (const auto &[message, expected] : rows) {
            m_form->clearLogging();
            m_form->appendLogging(QLatin1String(message));
            QCOMPARE(shownLinks().join(u'|'), QLatin1String(expected));
        }
    }

    void lineOfTheCheck()
    {
        const QString heading = u"<strong>____ Checking line %1 ____</strong>"_s;
        const QString message = u"Error: Object 0x1018: x"_s;
        run({message});
        m_form->appendHtml(heading.arg(0));
        append({message});
        m_form->appendHtml(heading.arg(12));
        append(
            {message, u"Error: other"_s, u"\nCheck of model consistency finished.\n"_s, message});
        QCOMPARE(lines(), (QStringList{u"Check of model consistency started"_s, message,
                                       u"____ Checking line 0 ____"_s, u" Line 0 - "_s + message,
                                       u"____ Checking line 12 ____"_s, u" Line 12 - "_s + message,
                                       u"Error: other"_s, QString(),
                                       u"Check of model consistency finished."_s, message}));
        QCOMPARE(shownLinks(),
                 (QStringList{u"Object 0x1018=0 - 0x1018"_s, u"Object 0x1018=0 - 0x1018"_s,
                              u"Object 0x1018=12 - 0x1018"_s, u"Object 0x1018=0 - 0x1018"_s}));
    }

    /// What a link asks the window for.
    void signalsOfLinks()
    {
        QString heard;
        const GeneratorOutputForm *form = m_form.get();
        connect(form, &GeneratorOutputForm::gotoObject, this, [&](quint8 line, quint16 index) {
            heard += u"object %1 %2;"_s.arg(line).arg(index, 0, 16);
        });
        connect(form, &GeneratorOutputForm::goToSubobj, this, [&](int line, int index, int sub) {
            heard += u"subindex %1 %2 %3;"_s.arg(line).arg(index, 0, 16).arg(sub, 0, 16);
        });
        connect(form, &GeneratorOutputForm::searchRequest, this,
                [&](const QString &text) { heard += u"setting %1;"_s.arg(text); });
        for (const char *anchor :
             {"2 - 0x1018", "2 - 1018", "31 - 0x1018-0xff", "Industry Group", "256 - 0x1018", ""})
            m_form->on_tbLogging_anchorClicked(QUrl(QLatin1String(anchor)));
        QCOMPARE(heard,
                 u"object 2 1018;object 2 1018;subindex 31 1018 ff;setting Industry Group;"_s);
    }

    void linksByMouseAndKeyboard()
    {
        m_form->appendLogging(u"<b>Error:</b> Object 0x1018-0x03: empty"_s);
        const QString text = m_form->getLogging();
        QSignalSpy spy(m_form.get(), &GeneratorOutputForm::goToSubobj);
        QTest::mouseClick(pane()->viewport(), Qt::LeftButton, {}, placeOf(u"1018"_s));
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.constFirst().at(2).value<quint8>(), quint8(3));
        QCOMPARE(m_form->getLogging(), text); // the page itself stays
        pane()->moveCursor(QTextCursor::Start);
        pane()->setFocus();
        QTest::keyClick(pane(), Qt::Key_Tab);
        QTest::keyClick(pane(), Qt::Key_Return);
        QCOMPARE(spy.size(), 2);
    }

    void contextMenu()
    {
        append({u"Object 0x1A00-0x01: The Limit Check of it"_s, u"nothing to go to"_s});
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

    void text()
    {
        const std::pair<const char *, const char *> rows[] = {
            {"#include <stdio.h> a < b && c", "#include <stdio.h> a < b && c"},
            {"&lt;b&gt; a &amp; b", "<b> a & b"},
            {"a    b\tc", "a    b\tc"},
            {"a\nb<br>c\n", "a\nb\nc"},
            {"a</b></b><i>b", "ab"},
            {"a<img src='file:///x.png'>b", "ab"}, // a message brings no resources
            {"", ""},
        };
        for (const auto &[message, shown] : rows) {
            m_form->clearLogging();
            m_form->appendLogging(QLatin1String(message));
            QCOMPARE(lines().join(u'\n'), QLatin1String(shown));
        }
    }

    void emphasis()
    {
        m_form->appendLogging(
            u"<strong><font color='red'>Error: </font></strong>Object 0x1018: <i>a</i>b"_s);
        const auto formatAt = [&](const QString &piece) { return cursorAt(piece, 1).charFormat(); };
        QCOMPARE(formatAt(u"Error"_s).fontWeight(), int(QFont::Bold));
        // A red that can be read on this ground.
        QCOMPARE(formatAt(u"Error"_s).foreground().color(),
                 m_form->palette().color(QPalette::BrightText));
        QVERIFY(formatAt(u"Object"_s).fontWeight() != QFont::Bold);
        QVERIFY(formatAt(u"ab"_s).fontItalic());
        QVERIFY(!formatAt(u"ab"_s).isAnchor());
        QVERIFY(formatAt(u"Object"_s).isAnchor());
    }

    void times()
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

    void emptyLineBeforeAMessage()
    {
        append({u"a"_s, u"\n\nb"_s});
        QCOMPARE(lines(), (QStringList{u"a"_s, QString(), QString(), u"b"_s}));
        QVERIFY(m_form->getLogging().endsWith(u": \nb"_s));
    }

    void htmlAsItStands()
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

    void kinds()
    {
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
            QVERIFY2(OutputClass::of(QLatin1String(message)) == kind, message);
    }

    /// Counts, filters and F8 are about the last run; the text and what is copied stay whole.
    void countsAndFilters()
    {
        auto *errors = button("btnErrors");
        auto *notes = button("btnNotes");
        run({u"Error: old"_s});
        run({u"Error: a"_s, u"Hint: b"_s, u"Error: c"_s, u"done"_s});
        QCOMPARE(m_form->count(Kind::Error), 2);
        QCOMPARE(errors->text(), u"2 errors"_s);
        QCOMPARE(notes->text(), u"1 note"_s);
        QVERIFY(!button("btnWarnings")->isEnabled());

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

    void fromMessageToMessage()
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

    void clearing()
    {
        append({u"shown"_s});
        m_form->appendLogging(u"still waiting"_s);
        button("btnClear")->click();
        QTest::qWait(100);
        QCOMPARE(m_form->getLogging(), QString());
        m_form->appendLogging(u"new"_s);
        QCOMPARE(lines(), QStringList{u"new"_s});
    }

    void copying()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        append({u"Object 0x1018: <b>a</b>"_s, u"b"_s});
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

    void selectionSurvivesNewMessages()
    {
        append({u"to be marked"_s});
        pane()->selectAll();
        const QString marked = pane()->textCursor().selectedText();
        append({u"later"_s});
        QCOMPARE(pane()->textCursor().selectedText(), marked);
        pane()->moveCursor(QTextCursor::Start);
        append({u"newest"_s});
        QVERIFY(pane()->textCursor().atEnd());
    }

    /// Thousands of messages reach the text in few steps, whole and in order.
    void longRun()
    {
        constexpr int count = 5000;
        int changes = 0;
        connect(document(), &QTextDocument::contentsChanged, this, [&changes] { ++changes; });
        for (int i = 0; i < count; ++i) {
            m_form->appendLogging(u"<b>Error: </b>Object 0x%1-0x01: x"_s.arg(0x2000 + i, 4, 16));
            if (i % 10 == 0)
                QCoreApplication::processEvents();
        }
        const QString last = u"Object 0x%1-0x01: x"_s.arg(0x2000 + count - 1, 4, 16);
        QTRY_VERIFY(pane()->toPlainText().endsWith(last));
        QVERIFY2(changes < count / 10, qPrintable(QString::number(changes)));
        QCOMPARE(lines().size(), count);
        QCOMPARE(shownLinks().size(), count);
    }

    void progressDialog()
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
};

QTEST_MAIN(TestGeneratorOutputForm)
#include "tst_generatoroutputform.moc"
