#include "app/documentexport.h"

#include "canopen/safefile.h"
#include "documents/csvgenerator.h"
#include "documents/edsgenerator.h"
#include "documents/htmlgenerator.h"
#include "documents/icsvgenerator.h"
#include "documents/textdocgenerator.h"
#include "documents/xddgenerator.h"
#include "generators/base/outputfile.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>

#include <array>
#include <memory>

namespace {

using Made = std::unique_ptr<AbstractGenerator>;

Made makeEds(ObjectDataBase &store)
{
    const QString key = QStringLiteral("canfd_supported");
    return std::make_unique<EDSGenerator>(QString(), store.getGeneralSetting(key).toInt() >= 1,
                                          false);
}

Made makeIcsv(ObjectDataBase &store)
{
    auto generator = std::make_unique<ICSVGenerator>();
    generator->setWithDescription(store.getMiscSetting(QStringLiteral("disableDocu")) !=
                                  QLatin1String("true"));
    return generator;
}

template <class Generator>
Made make(ObjectDataBase &)
{
    return std::make_unique<Generator>();
}

/// One form of a document.
struct Form
{
    DocumentExport::Kind kind;
    const char *suffix;
    const char *filter;
    bool namesItself; ///< the document holds the name of its file
    Made (*make)(ObjectDataBase &store);
};

constexpr std::array forms{
    Form{DocumentExport::Kind::Eds, "eds", "EDS Files (*.eds)", true, makeEds},
    Form{DocumentExport::Kind::Xdd, "xdd", "XDD Files (*.xdd)", true, make<XDDGenerator>},
    Form{DocumentExport::Kind::Html, "html", "HTML Files (*.html)", false, make<HTMLGenerator>},
    Form{DocumentExport::Kind::Table, "csv", "CSV Files (*.csv)", false, make<CSVGenerator>},
    Form{DocumentExport::Kind::Table, "icsv", "ICSV Files, which can be imported (*.icsv)", false,
         makeIcsv},
    Form{DocumentExport::Kind::Text, "txt", "Text Files (*.txt)", false, make<TextDocGenerator>},
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
    const Made generator = form.make(*job.store);
    generator->setOutputFolder(folder.path());
    generator->setStore(job.store);
    generator->setProjectName(takesFileName ? target.completeBaseName() : job.projectName);
    generator->setLine(job.line);
    // The end of the run posts its last progress here; without it the loop would wait for an event
    // that may never come.
    QObject here;
    QObject::connect(generator.get(), &AbstractGenerator::progress, &here, [] {});
    generator->startGeneration();
    while (generator->isBusy())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    generator->waitForEnd();
    QCoreApplication::processEvents();
    if (generator->errorCode() != 0)
        return generator->errorString();
    return moveResult(folder, job.path);
}
