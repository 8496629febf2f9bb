#include "app/projectmenus.h"

#include "app/exampleprojects.h"
#include "app/recentprojects.h"
#include "store/usersettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMenu>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("ProjectMenus", text);
}

/// An ampersand in a name is none of a menu's mnemonics.
QString menuText(const QString &path)
{
    return QDir::toNativeSeparators(path).replace(u'&', QStringLiteral("&&"));
}

void addHint(QMenu &menu, const QString &text)
{
    menu.addAction(text)->setEnabled(false);
}

void addStackExamples(QMenu &menu)
{
    const QString stackPath =
        UserSettings::general(QStringLiteral("costackpath")).toString().trimmed();
    if (stackPath.isEmpty()) {
        addHint(menu, QStringLiteral("Specify path to protocol stack in settings to list example "
                                     "projects"));
        return;
    }
    const QList<ExampleProjects::Example> examples = ExampleProjects::ofStack(stackPath);
    for (const ExampleProjects::Example &example : examples) {
        QAction *action = menu.addAction(menuText(example.label));
        action->setData(example.path);
        action->setStatusTip(tr("Opens this example of the protocol stack"));
    }
    if (examples.isEmpty())
        addHint(menu, tr("No example projects below %1").arg(menuText(stackPath)));
}

} // namespace

void ProjectMenus::fillRecent(QMenu &menu)
{
    menu.clear();
    for (const RecentProjects::Entry &entry : RecentProjects::entries()) {
        QAction *action = menu.addAction(menuText(entry.path));
        action->setData(entry.path);
        action->setEnabled(QFileInfo::exists(entry.path));
    }
    if (menu.isEmpty())
        addHint(menu, QStringLiteral("No projects yet"));
}

void ProjectMenus::fillExamples(QMenu &menu, const Open &openCopy)
{
    menu.clear();
    for (const ExampleProjects::Example &example : ExampleProjects::shipped()) {
        QAction *action = menu.addAction(menuText(example.label));
        action->setStatusTip(tr("Opens a copy of this example in a folder that you choose"));
        QObject::connect(action, &QAction::triggered, &menu,
                         [openCopy, path = example.path] { openCopy(path); });
    }
    menu.addSeparator();
    addStackExamples(menu);
}
