#pragma once

#include "app/documentexport.h"

#include <QObject>

#include <memory>

class CODBImporter;
class ObjectDataBase;
class WindowContext;

/// What comes into a project from files, what goes out into a file of the user's choice, and the
/// library of standard objects on offer.
class ImportController : public QObject
{
    Q_OBJECT

public:
    explicit ImportController(WindowContext &context);
    ~ImportController() override;

    /// The standard objects on offer; none of them is part of a project. Shared with the caller.
    void setLibrary(const std::shared_ptr<ObjectDataBase> &library);
    /// Fills the staging line of the library with a profile database, on a thread beside the
    /// window. `progress` tells how far it is.
    void loadLibrary(const QString &profile);
    /// The same by a command of the user, who is told when it is done.
    void offerProfile(const QString &profile, const QString &label);
    /// Tells what a load has come to once it is complete.
    void handleProgress(quint8 percent);
    /// Asks for a file and takes objects of it over into the current line.
    void importFile();
    /// Writes a document of the current line to a file that the user names.
    void exportDocument(DocumentExport::Kind kind);

signals:
    void progress(quint8 percent);
    /// The standard objects in the library's staging line are complete.
    void standardObjectsReady();
    /// What an importer mended or passed over, or why it failed.
    void messageRead(const QString &text);

private:
    [[nodiscard]] bool hasDictionary();
    [[nodiscard]] QString askForDocument(DocumentExport::Kind kind);

    WindowContext &m_context;
    std::shared_ptr<ObjectDataBase> m_library;
    std::unique_ptr<CODBImporter> m_libraryImporter; ///< ends before the library does
};
