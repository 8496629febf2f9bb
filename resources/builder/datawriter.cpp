#include "resources/builder/datawriter.h"

#include "canopen/indextext.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <filesystem>
#include <functional>
#include <system_error>

namespace {

using DataSource::Line;
using DataSource::Object;
using DataSource::Settings;

QString fillSettings(const Settings &settings, const QString &table,
                     const std::function<bool(const QString &, const QString &)> &write)
{
    const QStringList keys = settings.keys();
    for (const QString &key : keys)
        if (!write(key, settings.value(key)))
            return QStringLiteral("setting '%1' of %2 can't be written").arg(key, table);
    return {};
}

QString fillObjects(ObjectDataBase &store, const Line &line)
{
    QList<ObjectDataBase::SubEntry> entries;
    for (const Object &object : line.objects) {
        if (!store.addIndex(line.number, object.index, object.data))
            return QStringLiteral("object %1 can't be written").arg(IndexText::hex(object.index));
        for (auto sub = object.subIndices.begin(); sub != object.subIndices.end(); ++sub)
            entries.append({line.number, object.index, sub.key(), sub.value()});
    }
    if (!store.addSubIndices(entries))
        return QStringLiteral("subindices of line %1 can't be written").arg(line.number);
    return {};
}

void fillUdsServices(ObjectDataBase &store, const Line &line)
{
    for (const DataSource::UdsService &service : line.udsServices) {
        const auto sid = static_cast<UDS::SID>(service.sid);
        store.setUDSServiceActive(line.number, sid, service.active);
        store.setUDSServiceSessions(line.number, sid, service.sessions);
        store.setUDSServiceUserLevels(line.number, sid, service.userLevels);
        store.setUDSAuthentication(line.number, sid, service.authentication);
    }
}

QString fillLine(ObjectDataBase &store, const Line &line)
{
    if (!store.addNode(line.number, line.node))
        return QStringLiteral("line %1 can't be written").arg(line.number);
    store.setDescriptionLine(line.number);
    QString problem = fillSettings(line.description, QStringLiteral("DescriptionSettings"),
                                   [&store](const QString &key, const QString &value) {
                                       return store.setDescriptionSetting(key, value);
                                   });
    store.setDescriptionLine(0);
    if (problem.isEmpty())
        problem = fillObjects(store, line);
    if (problem.isEmpty())
        fillUdsServices(store, line);
    return problem;
}

} // namespace

QString DataWriter::fill(ObjectDataBase &store, const DataSource::Project &project)
{
    for (const Line &line : project.lines) {
        if (const QString problem = fillLine(store, line); !problem.isEmpty())
            return problem;
    }
    struct Table
    {
        const Settings &settings;
        const char *name;
        bool (ObjectDataBase::*write)(const QString &key, const QString &value);
    };
    const Table tables[] = {
        {project.general, "GeneralSettings", &ObjectDataBase::setGeneralSetting},
        {project.j1939, "J1939Settings", &ObjectDataBase::setJ1939Setting},
        {project.misc, "MiscSettings", &ObjectDataBase::setMiscSetting},
    };
    for (const Table &table : tables) {
        const QString problem = fillSettings(table.settings, QLatin1String(table.name),
                                             [&](const QString &key, const QString &value) {
                                                 return (store.*table.write)(key, value);
                                             });
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

QString DataWriter::writeFile(const DataSource::Project &project, const QString &path)
{
    const QFileInfo target(path);
    const QString suffix = target.suffix();
    if (suffix != QLatin1String("data") && suffix != QLatin1String("vxmp") &&
        suffix != QLatin1String("vxmt"))
        return QStringLiteral("%1: the suffix must be .data, .vxmp or .vxmt").arg(path);
    // Beside the target, so that the last step is a rename, which is whole or not at all.
    const QTemporaryDir folder(target.dir().filePath(QStringLiteral("databuilder")));
    if (!folder.isValid())
        return QStringLiteral("%1: can't write into the folder: %2")
            .arg(path, folder.errorString());
    const QString made = folder.filePath(QStringLiteral("made.") + suffix);
    ObjectDataBase store;
    if (!store.createNewDataBase())
        return QStringLiteral("%1: can't create a project: %2").arg(path, store.lastErrorText());
    if (const QString problem = fill(store, project); !problem.isEmpty())
        return QStringLiteral("%1: %2").arg(path, problem);
    if (!store.saveDatabase(made))
        return QStringLiteral("%1: can't save: %2").arg(path, store.lastErrorText());
    std::error_code error;
    std::filesystem::rename(made.toStdU16String(), target.absoluteFilePath().toStdU16String(),
                            error);
    if (error)
        return QStringLiteral("%1: can't replace: %2")
            .arg(path, QString::fromStdString(error.message()));
    return {};
}
