#include "importgui/fileimportdialog.h"

#include "canopen/indextext.h"
#include "canopen/objectranges.h"
#include "gui/guihelper.h"
#include "gui/indexdestinationdialog.h"
#include "gui/lineicon.h"
#include "gui/subselectdialog.h"
#include "importgui/importobjectmodel.h"
#include "store/usersettings.h"
#include "ui_fileimportdialog.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>

#include <array>

namespace {

const QString fileFilter = QStringLiteral(
    "CODB Files (*.codb);; EDS Files (*.eds);; XDD Files (1311 only) (*.xdd);; DCF Files (*.dcf);; "
    "Project Files (*.vxmp *.vxmt *.vxmp.bak);; CSV Files (*.csv *.icsv);; All Files (*)");

constexpr qsizetype shownMessages = 20;
constexpr quint32 highestIndex = 0xFFFF;

/// A text that is kept from one import to the next.
struct Memory
{
    const char *key;
    const char *initial;
};
constexpr Memory startMemory{"importstartindex", "0x6000"};
constexpr Memory endMemory{"importendindex", "0x9FFF"};
const QString pathKey = QStringLiteral("importpath");

QString remembered(const Memory &memory)
{
    return UserSettings::general(QLatin1String(memory.key), QLatin1String(memory.initial))
        .toString();
}

/// The object dictionary's areas (CiA 301).
struct Segment
{
    const char *label;
    ObjectRange range;
};
constexpr std::array segments{
    Segment{"All", ObjectRanges::all},
    Segment{"Communication (0x1000-0x1FFF)", ObjectRanges::communication},
    Segment{"Manufacturer (0x2000-0x5FFF)", ObjectRanges::manufacturer},
    Segment{"Profile (0x6000-0x9FFF)", ObjectRanges::profile},
    Segment{"Other (0xA000-0xFFFF)",
            {ObjectRanges::networkVariables.low, ObjectRanges::additional.high}},
};

} // namespace

FileImportDialog::FileImportDialog(ObjectDataBase &project, quint8 line, ObjectDataBase &scratch,
                                   QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::FileImportDialog>()), m_project(project),
      m_line(line), m_import(new FileImport({project, line, scratch}, m_cargo, this)),
      m_model(new ImportObjectModel(this)), m_filter(new ImportObjectFilter(this))
{
    ui->setupUi(this);
    decorate();
    fillSources();
    ui->leStartIndex->setText(remembered(startMemory));
    ui->leEndIndex->setText(remembered(endMemory));
    connectWidgets();
    fileChanged();
}

FileImportDialog::~FileImportDialog()
{
    // As a child it would end behind the cargo that it works with.
    delete m_import;
}

void FileImportDialog::decorate()
{
    ui->btnSelectFile->setIcon(LineIcon::icon(QStringLiteral("open")));
    m_filter->setSourceModel(m_model);
    ui->lvObjects->setModel(m_filter);
    ui->lvObjects->setIconSize({ImportObjectModel::iconExtent, ImportObjectModel::iconExtent});
    ui->lvObjects->installEventFilter(this);
    for (const Segment &segment : segments)
        ui->cbSegment->addItem(QString::fromLatin1(segment.label));
    QSizePolicy policy = ui->progressBar->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    ui->progressBar->setSizePolicy(policy);
    ui->progressBar->hide();
    ui->btnMessages->hide();
}

void FileImportDialog::fillSources()
{
    const QString last = UserSettings::general(pathKey).toString();
    const QList<FileImportSource> shipped = FileImportSource::shipped();
    for (const FileImportSource &source : shipped)
        ui->cbFile->addItem(source.label, source.path);
    const int place = ui->cbFile->findData(last);
    if (place >= 0)
        ui->cbFile->setCurrentIndex(place);
    else
        ui->cbFile->setEditText(last);
}

