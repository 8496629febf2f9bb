#include "app/vxmmainwindow.h"

#include "app/exampleprojects.h"
#include "gui/fileviewerdialog.h"
#include "gui/guihelper.h"
#include "store/usersettings.h"
#include "ui_vxmmainwindow.h"

#include <QDir>
#include <QFileInfo>

#include <array>

namespace {

/// Outputs that the viewer is offered for, in the order of the menu.
constexpr std::array viewedFiles{
    "gen_objdict.c",     "gen_define.h", "gen_indication.h", "gen_pgn.c",
    "gen_extern_decl.h", "gen_srdo.c",   "gen_mp.c",         "gen_vobjdict.c",
    "gen_indices.h",     "gen_sdg.c",    "gen_rawcan.c",     "rawcan_doc.txt",
};

/// An ampersand in a name is none of a menu's mnemonics.
QString menuText(QString text)
{
    return text.replace(u'&', QStringLiteral("&&"));
}

void addHint(QMenu &menu, const QString &text)
{
    menu.addAction(text)->setEnabled(false);
}

} // namespace

// --- Generated files ----------------------------------------------------------------------------

/// Which files there are may change with every run, so the menu is made when it opens.
void VxmMainWindow::createFileViewerMenu()
{
    ui->menuFile_Viewer->clear();
    const QDir folder(m_projectDirectory);
    for (const char *name : viewedFiles) {
        const QString file = QString::fromLatin1(name);
        QAction *action = ui->menuFile_Viewer->addAction(file);
        const bool isThere = !m_projectDirectory.isEmpty() && folder.exists(file);
        action->setEnabled(isThere);
        QString tip = tr("Shows %1 as it was generated").arg(file);
        if (m_projectDirectory.isEmpty())
            tip = tr("The project has no folder yet; save it, then generate the files");
        else if (!isThere)
            tip = tr("%1 is not in the folder of the project").arg(file);
        action->setStatusTip(tip);
        action->setToolTip(tip);
        connect(action, &QAction::triggered, this,
                [this, path = folder.absoluteFilePath(file)] { showFile(path); });
    }
}

void VxmMainWindow::showFile(const QString &path)
{
    FileViewerDialog *viewer = nullptr;
    for (auto *open : findChildren<FileViewerDialog *>(Qt::FindDirectChildrenOnly)) {
        if (open->path() == path)
            viewer = open;
    }
    if (viewer == nullptr) {
        viewer = new FileViewerDialog(this);
        viewer->setAttribute(Qt::WA_DeleteOnClose);
        viewer->openFile(path);
    }
    viewer->show();
    viewer->raise();
    viewer->activateWindow();
}

// --- Example projects ---------------------------------------------------------------------------

void VxmMainWindow::fillExampleProjects()
{
    QMenu &menu = *ui->menuExample_Projects;
    menu.clear();
    for (const ExampleProjects::Example &example : ExampleProjects::shipped()) {
        QAction *action = menu.addAction(menuText(example.label));
        action->setStatusTip(tr("Opens a copy of this example in a folder that you choose"));
        connect(action, &QAction::triggered, this,
                [this, path = example.path] { openExampleCopy(path); });
    }
    menu.addSeparator();
    const QString stackPath =
        UserSettings::general(QStringLiteral("costackpath")).toString().trimmed();
    if (stackPath.isEmpty()) {
        addHint(menu, QStringLiteral("Specify path to protocol stack in settings to list example "
                                     "projects"));
        return;
    }
    const QList<ExampleProjects::Example> examples = ExampleProjects::ofStack(stackPath);
    for (const ExampleProjects::Example &example : examples) {
        QAction *action = menu.addAction(menuText(QDir::toNativeSeparators(example.label)), this,
                                         &VxmMainWindow::openRecent);
        action->setData(example.path);
        action->setStatusTip(tr("Opens this example of the protocol stack"));
    }
    if (examples.isEmpty()) {
        addHint(
            menu,
            tr("No example projects below %1").arg(menuText(QDir::toNativeSeparators(stackPath))));
    }
}

/// The example itself stays as it was installed, so that it can be opened again from the start.
void VxmMainWindow::openExampleCopy(const QString &examplePath)
{
    if (!closeCheck())
        return;
    const QFileInfo example(examplePath);
    const QString filter =
        QStringLiteral("%1 Projects (*.%2)").arg(example.suffix().toUpper(), example.suffix());
    const QString path =
        GuiHelper::saveFileName(this, tr("Copy Example Project to"),
                                QDir(folderOfDialogs()).filePath(example.fileName()), filter);
    if (path.isEmpty())
        return;
    const QString error = ExampleProjects::copyTo(examplePath, path);
    if (error.isEmpty())
        openProject(path);
    else
        showError(tr("Cannot copy the example to %1.").arg(QDir::toNativeSeparators(path)), error);
}
