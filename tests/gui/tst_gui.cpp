#include "app/recentprojects.h"
#include "app/startoptions.h"
#include "gui/ansichighlighter.h"
#include "gui/basemainform.h"
#include "gui/baseobjectmask.h"
#include "gui/displaychoice.h"
#include "gui/emtytreeform.h"
#include "gui/guihelper.h"
#include "gui/lineicon.h"
#include "gui/messagebox.h"
#include "gui/tolvexbaseapplication.h"
#include "gui/tolvxappstyle.h"
#include "session/versionnotes.h"
#include "store/edition.h"
#include "store/usersettings.h"
#include "tests/support/rows.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextLayout>

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<ObjectDataBase> newStore()
{
    auto store = std::make_shared<ObjectDataBase>();
    store->createNewDataBase();
    return store;
}

double luminance(const QColor &colour)
{
    const auto channel = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(colour.redF()) + 0.7152 * channel(colour.greenF()) +
           0.0722 * channel(colour.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const auto [low, high] = std::minmax({luminance(a), luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

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

/// A letter for the kind of token at each place of the text, lines joined by "|".
QString tokensOf(const QString &code)
{
    QTextDocument document(code);
    AnsiCHighlighter highlighter(&document);
    highlighter.rehighlight();
    const QString letters = u"ktpsnc"_s;
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QString line(block.length() - 1, u'.');
        for (const QTextLayout::FormatRange &range : block.layout()->formats()) {
            for (int kind = 0; kind < letters.size(); ++kind) {
                if (range.format == highlighter.format(AnsiCHighlighter::Token(kind)))
                    line.replace(range.start, range.length, QString(range.length, letters[kind]));
            }
        }
        lines << line;
    }
    return lines.join(u'|');
}

StartOptions parse(const char *line)
{
    return StartOptions::parse(QStringList{u"program"_s} + words(line));
}

} // namespace

class TestAppSupport : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        GuiHelper::takeShownBoxes();
        QCOMPARE(GuiHelper::takeUnusedAnswers(), 0);
    }

    void overwritingIsConfirmed()
    {
        const auto store = newStore();
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
        const auto store = newStore();
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

    /// Like changes put the delivery off and are heard once, others keep their order.
    void runsOfLikeChangesAreHeardOnce()
    {
        const auto store = newStore();
        WritingForm form;
        form.heard << 0; // it has nothing to answer
        QVERIFY(!form.setDatabase(nullptr));
        QVERIFY(form.setDatabase(store));
        QElapsedTimer sinceFirst;
        sinceFirst.start();
        while (sinceFirst.elapsed() < 150) {
            store->addIndex(0, 0x1000, {});
            QCoreApplication::processEvents();
        }
        QCOMPARE(form.heard.size(), 1);
        QTRY_COMPARE(form.heard.size(), 2);
        for (const quint16 index : {0x3000, 0x2000, 0x3000, 0x2000})
            emit store->updateNotify({.kind = ObjectDataBase::IndexAdded, .index = index});
        QTRY_COMPARE(form.heard.mid(2), (QList<quint16>{0x3000, 0x2000, 0x3000, 0x2000}));
    }

    void optionsAreWholeArguments()
    {
        const StartOptions none = parse("");
        QVERIFY(!none.project && !none.importFile && !none.hidden && !none.generate);
        QCOMPARE(none.pgnMode, u"keep"_s);

        const StartOptions all =
            parse("a.vxmp -g -dbmod m.txt -i x.csv -i y.csv -tsk -o new -HIDDEN -sx -j");
        QCOMPARE(all.project, u"a.vxmp"_s);
        QVERIFY(all.generate && all.networkTool && all.skipVersionNotes);
        QVERIFY(!all.hidden && !all.save); // another case, a longer word
        QCOMPARE(all.importFile, u"x.csv"_s);
        QCOMPARE(all.modifierFile, u"m.txt"_s);
        QCOMPARE(all.pgnMode, u"new"_s);
        QCOMPARE(all.pgnProject, QString()); // given, without a value
        QVERIFY(!all.importHandlerFile);
    }

    void firstArgument()
    {
        for (const char *line : {"a.vxmp -g", "-g a.vxmp", "a.vxmp -j1939"})
            QVERIFY2(parse(line).project == words(line).first(), line);
        for (const char *line : {"", "-j1939 a.vxmp", "--importfile a.ini", "my--project.vxmp"})
            QVERIFY2(!parse(line).project.has_value(), line);
    }

    void offscreenOnlyWhereNothingElseWorks()
    {
        const auto wants = [](const char *line, bool needsDisplay, bool hasDisplay, bool named) {
            return DisplayChoice::wantsOffscreen({words(line), needsDisplay, hasDisplay, named});
        };
        QVERIFY(wants("a.vxmp -hidden", true, false, false));
        QVERIFY(!wants("a.vxmp -hidden", true, true, false));
        QVERIFY(!wants("a.vxmp", true, false, false));
        QVERIFY(!wants("a.vxmp -hidden", false, false, false)); // another system
        QVERIFY(!wants("a.vxmp -hidden", true, false, true));   // the variable
        QVERIFY(!wants("-hidden -platform vnc", true, false, false));
        QVERIFY(!wants("-hidden --platform=vnc", true, false, false));
    }

    void boxesNobodySeesTakeTheirDefault()
    {
        QVERIFY(!GuiHelper::isAttended());
        const GuiHelper::Box box{.title = u"t"_s,
                                 .text = u"text"_s,
                                 .buttons =
                                     QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                 .icon = QMessageBox::Question,
                                 .defaultButton = QMessageBox::Save};
        QCOMPARE(GuiHelper::showMessageBox(nullptr, box), int(QMessageBox::Save));
        QCOMPARE(GuiHelper::showMessageBox(nullptr, u"t"_s, u"no default"_s, QString(),
                                           QMessageBox::Yes | QMessageBox::No),
                 int(QMessageBox::No));
        QVERIFY(GuiHelper::saveFileName(nullptr, u"Save"_s, QString(), u"A (*.a)"_s).isEmpty());
        QDialog dialog;
        QCOMPARE(GuiHelper::execDialog(dialog), int(QDialog::Rejected));

        GuiHelper::queueAnswer(QMessageBox::Discard);
        QCOMPARE(GuiHelper::showMessageBox(nullptr, box), int(QMessageBox::Discard));
        QCOMPARE(GuiHelper::takeShownBoxes().size(), 3);
    }

    void savedNamesGetASuffixThatOpensAgain()
    {
        for (const auto &[given, expected] : {std::pair{u"/x/a"_s, u"/x/a.vxmp"_s},
                                              {u"/x/a.VXMT"_s, u"/x/a.VXMT"_s},
                                              {u"/x/a.v2"_s, u"/x/a.v2.vxmp"_s},
                                              {QString(), QString()}}) {
            GuiHelper::queueFileName(given);
            QCOMPARE(
                GuiHelper::saveFileName(nullptr, u"Save"_s, QString(), u"P (*.vxmp);;T (*.vxmt)"_s),
                expected);
        }
    }

    void eleventhRecentProjectTakesTheOldestPlace()
    {
        for (int i = 0; i < RecentProjects::capacity; ++i)
            RecentProjects::add(u"/p/%1.vxmp"_s.arg(i), 1000 + i);
        RecentProjects::add(u"/p/0.vxmp"_s, 2000); // now 1 is the oldest
        RecentProjects::add(u"/p/new.vxmp"_s, 3000);

        QStringList paths;
        for (const RecentProjects::Entry &entry : RecentProjects::entries())
            paths << entry.path;
        QCOMPARE(paths.size(), RecentProjects::capacity);
        QCOMPARE(paths.mid(0, 3), (QStringList{u"/p/new.vxmp"_s, u"/p/0.vxmp"_s, u"/p/9.vxmp"_s}));
        QVERIFY(!paths.contains(u"/p/1.vxmp"_s));
        QVERIFY(
            UserSettings().fileName().contains(qApp->property("AppNameWithVersion").toString()));
    }

    void versionNotesFitTheVersion()
    {
        const auto memory = u"the file co_memcpy.c to"_s;
        const auto both = u"the file co_memcpy.c and co_mapping.c to"_s;
        const std::tuple<QString, QString, QString> rows[] = {
            {"3.6.2", "co_common.c and co_memcpy.c", "co_common.c, co_memcpy.c and co_mapping.c"},
            {"3.7.0", memory, both},
            {"3.8", memory, both},
            {"3.9.1", "", ""},
        };
        for (const auto &[version, canopen, others] : rows) {
            const int minor = VersionNotes::parse(version).minor;
            const QString forCANopen = VersionNotes::missingStackFiles(minor, true);
            QCOMPARE(forCANopen.isEmpty(), canopen.isEmpty());
            QVERIFY(forCANopen.contains(canopen));
            QVERIFY(VersionNotes::missingStackFiles(minor, false).contains(others));
        }
    }

    void tokens()
    {
        const std::pair<QString, QString> rows[] = {
            {"const UNSIGNED8 x = 0x1Fu;", "kkkkk.ttttttttt.....nnnnn."},
            {"intern voids UNSIGNED sizeofx", "............................."},
            {"1.5e-3f .5 a-1 x1 1-2", "nnnnnnn.nn...n....n.n"},
            {"\"/* \\\" //\" 1 '\"' 2", "ssssssssss.n.sss.n"},
            {"1 /* 2\n\"3\n*/ 4", "n.cccc|cc|cc.n"},
            {"// a \\\nint\nint", "cccccc|ccc|ttt"},
            {"  # define A 1 /* x */\nint", "..pppppppp...n.ccccccc|ttt"},
            {"#if defined(A) && \\\n  defined(B)\ndefined",
             "ppp.ppppppp........|..ppppppp...|......."},
            {"#include <a.h>\nif (a < b)", "pppppppp.sssss|kk........"},
            {"a # b", "....."},
            {"\"a\\\nb\" 1", "sss|ss.n"},
            {"\"a\n1", "ss|n"},
            {"#if /*\n*/ defined\ndefined", "ppp.cc|cc.ppppppp|......."},
        };
        for (const auto &[code, expected] : rows)
            QCOMPARE(tokensOf(code), expected);
    }

    void textIsReadableInBothSchemes_data()
    {
        using enum TolvxAppStyle::Scheme;
        addRows<TolvxAppStyle::Scheme>({{"light", Light}, {"dark", Dark}});
    }

    void textIsReadableInBothSchemes()
    {
        const auto [scheme] = row<TolvxAppStyle::Scheme>();
        const QPalette palette = TolvxAppStyle::palette(scheme);
        using Role = QPalette::ColorRole;
        for (const auto &[text, ground] :
             {std::pair<Role, Role>{QPalette::WindowText, QPalette::Window},
              {QPalette::Text, QPalette::Base},
              {QPalette::Text, QPalette::AlternateBase},
              {QPalette::ButtonText, QPalette::Button},
              {QPalette::HighlightedText, QPalette::Highlight},
              {QPalette::ToolTipText, QPalette::ToolTipBase},
              {QPalette::PlaceholderText, QPalette::Base},
              {QPalette::Link, QPalette::Base}}) {
            const double ratio = contrast(palette.color(text), palette.color(ground));
            QVERIFY2(ratio >= 4.5, qPrintable(u"%1 on %2: %3"_s.arg(text).arg(ground).arg(ratio)));
        }
        QTextDocument document;
        AnsiCHighlighter highlighter(&document);
        highlighter.setPalette(palette);
        for (int kind = 0; kind < 6; ++kind) {
            const QColor text =
                highlighter.format(AnsiCHighlighter::Token(kind)).foreground().color();
            QVERIFY2(contrast(text, palette.color(QPalette::Base)) >= 4.5,
                     qPrintable(QString::number(kind)));
        }
    }

    void controlsStandOut_data() { textIsReadableInBothSchemes_data(); }

    void controlsStandOut()
    {
        const auto [kind] = row<TolvxAppStyle::Scheme>();
        TolvxAppStyle style;
        const auto shown = [&](QWidget &widget, QSize size) {
            widget.setStyle(&style);
            widget.setPalette(TolvxAppStyle::palette(kind));
            widget.resize(size);
            return widget.grab().toImage();
        };
        QScrollBar bar(Qt::Vertical);
        bar.setRange(0, 100);
        bar.setPageStep(10);
        const QImage scrolled = shown(bar, QSize(16, 300));
        QVERIFY(scrolled.pixelColor(8, 24).lightness() < scrolled.pixelColor(8, 200).lightness());
        QLineEdit field;
        const QImage line = shown(field, QSize(100, 26));
        const double least = kind == TolvxAppStyle::Scheme::Dark ? 3 : 1.8;
        QVERIFY(contrast(line.pixelColor(50, 0), line.pixelColor(50, 5)) >= least);
    }

    void boxesKeepPathsWhole()
    {
        const auto length = [](const QString &line) { return int(line.size()); };
        const std::pair<QString, QString> rows[] = {
            {"Cannot open /some/folder/file.vxmp.", "Cannot open\n/some/folder/file.vxmp."},
            {"No C:\\my new\\long device.c here at all, so.",
             "No\nC:\\my new\\long device.c\nhere at all, so."},
            {"From /a/b c/d to ~/e\n\nagain", "From /a/b c/d to\n~/e\n\nagain"},
            {"Neither this and/or that, both\nCANopen/J1939",
             "Neither this and/or that, both\nCANopen/J1939"},
        };
        for (const auto &[text, shown] : rows)
            QCOMPARE(MessageBox::wrapped(text, 17, length), shown);
    }

    void boxesAreWideEnough()
    {
        MessageBox box;
        box.setTexts(u"Short."_s, {});
        box.show();
        QVERIFY(box.width() >= MessageBox::leastWidth);
        MessageBox wide;
        const QString path = u"/a-folder"_s.repeated(8);
        wide.setTexts(u"Cannot read "_s + path, path);
        wide.show();
        for (const QLabel *label : wide.findChildren<QLabel *>()) {
            if (!label->text().isEmpty()) {
                QVERIFY(label->width() >= label->fontMetrics().horizontalAdvance(path));
            }
        }
    }

    void iconsFollowThePalette()
    {
        QVERIFY(LineIcon::icon(u"none of them"_s).isNull());
        for (const auto scheme : {TolvxAppStyle::Scheme::Light, TolvxAppStyle::Scheme::Dark}) {
            QApplication::setPalette(TolvxAppStyle::palette(scheme));
            const QColor expected = QApplication::palette().color(QPalette::ButtonText);
            for (const QString &name : LineIcon::names()) {
                const QImage image = LineIcon::icon(name).pixmap(48, 48).toImage();
                int drawn = 0;
                for (int y = 0; y < image.height(); ++y) {
                    for (int x = 0; x < image.width(); ++x)
                        drawn += image.pixelColor(x, y) == expected;
                }
                QVERIFY2(drawn > 20, qPrintable(name));
            }
        }
    }
};

int main(int argc, char *argv[])
{
    TolvexBaseApplication application(argc, argv, u"CANopen Quillforge"_s, u"4.3.3"_s);
    application.setOrganizationName(u"tolvex"_s);
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    TestAppSupport test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_gui.moc"
