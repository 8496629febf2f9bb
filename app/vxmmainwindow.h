#pragma once

#include "app/startoptions.h"
#include "app/windowcontext.h"
#include "generation/generatormainhandler.h"
#include "gui/formcontext.h"
#include "store/objectdatabase.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <memory>

class BaseMainForm;
class EditController;
class GenerationController;
class GeneratorOutputForm;
class HelpController;
class ImportController;
class LineBox;
class LineController;
class ObjectDictionaryForm;
class ProjectController;
class UndoController;
struct PageContext;
struct PageFactory;

namespace Ui {
class VxmMainWindow;
}

/// The main window: owns the pages of the current line and what is common to all flows. The flows
/// themselves are those of its controllers, to which its slots forward.
///
/// Whether the project is modified is kept nowhere but in the font of the path label: italic
/// means modified. Project and library store are shared with the caller.
class VxmMainWindow : public QMainWindow, public WindowContext, public FormNavigator
{
    Q_OBJECT

public:
    explicit VxmMainWindow(const StartOptions &options, QWidget *parent = nullptr);
    ~VxmMainWindow() override;

    /// The project that all pages and the generators see.
    void setDatabase(const std::shared_ptr<ObjectDataBase> &database);
    /// The standard objects on offer; none of them is part of a project.
    void setLibraryDatabase(const std::shared_ptr<ObjectDataBase> &database);
    /// Fills the staging line of the library with a profile database, on a thread beside the
    /// window. `importPogress` hears how far it is.
    void loadLibrary(const QString &profile);
    [[nodiscard]] ObjectDataBase &database() const;

    // Also what the controllers know of the window.
    [[nodiscard]] QWidget *widget() override { return this; }
    [[nodiscard]] ProjectSession &session() const override { return *m_session; }
    [[nodiscard]] const StartOptions &options() const override { return m_options; }
    [[nodiscard]] quint8 currentLine() const override { return m_line; }
    // What forms ask for.
    void gotoIndex(quint8 line, quint16 index) override { handleGotoIndex(line, index); }
    void gotoSubIndex(quint8 line, quint16 index, quint8 subindex) override
    {
        handleGoToSubindex(line, index, subindex);
    }
    void tell(const QString &text) override { showStatus(text); }

    void selectLine(quint8 line, bool blockSignal = false) override;
    void storePendingInput() override;
    [[nodiscard]] bool isBusy() const override { return m_busy; }
    void setBusy(bool busy) override;
    [[nodiscard]] bool isModified() const override;
    void setModified(bool modified) override;
    void showStatus(const QString &text, int milliseconds = messageMilliseconds) override;
    void appendOutput(const QString &text) override;

    /// Opens a project file; on false a box has told why and the former project is still there.
    /// A project that is open is replaced without a question.
    bool openProject(const QString &path);
    /// A new project from the edition's template, without a question about the former one.
    void newProject();
    /// The same without a question about the protocol.
    void newProjectUnasked();
    /// Whether a project may be replaced now: asks about unsaved modifications, and saves them if
    /// the user wants that.
    [[nodiscard]] bool closeCheck();
    /// Folder of the project's file; empty for a project that was never saved.
    [[nodiscard]] QString projectDirectory() const;
    [[nodiscard]] QString projectBaseName() const;

    // What the start sequence does to the window.
    void setNetworkToolMode();
    void setAutoGeneration();
    /// Does nothing for an action that this window doesn't have.
    void setActionEnabled(const char *objectName, bool enabled);
    void setActionVisible(const char *objectName, bool visible);
    /// A title that stays whatever project is open.
    void setToolTitle(const QString &title);
    /// Moves the window to where it can be seen if its position lies on no screen.
    void bringOntoScreen();

signals:
    /// Forms are to store pending input.
    void saveRequest();
    void lineChanged(quint8 line);
    void expertModeChanged(bool expertModeActive);
    void sigInstrumentFunctions(bool enable);
    /// The standard objects in the library's staging line are complete.
    void standardObjectsReady();

public slots:
    void on_actionNew_Project_triggered();
    void on_actionOpen_Project_triggered();
    void on_actionSave_Project_triggered();
    void on_actionSave_Project_as_triggered();
    void on_actionClose_Project_triggered();
    void on_actionGenerate_Output_triggered();
    void on_actionQuit_triggered();
    void on_action_Import_File_triggered();
    void on_actionLoad_CiA_301_triggered();
    void on_actionLoad_CiA_302_triggered();
    void on_action_EDS_File_triggered();
    void on_action_XDD_File_triggered();
    void on_action_HTML_Documenation_triggered();
    void on_action_CSV_File_triggered();
    void on_action_Text_Documentation_triggered();
    void on_actionUndo_triggered();
    void on_actionRedo_triggered();
    void on_actionCopy_triggered();
    void on_actionCut_triggered();
    void on_actionPaste_triggered();
    void on_actionDelete_triggered();
    void on_actionDuplicate_triggered();
    void on_action_Hel_p_triggered();
    void on_action_Manual_triggered();
    void on_actionCheck_for_Updates_triggered();
    void on_actionChangelog_triggered();
    void on_action_About_triggered();
    void on_actionAbout_Qt_triggered();

