#include "app/importcontroller.h"

#include "app/waitcursor.h"
#include "app/windowcontext.h"
#include "canopen/linetype.h"
#include "canopen/objectranges.h"
#include "gui/guihelper.h"
#include "import/codbimporter.h"
#include "importgui/fileimportdialog.h"
#include "session/projectlines.h"
#include "session/projectsession.h"
#include "store/projectsettings.h"
#include "store/storeguards.h"
#include "store/undomanager.h"
#include "store/usersettings.h"

#include <QDir>
#include <QPointer>

namespace {

constexpr quint8 complete = 100;

} // namespace

ImportController::ImportController(WindowContext &context) : m_context(context) {}

ImportController::~ImportController() = default;

void ImportController::setLibrary(const std::shared_ptr<ObjectDataBase> &library)
{
    m_libraryImporter.reset();
    m_library = library;
}

/// Whether the current line has objects; a box tells if it hasn't.
bool ImportController::hasDictionary()
{
    ObjectDataBase &store = m_context.session().store();
    const LineType &type = LineType::of(store.getLineType(m_context.currentLine()));
    const SettingKey server = SettingKey::j1939(QStringLiteral("cia510serversupport"));
    if (type.hasCANopen || (type.hasJ1939 && ProjectSettings(store).decimal(server) == 1))
        return true;
    m_context.showError(
        tr("Line %1 has no CANopen object dictionary.").arg(m_context.currentLine()));
    return false;
}

void ImportController::importFile()
{
    if (m_context.isBusy() || m_library == nullptr || !hasDictionary())
        return;
    m_context.storePendingInput();
    // What it still reads would come between the objects of the file.
    m_libraryImporter.reset();
    ProjectSession &session = m_context.session();
    FileImportDialog dialog(session.store(), m_context.currentLine(), *m_library,
                            m_context.widget());
    connect(&dialog, &FileImportDialog::aboutToChange, &session.undo(),
            &UndoManager::handleDebounceTimeout);
    connect(&dialog, &FileImportDialog::imported, this, [this](const QString &text) {
        m_context.showStatus(text);
        m_context.appendOutput(text);
    });
    connect(&dialog, &FileImportDialog::messagesRead, this, [this](const QStringList &messages) {
        for (const QString &message : messages)
            emit messageRead(message.toHtmlEscaped());
    });
    GuiHelper::execDialog(dialog);
    emit standardObjectsReady();
}

// --- The standard objects on offer --------------------------------------------------------------

void ImportController::loadLibrary(const QString &profile)
{
    // A load that is still going on ends first.
    m_libraryImporter.reset();
    if (m_library == nullptr)
        return;
    constexpr quint8 line = ObjectDataBase::stagingLine;
    if (m_library->lineExists(line))
        m_library->deleteNode(line);
    m_library->addNode(line, ObjectDataBase::NODE_DATA_T());

    m_libraryImporter = std::make_unique<CODBImporter>();
    // What a former load has sent may still be on its way when this one has begun.
    connect(m_libraryImporter.get(), &CODBImporter::progress, this,
            [this, sender = QPointer(m_libraryImporter.get())](quint8 percent) {
                if (sender != nullptr)
                    emit progress(percent);
            });
    m_libraryImporter->setLine(line);
    m_libraryImporter->setDatabase(m_library.get());
    m_libraryImporter->setRange(ObjectRanges::communication.low, ObjectRanges::communication.high);
    m_libraryImporter->setFile(profile);
    m_libraryImporter->start();
}

void ImportController::offerProfile(const QString &profile, const QString &label)
{
    if (m_context.isBusy())
        return;
    loadLibrary(profile);
    connect(
        this, &ImportController::standardObjectsReady, this,
        [this, label] {
            if (m_libraryImporter != nullptr && m_libraryImporter->errorString().isEmpty())
                m_context.showStatus(tr("The objects of %1 are on offer.").arg(label));
        },
        Qt::SingleShotConnection);
}

void ImportController::handleProgress(quint8 percent)
{
    if (percent < complete)
        return;
    if (m_libraryImporter != nullptr && !m_libraryImporter->errorString().isEmpty())
        emit messageRead(m_libraryImporter->errorString());
    emit standardObjectsReady();
}

// --- Documents ----------------------------------------------------------------------------------

QString ImportController::askForDocument(DocumentExport::Kind kind)
{
    const ProjectSession &session = m_context.session();
    const QString folder =
        session.folder().isEmpty()
            ? UserSettings::general(QStringLiteral("projectpath"), QDir::homePath()).toString()
            : session.folder();
    const bool multiLine = ProjectLines::of(session.store()).size() > 1;
    const QString name =
        DocumentExport::fileName(kind, session.baseName(), m_context.currentLine(), multiLine);
    return GuiHelper::saveFileName(m_context.widget(), DocumentExport::title(kind),
                                   QDir(folder).filePath(name), DocumentExport::filters(kind));
}

void ImportController::exportDocument(DocumentExport::Kind kind)
{
    if (m_context.isBusy() || !hasDictionary())
        return;
    m_context.storePendingInput();
    const QString path = askForDocument(kind);
    if (path.isEmpty())
        return;
    ProjectSession &session = m_context.session();
    m_context.setBusy(true);
    QString error;
    {
        const WaitCursor cursor;
        const UndoManager::Suspension suspension(session.undo());
        const StoreSilence silence(session.store());
        error = DocumentExport::write(
            kind, {&session.store(), m_context.currentLine(), session.baseName(), path});
    }
    m_context.setBusy(false);
    if (!error.isEmpty()) {
        m_context.showError(error);
        return;
    }
    const QString done = tr("%1 was written.").arg(QDir::toNativeSeparators(path));
    m_context.showStatus(done);
    m_context.appendOutput(done.toHtmlEscaped());
}
