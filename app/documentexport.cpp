#include "app/documentexport.h"

#include "canopen/safefile.h"
#include "documents/csvgenerator.h"
#include "documents/edsgenerator.h"
#include "documents/htmlgenerator.h"
#include "documents/icsvgenerator.h"
#include "documents/textdocgenerator.h"
#include "documents/xddgenerator.h"
#include "generation/outputlist.h"
#include "generators/base/abstractgenerator.h"
#include "generators/base/outputfile.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>

#include <array>
#include <memory>

namespace {

/// One form of a document.
struct Form
{
    DocumentExport::Kind kind;
    const char *suffix; ///< by which the list of outputs has it
    const char *filter;
    bool namesItself; ///< the document holds the name of its file
};

constexpr std::array forms{
    Form{DocumentExport::Kind::Eds, "eds", "EDS Files (*.eds)", true},
    Form{DocumentExport::Kind::Xdd, "xdd", "XDD Files (*.xdd)", true},
    Form{DocumentExport::Kind::Html, "html", "HTML Files (*.html)", false},
    Form{DocumentExport::Kind::Table, "csv", "CSV Files (*.csv)", false},
    Form{DocumentExport::Kind::Table, "icsv", "ICSV Files, which can be imported (*.icsv)", false},
    Form{DocumentExport::Kind::Text, "txt", "Text Files (*.txt)", false},
};

/// In the order of `Kind`.
constexpr std::array titles{"Export EDS file", "Export XDD file", "Export HTML documentation",
                            "Export CSV file", "Export text documentation"};

const Form &formOf(DocumentExport::Kind kind, const QString &suffix = QString())
{
    const Form *first = nullptr;
    for (const Form &form : forms) {
        if (form.kind != kind)
            continue;
        if (suffix.compare(QLatin1String(form.suffix), Qt::CaseInsensitive) == 0)
            return form;
        if (first == nullptr)
            first = &form;
    }
    return *first;
}

/// The only file of the folder goes to `path`, byte for byte.
QString moveResult(const QTemporaryDir &folder, const QString &path)
{
    const QStringList names = QDir(folder.path()).entryList(QDir::Files);
    QFile written(folder.filePath(names.value(0)));
    QSaveFile target(path);
    target.setDirectWriteFallback(true);
    const QString kindFault = SafeFile::kindFault(path);
    const bool done = kindFault.isEmpty() && names.size() == 1 &&
                      written.open(QIODevice::ReadOnly) && target.open(QIODevice::WriteOnly) &&
                      target.write(written.readAll()) == written.size() && target.commit();
    if (done)
        return {};
    return QCoreApplication::translate("DocumentExport", "The file %1 can't be written: %2")
        .arg(QDir::toNativeSeparators(path), !kindFault.isEmpty() ? kindFault
                                             : written.error() != QFileDevice::NoError
                                                 ? SafeFile::reason(written)
                                                 : SafeFile::reason(target));
}

} // namespace

QString DocumentExport::title(Kind kind)
{
    return QLatin1String(titles[size_t(kind)]);
}

QString DocumentExport::filters(Kind kind)
{
    QStringList filters;
    for (const Form &form : forms) {
        if (form.kind == kind)
            filters.append(QLatin1String(form.filter));
    }
    return filters.join(QLatin1String(";;"));
}

QString DocumentExport::fileName(Kind kind, const QString &projectName, quint8 line, bool multiLine)
{
    QString name = projectName.isEmpty() ? QStringLiteral("project") : projectName;
    if (multiLine)
        name += u'_' + QString::number(line);
    return name + u'.' + QLatin1String(formOf(kind).suffix);
}

QString DocumentExport::write(Kind kind, const Job &job)
{
    if (!OutputFile::isWritable(job.path))
        return QCoreApplication::translate("DocumentExport", "The file %1 is not writable.")
            .arg(QDir::toNativeSeparators(job.path));
    const QTemporaryDir folder;
    const QFileInfo target(job.path);
    const Form &form = formOf(kind, target.suffix());
    const bool takesFileName = form.namesItself || job.projectName.isEmpty();
    RunFacts facts;
    facts.store = std::shared_ptr<ObjectDataBase>(std::shared_ptr<void>(), job.store); // not owned
    facts.outputFolder = folder.path();
    facts.projectName = takesFileName ? target.completeBaseName() : job.projectName;
    const OutputJobs jobs =
        makeOutput(*documentOutput(QLatin1String(form.suffix)), facts, job.line);
    const auto &generator = jobs.jobs.front().generator;
    generator->startGeneration();
    generator->processEventsToEnd();
    if (generator->errorCode() != 0)
        return generator->errorString();
    return moveResult(folder, job.path);
}