    /// The end of a start that no project was named for.
    void doThingsAfterStartup();
    /// The late part of the start, run once by the event loop.
    void doThingsAfter1Second();
    void finishOpenProcedure();
    void handleUndoLimitReached();
    /// Opens the project that the sending action of the menu names.
    void openRecent();
    /// A page was activated; the one before it stores its input.
    void newCurrentTabActivated(int index);
    void projectModified(ObjectDataBase::ChangeSet modification);
    /// An entry of the line box was chosen: a line, or a flow on the lines.
    void handleLineChanged(int value);
    void updateLinesComboBox() override;
    void importPogress(quint8 percent);
    void handleCheckError(QString errorString);
    /// How much of a generation is done.
    void generatorProgress(quint8 percent);
    void generatorFinished(GeneratorMainHandler::GeneratorResult result);
    void projectCorrectionDone();
    /// Show where a link of the output pane leads to.
    void handleGotoIndex(quint8 line, quint16 index);
    void handleGoToSubindex(quint8 line, quint16 index, quint8 subindex);
    void searchRequestSlot(const QString &searchString);
    /// Makes the entries of the menu "File Viewer" for the files that there are now.
    void createFileViewerMenu();
    /// The answer of the check for updates.
    void newVersion(QString newVersionString, QString productCode, bool newerVersion);

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    struct Page
    {
        const PageFactory *factory = nullptr;
        BaseMainForm *form = nullptr;
    };

    void decorate();
    void makePages();
    void makeControllers();
    void connectControllers();
    void connectMenus();
    void makeExpertMode();
    [[nodiscard]] PageContext pageContext() const;
    void rebuildToolBox();
    void fillToolBox(const QList<Page> &pages, const PageContext &context);
    [[nodiscard]] bool showsPages(const QList<Page> &pages, const PageContext &context) const;
    void setCurrentPage(BaseMainForm *page);
    void reloadPages();
    bool showDictionaryPage(quint8 line, const QString &what);
    void connectDictionaryPage();
    void refreshLines();
    void showFileOfProject();
    void connectOutputPage();
    void updateStartPage();
    void updateTitle();
    void connectOpeners(QMenu &menu);

    std::unique_ptr<Ui::VxmMainWindow> ui;
    StartOptions m_options;
    QList<Page> m_pages;
    QPointer<BaseMainForm> m_currentPage;
    GeneratorOutputForm *m_outputForm = nullptr;
    ObjectDictionaryForm *m_dictionaryForm = nullptr;
    LineBox *m_lineBox = nullptr;     ///< child of the box
    QList<QAction *> m_pausedActions; ///< actions that a run has disabled
    QTimer m_refreshTimer;
    quint8 m_line = 0;
    int m_shownLineType = 0;
    bool m_hasToolTitle = false;
    bool m_busy = false; ///< a run is going on

    // They end before the pages and actions that they speak of, and the session behind them.
    std::unique_ptr<ProjectSession> m_session;
    std::unique_ptr<EditController> m_editing;
    std::unique_ptr<LineController> m_lines;
    std::unique_ptr<UndoController> m_undo;
    std::unique_ptr<ProjectController> m_projects;
    std::unique_ptr<GenerationController> m_generation;
    std::unique_ptr<ImportController> m_imports;
    std::unique_ptr<HelpController> m_help;
};
