#include "tests/app/windowtest.h"

#include "gui/guihelper.h"
#include "gui/tolvexbaseapplication.h"
#include "resources/templates/projecttemplates.h"
#include "store/usersettings.h"

#include <QAction>
#include <QPushButton>
#include <QSettings>

namespace WindowParts {

Session::Session(const QStringList &arguments)
    : window(StartOptions::parse(QStringList{u"program"_s} + arguments))
{
    store->createNewDataBase();
    library->createNewDataBase();
    window.setDatabase(store);
    window.setLibraryDatabase(library);
    window.selectLine(0);
    window.updateLinesComboBox();
}

void Session::trigger(const char *action)
{
    auto *found = window.findChild<QAction *>(QLatin1String(action));
    QVERIFY2(found != nullptr, action);
    found->trigger();
}

void Session::choose(int data)
{
    lines()->setCurrentIndex(lines()->findData(data));
    emit lines()->activated(lines()->currentIndex());
}

void Session::step(const QString &nodeId)
{
    store->setGeneralSetting(u"co_node_id"_s, nodeId);
    steps().handleDebounceTimeout();
}

QStringList shownTexts()
{
    QStringList texts;
    for (const GuiHelper::Box &box : GuiHelper::takeShownBoxes())
        texts << box.text;
    return texts;
}

void queueProtocol(const QString &buttonName)
{
    GuiHelper::queueDialog([buttonName](QDialog &dialog) {
        auto *button = dialog.findChild<QPushButton *>(buttonName);
        if (button == nullptr)
            return int(QDialog::Rejected);
        button->click();
        return int(QDialog::Accepted);
    });
}

} // namespace WindowParts

using namespace WindowParts;

QString WindowTest::project(const QString &name, const ProjectFixture::Options &options) const
{
    const QString path = file(name);
    return ProjectFixture::save(path, options) ? path : QString();
}

void WindowTest::init()
{
    QCoreApplication::setApplicationName(canopenEdition);
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    UserSettings().clear();
    GuiHelper::takeShownBoxes();
}

void WindowTest::cleanup()
{
    QCOMPARE(GuiHelper::takeUnusedAnswers(), 0);
}

WindowTest::Application::Application(int &argc, char **argv)
    : m_application(std::make_unique<TolvexBaseApplication>(argc, argv, canopenEdition, u"4.3.3"_s))
{
    QCoreApplication::setOrganizationName(u"tolvex"_s);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
    ProjectTemplates::makeAvailable();
}

WindowTest::Application::~Application() = default;