void FileImportDialog::connectWidgets()
{
    connect(ui->btnSelectFile, &QPushButton::clicked, this, &FileImportDialog::selectFile);
    connect(ui->btnReadFile, &QPushButton::clicked, this, &FileImportDialog::readFile);
    connect(ui->cbFile, &QComboBox::editTextChanged, this, &FileImportDialog::fileChanged);
    for (QLineEdit *edit : {ui->cbFile->lineEdit(), ui->leStartIndex, ui->leEndIndex})
        connect(edit, &QLineEdit::returnPressed, this, &FileImportDialog::readFile);
    // Another line is another list.
    connect(ui->cbSourceLine, &QComboBox::activated, this, &FileImportDialog::readFile);
    connect(ui->leFilter, &QLineEdit::textChanged, m_filter, &ImportObjectFilter::setText);
    connect(ui->leFilter, &QLineEdit::textChanged, this, &FileImportDialog::updateState);
    connect(ui->cbSegment, &QComboBox::currentIndexChanged, this, &FileImportDialog::updateSegment);
    connect(ui->btnSelectAll, &QPushButton::clicked, this,
            [this] { m_model->setChecked(m_filter->shownRows(), true); });
    connect(ui->btnSelectNone, &QPushButton::clicked, this,
            [this] { m_model->setChecked(m_model->checkedRows(), false); });
    connect(ui->btnSubIndices, &QPushButton::clicked, this, &FileImportDialog::selectSubIndices);
    connect(ui->btnTarget, &QPushButton::clicked, this, &FileImportDialog::selectTarget);
    connect(ui->btnMessages, &QPushButton::clicked, this, &FileImportDialog::showMessages);
    connect(ui->chkIgnoreImplementation, &QCheckBox::toggled, this, &FileImportDialog::updateState);
    connect(ui->btnImport, &QPushButton::clicked, this, &FileImportDialog::import);
    connect(ui->btnClose, &QPushButton::clicked, this, &FileImportDialog::reject);
    connect(m_model, &ImportObjectModel::checkedCountChanged, this, &FileImportDialog::updateState);
    connect(ui->lvObjects->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &FileImportDialog::updateState);

    connect(m_import, &FileImport::progress, ui->progressBar, &QProgressBar::setValue);
    connect(m_import, &FileImport::importError, this,
            [this](const QString &text) { showError(QStringLiteral("Import error"), text); });
    connect(m_import, &FileImport::readFinished, this, &FileImportDialog::showReadResult);
    connect(m_import, &FileImport::takeFinished, this, &FileImportDialog::showImportResult);
    connect(m_import, &FileImport::aboutToChange, this, &FileImportDialog::aboutToChange);
}

void FileImportDialog::showError(const QString &title, const QString &text)
{
    GuiHelper::showMessageBox(this, title, text, QString(), QMessageBox::Ok, QMessageBox::Warning);
}

// --- The file -----------------------------------------------------------------------------------

QString FileImportDialog::file() const
{
    // What stands there is a label of the list, or a path that was typed.
    const QString text = ui->cbFile->currentText().trimmed();
    const int place = ui->cbFile->findText(text, Qt::MatchExactly);
    return place >= 0 ? ui->cbFile->itemData(place).toString() : text;
}

void FileImportDialog::selectFile()
{
    QString folder = file();
    if (!QFileInfo(folder).isFile() || folder.startsWith(u':'))
        folder = UserSettings::general(QStringLiteral("projectpath"), QDir::homePath()).toString();
    const QString path =
        GuiHelper::openFileName(this, QStringLiteral("Select file"), folder, fileFilter);
    if (path.isEmpty())
        return;
    ui->cbFile->setEditText(QDir::toNativeSeparators(path));
    ui->btnReadFile->setFocus();
}

void FileImportDialog::fileChanged()
{
    const QSignalBlocker blocker(ui->cbSourceLine);
    ui->cbSourceLine->clear();
    ui->cbSourceLine->addItem(tr("Line %1").arg(0), 0);
    clearList();
    updateState();
}

void FileImportDialog::clearList()
{
    m_import->clear();
    m_model->setObjects({});
    m_readFile.clear();
    ui->lblObjects->clear();
    ui->lblResult->clear();
}

/// False if what stands there is no range; a box has told then.
bool FileImportDialog::readRange(FileImportOptions &options)
{
    bool isLow = false;
    bool isHigh = false;
    options.low = ui->leStartIndex->text().trimmed().toUInt(&isLow, 0);
    options.high = ui->leEndIndex->text().trimmed().toUInt(&isHigh, 0);
    if (isLow && isHigh && options.low <= options.high && options.high <= highestIndex)
        return true;
    showError(
        QStringLiteral("Import error"),
        tr("\"%1\" to \"%2\" is no range of indices. Indices are numbers up to 0xFFFF, such as "
           "0x6000.")
            .arg(ui->leStartIndex->text(), ui->leEndIndex->text()));
    (isLow ? ui->leEndIndex : ui->leStartIndex)->setFocus();
    return false;
}

