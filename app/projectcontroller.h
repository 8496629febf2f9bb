#pragma once

#include "session/projectsession.h"

#include <QObject>

class ProjectDiffDialog;
class QMimeData;
class WindowContext;

/// New, open, save and close, with what the user is asked and told. What they come down to is for
/// the session to do.
class ProjectController : public QObject
{
    Q_OBJECT

public:
    explicit ProjectController(WindowContext &context);

    /// Opens untouched what others would be asked about: another tool has started this one.
    void setNetworkToolMode() { m_networkToolMode = true; }

    enum class ProtocolQuestion { Ask, Skip };
    /// A new project without a question about the former one. In the CAN edition the protocol is
    /// asked for, or else the edition's.
    void newProject(ProtocolQuestion question);
    /// Replaces the project without a question; on false a box has told why and the former one is
    /// still there, or a new one if that was the user's choice.
    bool openProject(const QString &path);
    /// The same behind the question about the former project.
    void replaceBy(const QString &path);
    /// Asks for a file.
    void openProject();
    /// Opens a copy of an example, which stays as it was installed.
    void openExampleCopy(const QString &examplePath);
    /// The project among what is dropped; empty if there is none.
    [[nodiscard]] static QString droppedProject(const QMimeData &data);

    void save();
    void saveAs();
    void warnOfUnappliedEnergyBus();
    /// Whether a project may be replaced now: asks about unsaved modifications, and saves them if
    /// the user wants that.
    [[nodiscard]] bool closeCheck();

    /// Where file dialogs start.
    [[nodiscard]] static QString folderOfDialogs();

signals:
    /// Another project, or the project has another file now.
    void fileChanged();
    void opened();

private:
    [[nodiscard]] bool acceptsForeignChanges();
    [[nodiscard]] ProjectSession::Notes wantedNotes() const;
    void takeFile();
    bool saveTo(const QString &path);
    [[nodiscard]] bool savesLastGoodState(const QString &path, const QString &reason);
    [[nodiscard]] bool wantsLastGoodState(const QString &reason);
    [[nodiscard]] bool askToSave(const ProjectSession::Unsaved &unsaved);
    void showDetails(const ProjectSession::Unsaved &unsaved);
    [[nodiscard]] ProjectSession &session() const;

    WindowContext &m_context;
    ProjectDiffDialog *m_projectDiff = nullptr; ///< child of the window; made when first needed
    bool m_networkToolMode = false;
};
