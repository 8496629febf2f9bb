#include "tests/app/windowtest.h"

#include "gui/tolvexbaseapplication.h"
#include "resources/codb/standardprofiles.h"
#include "resources/templates/projecttemplates.h"

#include <QPushButton>
#include <QSaveFile>
#include <QSettings>

using namespace WindowParts;

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
    QVERIFY2(this->action(action) != nullptr, action);
    this->action(action)->trigger();
}

void Session::choose(int data)
{
    lines()->setCurrentIndex(lines()->findData(data));
    emit lines()->activated(lines()->currentIndex());
}

void Session::step(const QString &nodeId)
{
    setNodeId(nodeId);
    steps().handleDebounceTimeout();
}

void Session::activate()
{
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
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

int WindowTest::run(int argc, char *argv[], Maker make)
{
    TolvexBaseApplication application(argc, argv, canopenEdition, u"4.3.3"_s);
    QCoreApplication::setOrganizationName(u"tolvex"_s);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    ProjectTemplates::makeAvailable();
    StandardProfiles::makeAvailable();
    return QTest::qExec(make().get(), argc, argv);
}

QString WindowTest::project(const QString &name, const ProjectFixture::Options &options) const
{
    return ProjectFixture::save(file(name), options) ? file(name) : QString();
}

void WindowTest::write(const QString &name, const QByteArray &content) const
{
    QSaveFile saved(file(name));
    QVERIFY(saved.open(QIODevice::WriteOnly) && saved.write(content) == content.size());
    QVERIFY(saved.commit());
}

QByteArray WindowTest::read(const QString &name) const
{
    QFile saved(file(name));
    return saved.open(QIODevice::ReadOnly) ? saved.readAll() : QByteArray();
}

void WindowTest::init()
{
    QCoreApplication::setApplicationName(canopenEdition);
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    UserSettings().clear();
    GuiHelper::takeShownBoxes();
}
