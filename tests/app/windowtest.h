#pragma once

#include "app/generatoroutputform.h"
#include "app/vxmmainwindow.h"
#include "gui/guihelper.h"
#include "session/projectsession.h"
#include "store/undomanager.h"
#include "store/usersettings.h"
#include "tests/support/projectfixture.h"
#include "tests/support/rows.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// What the tests of the main window share.
namespace WindowParts {

using namespace Qt::StringLiterals;

const QString canopenEdition = u"CANopen Quillforge"_s;
const QString j1939Edition = u"J1939 Quillforge"_s;
const QString canEdition = u"CAN Quillforge"_s;
const QString energyBusEdition = u"EnergyBus Marlwright"_s;

/// One window with its stores, as the start sequence makes them.
struct Session
{
    explicit Session(const QStringList &arguments = {});

    bool open(const QString &path) { return window.openProject(path); }
    void trigger(const char *action);
    QLabel *path() { return window.findChild<QLabel *>(u"lblPath"_s); }
    QComboBox *lines() { return window.findChild<QComboBox *>(u"mpSelectLine"_s); }
    GeneratorOutputForm *output() { return window.findChild<GeneratorOutputForm *>(); }
    /// Chooses an entry in the open list of the line box.
    void choose(int data);
    QAction *action(const char *name) { return window.findChild<QAction *>(QLatin1String(name)); }
    bool enabled(const char *name) { return action(name)->isEnabled(); }
    QString status() { return window.statusBar()->currentMessage(); }
    UndoManager &steps() { return window.session().undo(); }
    QString nodeId() { return store->getGeneralSetting(u"co_node_id"_s); }
    void setNodeId(const QString &value) { store->setGeneralSetting(u"co_node_id"_s, value); }
    /// An edit that is an undo step at once.
    void step(const QString &nodeId);
    void edit() { store->setMiscSetting(u"edited"_s, QString::number(++edits)); }
    /// Shows the window as the one that has the keyboard.
    void activate();

    std::shared_ptr<ObjectDataBase> store = std::make_shared<ObjectDataBase>();
    std::shared_ptr<ObjectDataBase> library = std::make_shared<ObjectDataBase>();
    VxmMainWindow window;
    int edits = 0;
};

/// The texts of the boxes since the last call.
QStringList shownTexts();
/// Presses a button of the next protocol dialog.
void queueProtocol(const QString &buttonName);

} // namespace WindowParts

/// Base of the tests of the main window: a folder of its own, no settings, and no answer left
/// unasked for each test function.
class WindowTest : public QObject
{
    Q_OBJECT

public:
    using Maker = std::unique_ptr<WindowTest> (*)();
    /// Runs a test in an application with settings that no other program reads.
    static int run(int argc, char *argv[], Maker make);

protected:
    [[nodiscard]] QString folder() const { return m_folder->path(); }
    [[nodiscard]] QString file(const QString &name) const { return m_folder->filePath(name); }
    /// Writes a file as generators do, a new one in the old one's place.
    void write(const QString &name, const QByteArray &content) const;
    [[nodiscard]] QByteArray read(const QString &name) const;
    /// A saved project; empty if it can't be made.
    [[nodiscard]] QString project(const QString &name = QStringLiteral("device.vxmp"),
                                  const ProjectFixture::Options &options = {}) const;

private slots:
    void init();
    void cleanup() { QCOMPARE(GuiHelper::takeUnusedAnswers(), 0); }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

/// The `main` of a test program.
#define WINDOW_TEST_MAIN(Test)                                                                     \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        return WindowTest::run(                                                                    \
            argc, argv, []() -> std::unique_ptr<WindowTest> { return std::make_unique<Test>(); }); \
    }