void FileImportDialog::readFile()
{
    FileImportOptions options;
    options.path = file();
    options.sourceLine = quint8(ui->cbSourceLine->currentData().toUInt());
    options.expandCopies = ui->chkObjectCopies->isChecked();
    if (m_import->isRunning() || !readRange(options))
        return;
    clearList();
    const QString refusal = m_import->read(options);
    if (refusal.isEmpty()) {
        m_readFile = options.path;
        UserSettings::setGeneral(pathKey, options.path);
        UserSettings::setGeneral(QLatin1String(startMemory.key), ui->leStartIndex->text());
        UserSettings::setGeneral(QLatin1String(endMemory.key), ui->leEndIndex->text());
    }
    updateState();
    if (!refusal.isEmpty())
        showError(QStringLiteral("File error"), refusal);
}

void FileImportDialog::showReadResult(FileImport::Outcome outcome)
{
    if (outcome != FileImport::Outcome::Done)
        m_readFile.clear();
    const QSignalBlocker blocker(ui->cbSourceLine);
    if (const QList<quint8> lines = m_cargo.sourceLines(); !lines.isEmpty()) {
        const QVariant chosen = ui->cbSourceLine->currentData();
        ui->cbSourceLine->clear();
        for (const quint8 line : lines)
            ui->cbSourceLine->addItem(tr("Line %1").arg(line), line);
        ui->cbSourceLine->setCurrentIndex(qMax(0, ui->cbSourceLine->findData(chosen)));
    }
    m_model->setObjects(m_cargo.objects());
    if (outcome == FileImport::Outcome::Done) {
        ui->lblObjects->setText(m_cargo.summary());
        if (m_cargo.hasCommands())
            ui->lblResult->setText(
                tr("The file copies or deletes objects too. This is done last."));
        ui->lvObjects->setCurrentIndex(m_filter->index(0, 0));
        ui->lvObjects->setFocus();
    } else if (outcome == FileImport::Outcome::Cancelled) {
        ui->lblResult->setText(tr("Cancelled. Nothing was read."));
    }
    const QStringList messages = m_import->messages();
    if (!messages.isEmpty())
        emit messagesRead(messages);
    updateState();
}

void FileImportDialog::showMessages()
{
    const QStringList messages = m_import->messages();
    QString text = messages.mid(0, shownMessages).join(u'\n');
    if (messages.size() > shownMessages)
        text += tr("\n... and %1 more, which the output pane has.")
                    .arg(messages.size() - shownMessages);
    GuiHelper::showMessageBox(this, windowTitle(), tr("Remarks on %1").arg(m_readFile), text);
}

// --- The objects --------------------------------------------------------------------------------

int FileImportDialog::currentRow() const
{
    const QModelIndex current = ui->lvObjects->currentIndex();
    return current.isValid() ? m_filter->mapToSource(current).row() : -1;
}

void FileImportDialog::updateSegment()
{
    const Segment &segment = segments[size_t(qMax(0, ui->cbSegment->currentIndex()))];
    m_filter->setSegment(segment.range.low, segment.range.high);
    updateState();
}

void FileImportDialog::selectSubIndices()
{
    const int row = currentRow();
    if (row < 0)
        return;
    ImportedItem item = m_model->item(row);
    SubSelectDialog dialog(IndexText::titled(item.index, m_model->nameOf(row)),
                           m_cargo.subindices(item.index), item.subindices, this);
    if (GuiHelper::execDialog(dialog) != QDialog::Accepted)
        return;
    item.subindices = dialog.chosenSubindices();
    m_model->setItem(row, item);
    m_model->setChecked({row}, true);
    updateState();
}

/// Asks for the checked objects, or else for the current one.
void FileImportDialog::selectTarget()
{
    QList<int> rows = m_model->checkedRows();
    if (rows.isEmpty() && currentRow() >= 0)
        rows.append(currentRow());
    if (rows.isEmpty())
        return;
    const ImportedItem first = m_model->item(rows.first());
    const int distance = m_model->item(rows.last()).index - first.index;
    const bool isSingle = rows.size() == 1;
    QString name = first.name.isEmpty() ? m_model->nameOf(rows.first()) : first.name;
    IndexDestinationDialog dialog(m_project, m_line, first.target, isSingle ? name : QString(),
                                  this);
    dialog.setFollowers(int(rows.size()) - 1, distance);
    if (GuiHelper::execDialog(dialog) != QDialog::Accepted)
        return;
    const int offset = dialog.targetIndex() - first.index;
    for (const int row : std::as_const(rows)) {
        ImportedItem item = m_model->item(row);
        item.target = quint16(item.index + offset);
        if (isSingle)
            item.name = dialog.name() == m_model->nameOf(row) ? QString() : dialog.name();
        m_model->setItem(row, item);
    }
    m_model->setChecked(rows, true);
    updateState();
}

