#pragma once

#include "canopen/linetype.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class ObjectDataBase;
class UndoManager;

/// The project that is open: its file, its undo steps, what of it is saved, and what new, open,
/// save and close come down to.
///
/// Asks nobody and shows nothing; who has a user does that with what is returned. Errors are
/// sentences, an empty one means that it was done. A failed open or save leaves the project as it
/// was. Lives on the main thread, as its store does, which it shares with others.
class ProjectSession : public QObject
{
    Q_OBJECT

public:
    explicit ProjectSession(QObject *parent = nullptr);
    ~ProjectSession() override;

    /// Steps begin anew; what the store holds counts as saved.
    void setStore(const std::shared_ptr<ObjectDataBase> &store);
    /// There is one from the first `setStore` on.
    [[nodiscard]] ObjectDataBase &store() const { return *m_store; }
    [[nodiscard]] const std::shared_ptr<ObjectDataBase> &sharedStore() const { return m_store; }
    [[nodiscard]] UndoManager &undo() const { return *m_undo; }

    /// The file that is saved to; empty for a project that was never saved.
    [[nodiscard]] QString filePath() const { return m_filePath; }
    /// The folder of that file, where generated files go; empty as well.
    [[nodiscard]] QString folder() const;
    /// The name without folder and suffix; "newproject" without a file.
    [[nodiscard]] QString baseName() const;
    /// A project is taking the place of another: what the store tells is no edit.
    [[nodiscard]] bool isLoading() const { return m_loading; }

    /// A new project from the template of the edition. An error tells why there is no template; the
    /// project is a new, empty one all the same.
    [[nodiscard]] QString startNew(int lineType = LineType::Unknown);

    /// Whether the name is that of a project, database or text.
    [[nodiscard]] static bool isProject(const QString &path);
    /// Opens a file (`.vxmp`, `.vxmt`) by its absolute path, as it is. To be followed by
    /// `bringUpToDate`, or by `startNew` if it is not wanted after all.
    [[nodiscard]] QString open(const QString &path);
    /// What the user wants to know about a project of an older version.
    enum class Notes {
        All,
        SkipStackFiles, ///< nothing of files that the stack needs
        None            ///< neither that, nor a copy of the untouched project
    };
    /// Brings the project that was opened into the form of this version. Gives the notes for the
    /// user, in order.
    [[nodiscard]] QStringList bringUpToDate(Notes notes);

    /// Saves to the project's own file, or to another one, which is its own from then on; steps
    /// begin anew there.
    [[nodiscard]] QString save(const QString &path = QString());
    /// After a save that failed because the working copy is broken, which is never saved: whether
    /// the project can be saved as the last undo step kept it, and when that was.
    [[nodiscard]] bool hasLastGoodState() const;
    [[nodiscard]] QDateTime lastGoodTime() const;
    /// Goes back to that state and saves it, as `save` does.
    [[nodiscard]] QString saveLastGoodState(const QString &path);

    /// The step at which the store stands now needs no saving.
    [[nodiscard]] bool isAtSavedState() const;
    /// A run has changed the project beside all steps: they come back without that.
    void noteCorrection();

    /// What a project would lose if it were closed now.
    struct Unsaved
    {
        int count = 0; ///< differences; 0 if nothing would be lost
        /// Why the saved project can't be read; everything is unsaved then.
        QString readError;
        std::shared_ptr<ObjectDataBase> saved; ///< what it was compared with; never null
    };
    /// Compares the working state with the file, or a project that was never saved with what it
    /// began as. An edit that was taken back is no difference, nor is what opening corrects.
    [[nodiscard]] Unsaved findUnsaved() const;

private:
    void attach();
    void noteSave(const QString &path);
    void noteSavedState();
    [[nodiscard]] QString fillSaved(ObjectDataBase &saved) const;
    [[nodiscard]] QStringList versionNotes(Notes notes);

    std::shared_ptr<ObjectDataBase> m_store;
    UndoManager *m_undo; ///< child of this
    QString m_filePath;
    QString m_savedState;     ///< undo state that needs no saving; empty if there is none
    QString m_correctedState; ///< undo state beside which a run has corrected the project
    int m_newLineType = LineType::Unknown; ///< that a new project has begun with
    bool m_savedHere = false; ///< the file was written by this session, not just opened
    bool m_loading = false;
};
