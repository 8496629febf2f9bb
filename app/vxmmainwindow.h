#pragma once

#include "app/startoptions.h"
#include "generation/generatormainhandler.h"
#include "store/objectdatabase.h"

#include <QFont>
#include <QList>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include <memory>

class BaseMainForm;
class CODBImporter;
class EditController;
class GUIOutputHandler;
class GUIPostGenProgressHandler;
class GeneratorOutputForm;
class LineBox;
class ManualHandler;
class OutputHandlerBase;
class ProjectDiffDialog;
class QProgressDialog;
class QPushButton;
class UndoManager;
class newUpdateChecker;
struct PageContext;
struct PageFactory;

namespace DocumentExport {
enum class Kind : quint8;
}

namespace Ui {
class VxmMainWindow;
}

/// The main window: owns the pages, the generator driver and the flows for new, open, save,
/// close, the CAN lines and generation.
///
/// Whether the project is modified is kept nowhere but in the font of the path label: italic
/// means modified. Project and library store are shared with the caller.
class VxmMainWindow : public QMainWindow
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
    [[nodiscard]] ObjectDataBase &database() const { return *m_database; }
    [[nodiscard]] const StartOptions &options() const { return m_options; }

    /// Rebuilds the pages for a line and tells them of it, unless the signal is blocked.
    void selectLine(quint8 line, bool blockSignal = false);
    [[nodiscard]] quint8 currentLine() const { return m_line; }
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
    [[nodiscard]] bool isModified() const;
    /// Folder of the project's file; empty for a project that was never saved.
    [[nodiscard]] QString projectDirectory() const { return m_projectDirectory; }
    [[nodiscard]] QString projectBaseName() const { return m_projectBaseName; }

    // What the start sequence does to the window.
    void setNetworkToolMode() { m_networkToolMode = true; }
    void setAutoGeneration() { m_autoGeneration = true; }
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
    void updateLinesComboBox();
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

    // vxmmainwindow.cpp
    void decorate();
    void makePages();
    void restoreGeometryOfUser();
    void saveGeometryOfUser();
    void fitOntoScreen(bool hasPosition);
    [[nodiscard]] PageContext pageContext() const;
    void rebuildToolBox();
    void setCurrentPage(BaseMainForm *page);
    [[nodiscard]] bool showsPages(const QList<Page> &pages, const PageContext &context) const;
    void refreshLines();
    void updateTitle();
    void setModified(bool modified);
    void storePendingInput();
    void setBusy(bool busy);

    // vxmmainwindow_output.cpp
    void connectOutputPage();
    void updateStartPage();

    // vxmmainwindow_project.cpp
    enum class ProtocolQuestion { Ask, Skip };
    void newProject(ProtocolQuestion question);
    bool openStore(const QString &path);
    bool acceptsForeignChanges();
    void showVersionNotes(const QString &path);
    void keepVersion3Copy(const QString &path);
    bool saveStore(const QString &path);
    void leaveProjectPath();
    void takeProjectPath(const QString &path);
    void fillRecentProjects();
    /// Where file dialogs start.
    [[nodiscard]] static QString folderOfDialogs();
    void warnOfUnappliedEnergyBus();
    [[nodiscard]] bool openSavedProject(ObjectDataBase &saved, QString &error) const;
    [[nodiscard]] int countModifications(QString &readError);
    bool saveTo(const QString &path);
    bool saveLastGoodState(const QString &path);
    bool wantsLastGoodState(const QString &reason);
    [[nodiscard]] bool askToSave(int count, const QString &readError);
    void showError(const QString &text, const QString &informativeText = QString());

    // vxmmainwindow_lines.cpp
    void addLine();
    void duplicateLine();
    void deleteLine();
    void changeLineType();
    [[nodiscard]] quint8 highestLine() const;
    [[nodiscard]] QList<quint8> projectLines() const;
    bool makeLine(quint8 line, int type);
    void copyStandardObjects(quint8 line);
    /// 0 if the user does not choose one.
    [[nodiscard]] int askLineType(const QString &question);
    [[nodiscard]] QString lineLabel(quint8 line) const;
    [[nodiscard]] bool askYesNo(const QString &question, const QString &explanation = {},
                                QMessageBox::StandardButton defaultButton = QMessageBox::Yes);
    [[nodiscard]] bool mayAddLine();

    // vxmmainwindow_undo.cpp
    void makeUndo();
    void attachUndo();
    void noteSavedState();
    void updateUndoActions();
    void takeUndoStep(void (UndoManager::*step)(), bool (UndoManager::*isPossible)() const,
                      const QString &doneText, const QString &failedText);
    void showLineBeside(const QList<quint8> &formerLines);
    void projectRestored();

    // vxmmainwindow_generation.cpp
    void makeGenerator();
    void runGenerator();
    void showProgress();
    void showDictionaryPage(quint8 line, const QString &what);

    // vxmmainwindow_import.cpp
    [[nodiscard]] bool hasDictionary();
    void offerProfile(const QString &profile, const QString &label);
    void exportDocument(DocumentExport::Kind kind);

    // vxmmainwindow_help.cpp
    void makeHelp();

    // vxmmainwindow_viewer.cpp
    void showFile(const QString &path);
    void fillExampleProjects();
    void openExampleCopy(const QString &examplePath);

    std::unique_ptr<Ui::VxmMainWindow> ui;
    StartOptions m_options;
    std::shared_ptr<ObjectDataBase> m_database;
    std::shared_ptr<ObjectDataBase> m_library;
    std::unique_ptr<CODBImporter> m_libraryImporter; ///< ends before the library does
    UndoManager *m_undoManager = nullptr;            ///< child of the window
    QList<Page> m_pages;
    QPointer<BaseMainForm> m_currentPage;
    GeneratorOutputForm *m_outputForm = nullptr;
    OutputHandlerBase *m_outputHandler = nullptr; ///< child of the generator
    GeneratorMainHandler *m_generator = nullptr;  ///< child of the window
    std::shared_ptr<GUIPostGenProgressHandler> m_postGenProgress;
    QPointer<QProgressDialog> m_progress;
    ManualHandler *m_manual = nullptr;           ///< child of the window
    newUpdateChecker *m_updateChecker = nullptr; ///< child of the window
    QPointer<QPushButton> m_updateButton;        ///< as long as an update is on offer
    ProjectDiffDialog *m_projectDiff = nullptr;  ///< child of the window; made when first needed
    QList<QAction *> m_pausedActions;            ///< actions that a run has disabled
    QTimer m_refreshTimer;
    LineBox *m_lineBox = nullptr;        ///< child of the box
    EditController *m_editing = nullptr; ///< child of the window

    QString m_projectDirectory;
    QString m_projectBaseName;
    QString m_projectFilePath;
    QString m_savedState;     ///< undo state that needs no saving; empty if there is none
    QString m_correctedState; ///< undo state beside which a run has corrected the project
    int m_newProjectType = 0; ///< line type that a new project has begun with
    quint8 m_line = 0;
    int m_shownLineType = 0;

    bool m_savedHere = false; ///< the file was written by this window, not just opened
    bool m_networkToolMode = false;
    bool m_hasToolTitle = false;
    bool m_autoGeneration = false;
    bool m_busy = false;    ///< a run is going on
    bool m_loading = false; ///< a project is taking the place of another
};
