#include "app/recentprojects.h"
#include "app/startoptions.h"
#include "gui/basemainform.h"
#include "gui/displaychoice.h"
#include "gui/guihelper.h"
#include "gui/lineicon.h"
#include "gui/messagebox.h"
#include "gui/tolvexbaseapplication.h"
#include "gui/tolvxappstyle.h"
#include "session/versionnotes.h"
#include "store/edition.h"
#include "store/usersettings.h"

#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// Notes what it is told.
class RecordingForm : public BaseMainForm
{
public:
    void updateData(ObjectDataBase::ChangeSet modification) override { heard << modification; }
    void saveData() override {}
    void handleExpertMode(bool) override {}

    QList<ObjectDataBase::ChangeSet> heard;
};

ObjectDataBase::ChangeSet changeOf(quint16 index)
{
    ObjectDataBase::ChangeSet change;
    change.kind = ObjectDataBase::IndexAdded;
    change.index = index;
    return change;
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

    void optionsAreWholeArguments()
    {
        const StartOptions none = StartOptions::parse({u"program"_s});
        QVERIFY(!none.project && !none.importFile && !none.hidden && !none.generate);
        QCOMPARE(none.pgnMode, u"keep"_s);

        const StartOptions all = StartOptions::parse(
            {u"program"_s, u"a.vxmp"_s, u"-g"_s, u"-dbmod"_s, u"m.txt"_s, u"-i"_s, u"x.csv"_s,
             u"-i"_s, u"y.csv"_s, u"-tsk"_s, u"-o"_s, u"new"_s, u"-HIDDEN"_s, u"-sx"_s, u"-j"_s});
        QCOMPARE(all.project, u"a.vxmp"_s);
        QVERIFY(all.generate && all.networkTool && all.skipVersionNotes);
        QVERIFY(!all.hidden && !all.save); // another case, a longer word
        QCOMPARE(all.importFile, u"x.csv"_s);
        QCOMPARE(all.modifierFile, u"m.txt"_s);
        QCOMPARE(all.pgnMode, u"new"_s);
        QCOMPARE(all.pgnProject, QString()); // given, without a value
        QVERIFY(!all.importHandlerFile);
    }

    void firstArgument_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("isProject");
        QTest::newRow("none") << QStringList{} << false;
        QTest::newRow("file") << QStringList{u"a.vxmp"_s, u"-g"_s} << true;
        QTest::newRow("option first") << QStringList{u"-g"_s, u"a.vxmp"_s} << true;
        QTest::newRow("J1939") << QStringList{u"-j1939"_s, u"a.vxmp"_s} << false;
        QTest::newRow("two dashes") << QStringList{u"--importfile"_s, u"a.ini"_s} << false;
        QTest::newRow("two dashes in a name") << QStringList{u"my--project.vxmp"_s} << false;
        QTest::newRow("J1939 later") << QStringList{u"a.vxmp"_s, u"-j1939"_s} << true;
    }

    void firstArgument()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, isProject);
        const StartOptions options = StartOptions::parse(QStringList{u"program"_s} + arguments);
        QCOMPARE(options.project.has_value(), isProject);
        if (isProject)
            QCOMPARE(*options.project, arguments.first());
    }

    void offscreenOnlyWhereNothingElseWorks_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("needsDisplay");
        QTest::addColumn<bool>("hasDisplay");
        QTest::addColumn<bool>("named");
        QTest::addColumn<bool>("offscreen");
        const QStringList hidden{u"a.vxmp"_s, u"-hidden"_s};
        QTest::newRow("build server") << hidden << true << false << false << true;
        QTest::newRow("display") << hidden << true << true << false << false;
        QTest::newRow("not hidden") << QStringList{u"a.vxmp"_s} << true << false << false << false;
        QTest::newRow("other system") << hidden << false << false << false << false;
        QTest::newRow("variable") << hidden << true << false << true << false;
        QTest::newRow("argument") << QStringList{u"-hidden"_s, u"-platform"_s, u"vnc"_s} << true
                                  << false << false << false;
        QTest::newRow("argument in one")
            << QStringList{u"-hidden"_s, u"--platform=vnc"_s} << true << false << false << false;
    }

    void offscreenOnlyWhereNothingElseWorks()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, needsDisplay);
        QFETCH(bool, hasDisplay);
        QFETCH(bool, named);
        QTEST(DisplayChoice::wantsOffscreen({arguments, needsDisplay, hasDisplay, named}),
              "offscreen");
    }

    void boxesNobodySeesTakeTheirDefault()
    {
        QVERIFY(!GuiHelper::isAttended());
        const GuiHelper::Box box{.title = u"t"_s,
                                 .text = u"text"_s,
                                 .informativeText = {},
                                 .buttons =
                                     QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                 .icon = QMessageBox::Question,
                                 .defaultButton = QMessageBox::Save,
                                 .extraButtons = {}};
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

    void savedNamesGetASuffixThatOpensAgain_data()
    {
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << u"/x/a"_s << u"/x/a.vxmp"_s;
        QTest::newRow("known") << u"/x/a.VXMT"_s << u"/x/a.VXMT"_s;
        QTest::newRow("a dot in the name") << u"/x/a.v2"_s << u"/x/a.v2.vxmp"_s;
        QTest::newRow("cancelled") << QString() << QString();
    }

    void savedNamesGetASuffixThatOpensAgain()
    {
        QFETCH(QString, given);
        GuiHelper::queueFileName(given);
        QTEST(GuiHelper::saveFileName(nullptr, u"Save"_s, QString(), u"P (*.vxmp);;T (*.vxmt)"_s),
              "expected");
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

    void runsOfLikeChangesAreHeardOnce()
    {
        const auto store = std::make_shared<ObjectDataBase>();
        RecordingForm form;
        QVERIFY(!form.setDatabase(nullptr));
        QVERIFY(form.setDatabase(store));
        for (int i = 0; i < 1000; ++i)
            emit store->updateNotify(changeOf(0x2000));
        QCOMPARE(form.heard.size(), 0);
        QTRY_COMPARE(form.heard.size(), 1);

        form.heard.clear();
        for (int i = 0; i < 4; ++i)
            emit store->updateNotify(changeOf(i % 2 ? 0x2000 : 0x3000));
        QTRY_COMPARE(form.heard.size(), 4);
        QCOMPARE(form.heard[0].index, 0x3000);
        QCOMPARE(form.heard[3].index, 0x2000);
    }

    void versionNotesFitTheVersion_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("canopen");
        QTest::addColumn<QString>("others");
        QTest::newRow("3.6") << u"3.6.2"_s << u"co_common.c and co_memcpy.c"_s
                             << u"co_common.c, co_memcpy.c and co_mapping.c"_s;
        QTest::newRow("3.7") << u"3.7.0"_s << u"the file co_memcpy.c to"_s
                             << u"the file co_memcpy.c and co_mapping.c to"_s;
        QTest::newRow("3.8") << u"3.8"_s << u"the file co_memcpy.c to"_s
                             << u"the file co_memcpy.c and co_mapping.c to"_s;
        QTest::newRow("3.9") << u"3.9.1"_s << QString() << QString();
    }

    void versionNotesFitTheVersion()
    {
        QFETCH(QString, version);
        QFETCH(QString, canopen);
        QFETCH(QString, others);
        const int minor = VersionNotes::parse(version).minor;
        const QString forCANopen = VersionNotes::missingStackFiles(minor, true);
        const QString forOthers = VersionNotes::missingStackFiles(minor, false);
        QCOMPARE(forCANopen.isEmpty(), canopen.isEmpty());
        QVERIFY(forCANopen.contains(canopen));
        QVERIFY(forOthers.contains(others));
    }

    void textIsReadableInBothSchemes_data()
    {
        QTest::addColumn<int>("scheme");
        QTest::newRow("light") << int(TolvxAppStyle::Scheme::Light);
        QTest::newRow("dark") << int(TolvxAppStyle::Scheme::Dark);
    }

    void textIsReadableInBothSchemes()
    {
        QFETCH(int, scheme);
        const QPalette palette = TolvxAppStyle::palette(TolvxAppStyle::Scheme(scheme));
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
    }

    void controlsStandOut_data() { textIsReadableInBothSchemes_data(); }

    void controlsStandOut()
    {
        QFETCH(int, scheme);
        const auto kind = TolvxAppStyle::Scheme(scheme);
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

    void boxesKeepPathsWhole_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::newRow("before the path") << u"Cannot open /some/folder/file.vxmp."_s
                                         << u"Cannot open\n/some/folder/file.vxmp."_s;
        QTest::newRow("blanks in it") << u"No C:\\my new\\long device.c here at all, so."_s
                                      << u"No\nC:\\my new\\long device.c\nhere at all, so."_s;
        QTest::newRow("two") << u"From /a/b c/d to ~/e\n\nagain"_s
                             << u"From /a/b c/d to\n~/e\n\nagain"_s;
        QTest::newRow("none") << u"Neither this and/or that, both\nCANopen/J1939"_s
                              << u"Neither this and/or that, both\nCANopen/J1939"_s;
    }

    void boxesKeepPathsWhole()
    {
        QFETCH(QString, text);
        const auto length = [](const QString &line) { return int(line.size()); };
        QTEST(MessageBox::wrapped(text, 17, length), "shown");
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