/// The space bar works on all rows that are marked.
void FileImportDialog::toggleSelectedRows()
{
    const int current = currentRow();
    if (current < 0)
        return;
    QList<int> rows;
    const QModelIndexList marked = ui->lvObjects->selectionModel()->selectedRows();
    for (const QModelIndex &index : marked)
        rows.append(m_filter->mapToSource(index).row());
    if (!rows.contains(current))
        rows = {current};
    m_model->setChecked(rows, !m_model->isChecked(current));
}

bool FileImportDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && watched == ui->lvObjects) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Space && key->modifiers() == Qt::NoModifier) {
            toggleSelectedRows();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

// --- The import ---------------------------------------------------------------------------------

ImportedImplementation FileImportDialog::implementation() const
{
    const FileImportFormat *format = FileImportFormat::of(m_readFile);
    const bool isProject = format != nullptr && format->is(FileImportFormat::Project);
    if (ui->rbOriginal->isChecked() || (isProject && !ui->chkIgnoreImplementation->isChecked()))
        return ImportedImplementation::Original;
    return ui->rbApplication->isChecked() ? ImportedImplementation::Application
                                          : ImportedImplementation::Managed;
}

void FileImportDialog::import()
{
    ui->lblResult->clear();
    const FileImportFormat *format = FileImportFormat::of(m_readFile);
    const bool withDevice = format != nullptr && format->is(FileImportFormat::DeviceData) &&
                            ui->chkDeviceInfo->isChecked();
    m_cargo.choose(m_model->checkedItems(), implementation(), withDevice);
    const QString refusal = m_import->take();
    updateState();
    if (!refusal.isEmpty())
        showError(QStringLiteral("Import error"), refusal);
}

void FileImportDialog::showImportResult(FileImport::Outcome outcome)
{
    if (outcome == FileImport::Outcome::Done) {
        m_model->setExisting(m_cargo.existing());
        m_model->setChecked(m_model->checkedRows(), false);
        ui->lblObjects->setText(m_cargo.summary());
        ui->lblResult->setText(m_import->resultText());
        emit imported(m_import->resultText());
    } else if (outcome == FileImport::Outcome::Cancelled) {
        ui->lblResult->setText(tr("Cancelled. The project is as it was before."));
    }
    updateState();
}

void FileImportDialog::reject()
{
    if (m_import->isRunning())
        m_import->cancel();
    else
        QDialog::reject();
}

void FileImportDialog::updateState()
{
    const bool isIdle = !m_import->isRunning();
    for (QWidget *group : {ui->grpFile, ui->grpObjects, ui->grpOptions})
        group->setEnabled(isIdle);
    ui->progressBar->setVisible(!isIdle);
    ui->btnClose->setText(isIdle ? tr("Close") : tr("Cancel"));

    const FileImportFormat *format = FileImportFormat::of(file());
    const auto isKind = [&](FileImportFormat::Trait trait) {
        return format != nullptr && format->is(trait);
    };
    const bool isProject = isKind(FileImportFormat::Project);
    const bool keepsTypes = isProject && !ui->chkIgnoreImplementation->isChecked();
    ui->chkObjectCopies->setEnabled(isKind(FileImportFormat::Copies));
    ui->chkDeviceInfo->setEnabled(isKind(FileImportFormat::DeviceData));
    ui->chkIgnoreImplementation->setEnabled(isProject);
    for (QWidget *choice : {ui->rbManaged, ui->rbApplication, ui->rbOriginal})
        choice->setEnabled(!keepsTypes);
    ui->cbSourceLine->setEnabled(ui->cbSourceLine->count() > 1);
    ui->lblSourceLine->setEnabled(ui->cbSourceLine->count() > 1);
    ui->btnReadFile->setEnabled(!file().isEmpty());

    const bool hasRows = m_model->rowCount() > 0;
    const int checked = m_model->checkedCount();
    ui->btnSelectAll->setEnabled(m_filter->rowCount() > 0);
    ui->btnSelectNone->setEnabled(checked > 0);
    ui->btnSubIndices->setEnabled(currentRow() >= 0);
    ui->btnTarget->setEnabled(checked > 0 || currentRow() >= 0);
    const QStringList messages = isIdle ? m_import->messages() : QStringList();
    ui->btnMessages->setVisible(!messages.isEmpty());
    ui->lblSelected->setText(
        hasRows ? tr("%1 shown, %2 selected").arg(m_filter->rowCount()).arg(checked) : QString());
    ui->btnImport->setEnabled(isIdle && !m_readFile.isEmpty() &&
                              (checked > 0 || m_cargo.hasCommands()));
}
