#include "app/startsequence.h"

#include "app/startoptions.h"
#include "app/vxmmainwindow.h"
#include "gui/displaychoice.h"
#include "gui/guihelper.h"
#include "gui/tolvexbaseapplication.h"
#include "resources/codb/standardprofiles.h"
#include "resources/templates/projecttemplates.h"
#include "store/edition.h"
#include "store/objectdatabase.h"
#include "store/usersettings.h"

#include <QFileInfo>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int settingsLayout = 3;
constexpr int dragMilliseconds = 100;
constexpr int dragPixels = 10;

void nameApplication(TolvexBaseApplication &application, const char *name)
{
    application.setApplicationName(QString::fromLatin1(name));
    application.setOrganizationName(QStringLiteral("tolvex"));
    application.setOrganizationDomain(QStringLiteral("tolvex.com"));
    application.initSettings(settingsLayout);
    QApplication::setStartDragTime(dragMilliseconds);
    QApplication::setStartDragDistance(dragPixels);
}

/// False if there is no place for its working copy.
bool prepareProjectStore(ObjectDataBase &store)
{
    if (!store.createNewDataBase())
        return false;
    store.addNode(0, ObjectDataBase::NODE_DATA_T());
    const QString key = QStringLiteral("line0type");
    if (Edition::isCANopen())
        store.setGeneralSetting(key, QStringLiteral("1"));
    else if (Edition::isJ1939())
        store.setGeneralSetting(key, QStringLiteral("2"));
    return true;
}

bool prepareLibraryStore(ObjectDataBase &store)
{
    if (!store.createNewDataBase())
        return false;
    store.addNode(0, ObjectDataBase::NODE_DATA_T());
    store.purgeStrings();
    return true;
}

/// Without working copies there is nothing to work on, not even a new project.
int tellAndEnd(const QString &reason, bool isHidden)
{
    const QString text = QStringLiteral("The program cannot start.");
    if (isHidden)
        std::fprintf(stderr, "%s %s\n", qUtf8Printable(text), qUtf8Printable(reason));
    else
        GuiHelper::showMessageBox(nullptr, GuiHelper::boxTitle(), text, reason, QMessageBox::Ok,
                                  QMessageBox::Critical);
    return EXIT_FAILURE;
}

/// What is opened when the command line names no project.
void startNormally(VxmMainWindow &window)
{
    const QString last = UserSettings::general(QStringLiteral("lastproject")).toString();
    const bool reopen = UserSettings::general(QStringLiteral("loadlastproject"), 0).toInt() == 1;
    if (reopen && QFileInfo(last).isFile())
        window.openProject(last);
    else
        window.newProject();
    window.loadLibrary(Edition::isJ1939() ? StandardProfiles::additional
                                          : StandardProfiles::communication);
    window.doThingsAfterStartup();
}

} // namespace

int runQuillforge(int argc, char *argv[], const char *applicationName)
{
    DisplayChoice::apply(argc, argv);
    UserSettings::stayOutOfMissingHome();
    // Destroyed in reverse order: the window goes first, the application object last.
    TolvexBaseApplication application(argc, argv, QString::fromLatin1(applicationName),
                                      QStringLiteral(QUILLFORGE_VERSION));
    nameApplication(application, applicationName);
    const StartOptions options = StartOptions::parse(QCoreApplication::arguments());
    // The end of a box must not end a hidden run, whose only window that box is.
    QApplication::setQuitOnLastWindowClosed(!options.hidden);

    StandardProfiles::makeAvailable();
    ProjectTemplates::makeAvailable();
    const auto project = std::make_shared<ObjectDataBase>();
    const auto library = std::make_shared<ObjectDataBase>();
    if (!prepareProjectStore(*project))
        return tellAndEnd(project->lastErrorText(), options.hidden);
    if (!prepareLibraryStore(*library))
        return tellAndEnd(library->lastErrorText(), options.hidden);

    VxmMainWindow window(options);
    window.setDatabase(project);
    window.setLibraryDatabase(library);
    window.selectLine(0);
    if (!options.hidden)
        window.show();
    if (options.project) {
        const bool opened = window.openProject(*options.project);
        window.loadLibrary(StandardProfiles::communication);
        // A batch run goes on with the store as it stands; a user has something to work on.
        const bool isBatch = options.hidden || options.generate || options.save;
        if (!opened && !isBatch) {
            window.newProjectUnasked();
            window.doThingsAfterStartup();
        }
    } else {
        startNormally(window);
    }

    qRegisterMetaType<ObjectDataBase::ChangeSet>("ObjectDataBase::ChangeSet");
    QTimer::singleShot(0, &window, &VxmMainWindow::doThingsAfter1Second);
    QObject::connect(&window, &VxmMainWindow::sigInstrumentFunctions, &application,
                     &TolvexBaseApplication::onInstrumentFunctionChanged);
    return QCoreApplication::exec();
}
