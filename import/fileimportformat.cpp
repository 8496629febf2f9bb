#include "import/fileimportformat.h"

#include "import/codbimporter.h"
#include "import/csvimporter.h"
#include "import/edsimporter.h"
#include "import/vxmpimporter.h"
#include "import/xddimporter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>

namespace {

using Options = FileImportOptions;

/// Makes an importer, and prepares it by `SetUp` for a choice among the objects.
template <typename Importer, void (*SetUp)(Importer &, const Options &)>
std::unique_ptr<DictionaryImporter> made(const Options *options)
{
    auto importer = std::make_unique<Importer>();
    if (options != nullptr)
        SetUp(*importer, *options);
    return importer;
}

template <typename Importer>
void asItIs(Importer &, const Options &)
{
}

void withCopies(CODBImporter &importer, const Options &options)
{
    importer.setExpandCopies(options.expandCopies);
}

void asDcf(EDSImporter &importer, const Options &)
{
    importer.setDcf(true);
}

void ofSourceLine(VXMPImporter &importer, const Options &options)
{
    importer.setSourceLine(options.sourceLine);
}

/// The commands are for the project, and not for the copy that the objects are chosen from.
void withoutCommands(CsvImporter &importer, const Options &)
{
    importer.setRunsCommands(false);
}

using Format = FileImportFormat;

constexpr auto madeProject = made<VXMPImporter, ofSourceLine>;
constexpr auto madeTable = made<CsvImporter, withoutCommands>;

constexpr std::array formats{
    Format{"codb", Format::Copies, made<CODBImporter, withCopies>},
    Format{"eds", Format::Batch | Format::DeviceData, made<EDSImporter, asItIs>},
    Format{"xdd", 0, made<XDDImporter, asItIs>},
    Format{"dcf", Format::Batch | Format::DeviceData, made<EDSImporter, asDcf>},
    Format{"vxmp", Format::Project, madeProject},
    Format{"vxmt", Format::Project, madeProject},
    Format{"vxmp.bak", Format::Project, madeProject},
    Format{"csv", Format::Batch, madeTable},
    Format{"icsv", Format::Batch, madeTable},
};

enum class Audience : quint8 { J1939, EnergyBus };

/// Databases that only some editions have a use for, by a part of their name.
struct DatabaseRule
{
    const char *part;
    Audience audience;
};
constexpr std::array databaseRules{
    DatabaseRule{"j19", Audience::J1939},
    DatabaseRule{"nmea", Audience::J1939},
    DatabaseRule{"ebd", Audience::EnergyBus},
};

bool belongsTo(Audience audience, const QString &applicationName)
{
    if (applicationName == QLatin1String("CAN Quillforge"))
        return true;
    return audience == Audience::J1939 ? applicationName.contains(QLatin1String("J1939"))
                                       : applicationName == QLatin1String("EnergyBus Marlwright");
}

bool isOffered(const QString &fileName, const QString &applicationName)
{
    return std::all_of(databaseRules.begin(), databaseRules.end(), [&](const DatabaseRule &rule) {
        return !fileName.contains(QLatin1String(rule.part), Qt::CaseInsensitive) ||
               belongsTo(rule.audience, applicationName);
    });
}

QFileInfoList filesOf(const QString &folder, const QString &pattern)
{
    return QDir(folder).entryInfoList({pattern}, QDir::Files | QDir::Readable, QDir::Name);
}

/// A profile database begins with its title, as a comment.
QString titleOf(const QFileInfo &profile)
{
    constexpr qint64 longestTitle = 80;
    QFile file(profile.filePath());
    if (!file.open(QIODevice::ReadOnly))
        return profile.fileName();
    const QString first = QString::fromUtf8(file.readLine(longestTitle)).trimmed();
    return first.startsWith(QLatin1String("# ")) ? first.mid(2) : profile.fileName();
}

} // namespace

const FileImportFormat *FileImportFormat::of(const QString &path)
{
    const auto found = std::find_if(formats.begin(), formats.end(), [&](const Format &format) {
        return path.endsWith(u'.' + QLatin1String(format.suffix), Qt::CaseInsensitive);
    });
    return found == formats.end() ? nullptr : &*found;
}

QList<FileImportSource> FileImportSource::shipped(const QString &applicationName,
                                                  const QStringList &dataFolders)
{
    QList<FileImportSource> sources;
    for (const QFileInfo &file : filesOf(QStringLiteral(":/codb/"), QStringLiteral("*.codb")))
        sources.append({titleOf(file), file.filePath()});
    for (const QString &folder : dataFolders) {
        for (const QFileInfo &file : filesOf(folder, QStringLiteral("*.vxmp"))) {
            if (isOffered(file.fileName(), applicationName))
                sources.append({file.fileName(), file.filePath()});
        }
    }
    return sources;
}

QList<FileImportSource> FileImportSource::shipped()
{
    return shipped(QCoreApplication::applicationName(),
                   {QStringLiteral(":/databases/data/"),
                    QCoreApplication::applicationDirPath() + QLatin1String("/data")});
}
