#include "app/vxmmainwindow.h"

#include "app/exampleprojects.h"
#include "app/generatoroutputform.h"
#include "app/projectcontroller.h"
#include "app/recentprojects.h"
#include "app/startpage.h"
#include "session/projectsession.h"
#include "ui_vxmmainwindow.h"

void VxmMainWindow::connectOutputPage()
{
    const auto step = [this](bool (GeneratorOutputForm::*goTo)()) {
        return [this, goTo] {
            ui->toolBox->setCurrentWidget(m_outputForm);
            if (!(m_outputForm->*goTo)())
                showStatus(tr("There are no messages to go to."));
        };
    };
    connect(ui->actionNext_Message, &QAction::triggered, this,
            step(&GeneratorOutputForm::goToNextMessage));
    connect(ui->actionPrevious_Message, &QAction::triggered, this,
            step(&GeneratorOutputForm::goToPreviousMessage));

    const StartPage *page = &m_outputForm->startPage();
    connect(page, &StartPage::newRequested, this, &VxmMainWindow::on_actionNew_Project_triggered);
    connect(page, &StartPage::openRequested, this, &VxmMainWindow::on_actionOpen_Project_triggered);
    connect(page, &StartPage::exampleRequested, m_projects.get(),
            &ProjectController::openExampleCopy);
    connect(page, &StartPage::recentRequested, m_projects.get(), &ProjectController::replaceBy);
}

/// Offered as long as there is nothing to lose: a new project that nobody has changed.
void VxmMainWindow::updateStartPage()
{
    const bool isUntouched = m_session->filePath().isEmpty() && !isModified();
    if (isUntouched) {
        m_outputForm->startPage().setExamples(ExampleProjects::shipped());
        m_outputForm->startPage().setRecent(RecentProjects::entries());
    }
    m_outputForm->offerStart(isUntouched);
}
