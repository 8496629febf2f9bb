#pragma once

#include "app/vxmmainwindow.h"
#include "session/projectsession.h"
#include "store/undomanager.h"
#include "tests/app/projectfixture.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
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

    void trigger(const char *action);
    QLabel *path() { return window.findChild<QLabel *>(u"lblPath"_s); }
    QComboBox *lines() { return window.findChild<QComboBox *>(u"mpSelectLine"_s); }
    /// Chooses an entry in the open list of the line box.
    void choose(int data);
    QAction *action(const char *name) { return window.findChild<QAction *>(QLatin1String(name)); }
    QString status() { return window.statusBar()->currentMessage(); }
    UndoManager &steps() { return window.session().undo(); }
    /// An edit that is an undo step at once.
    void step(const QString &nodeId);
    void edit() { store->setMiscSetting(u"edited"_s, QString::number(++edits)); }

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
    /// The `main` of a test program.
    template <class Test>
    static int run(int argc, char *argv[])
    {
        const Application application(argc, argv);
        Test test;
        return QTest::qExec(&test, argc, argv);
    }

protected:
    [[nodiscard]] QString folder() const { return m_folder->path(); }
    [[nodiscard]] QString file(const QString &name) const { return m_folder->filePath(name); }
    /// A saved project; empty if it can't be made.
    [[nodiscard]] QString project(const QString &name,
                                  const ProjectFixture::Options &options = {}) const;

private slots:
    void init();
    void cleanup();

private:
    /// The application with settings that no other program reads.
    class Application
    {
    public:
        Application(int &argc, char **argv);
        ~Application();

    private:
        std::unique_ptr<QCoreApplication> m_application;
        QTemporaryDir m_settings;
    };

    std::unique_ptr<QTemporaryDir> m_folder;
};
