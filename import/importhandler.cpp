#include "import/importhandler.h"

#include "canopen/objectranges.h"
#include "import/vxmpimporter.h"

#include <QDebug>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>
#include <QTimer>

#include <algorithm>

namespace {

constexpr qint64 fewestBytes = 11;
constexpr qint64 mostBytes = qint64(1024) * 1024;
constexpr int fewestKeys = 2;
constexpr quint32 highestIndex = 0xFFFF;

/// A number with its base by prefix, up to a highest value.
bool readNumber(QStringView text, quint32 highest, quint32 &number)
{
    bool ok = false;
    number = text.toUInt(&ok, 0);
    return ok && number <= highest;
}

/// "line:first" or "line:first-last".
bool readRange(const QString &text, ImportHandler::actionSetting &action)
{
    const qsizetype colon = text.indexOf(u':');
    if (colon < 0)
        return false;
    const QStringView range = QStringView(text).mid(colon + 1);
    const qsizetype dash = range.indexOf(u'-');
    quint32 line = 0;
    quint32 first = 0;
    quint32 last = 0;
    if (!readNumber(QStringView(text).left(colon), 0xFF, line) ||
        !readNumber(dash < 0 ? range : range.left(dash), highestIndex, first) ||
        !readNumber(dash < 0 ? range : range.mid(dash + 1), highestIndex, last) || last < first)
        return false;
    action.sourceLine = static_cast<quint8>(line);
    action.firstIndex = static_cast<quint16>(first);
    action.lastIndex = static_cast<quint16>(last);
    return true;
}

/// "to line [offset n]" from the third word on.
bool readTarget(const QStringList &words, ImportHandler::actionSetting &action)
{
    const bool hasOffset = words.size() == 6;
    quint32 line = 0;
    if ((words.size() != 4 && !hasOffset) || words.at(2) != QLatin1String("to") ||
        !readNumber(words.at(3), 0xFF, line))
        return false;
    action.targetLine = static_cast<quint8>(line);
    return !hasOffset || (words.at(4) == QLatin1String("offset") &&
                          readNumber(words.at(5), highestIndex, action.offset));
}

/// QSettings takes commas for a list.
QString textValue(const QSettings &file, const QString &key)
{
    return file.value(key).toStringList().join(u',').trimmed();
}

void runEventsFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

ImportHandler::ImportHandler(ObjectDataBase *store) : m_store(store) {}

ImportHandler::~ImportHandler() = default;

bool ImportHandler::fail(const QString &text)
{
    m_error = text;
    return false;
}

bool ImportHandler::loadImportFile(const QString &path)
{
    m_error.clear();
    m_path.clear();
    const QFileInfo info(path);
    if (!info.isFile())
        return fail(tr("The file %1 does not exist").arg(path));
    if (!QFile(path).open(QIODevice::ReadOnly))
        return fail(tr("The file %1 is not readable").arg(path));
    if (info.size() < fewestBytes)
        return fail(QStringLiteral("File too small"));
    if (info.size() > mostBytes)
        return fail(QStringLiteral("File too large"));
    const QSettings file(path, QSettings::IniFormat);
    if (file.status() != QSettings::NoError || file.allKeys().size() < fewestKeys)
        return fail(QStringLiteral("Invalid file structure"));
    m_path = path;
    return true;
}

ImportHandler::Projects ImportHandler::readProjects(const QSettings &file) const
{
    Projects projects;
    const QStringList keys = file.allKeys();
    const QString group = QStringLiteral("Projects/");
    for (const QString &key : keys) {
        quint32 number = 0;
        if (!key.startsWith(group) ||
            !readNumber(QStringView(key).mid(group.size() + 1), 0xFFFFFFFF, number))
            continue;
        const QString path = textValue(file, key);
        const QFileInfo beside(QFileInfo(m_path).absoluteDir(), path);
        if (QFileInfo(path).isFile())
            projects.insert(number, path);
        else if (!path.isEmpty() && beside.isFile())
            projects.insert(number, beside.filePath());
    }
    return projects;
}

bool ImportHandler::parse(const QString &text, actionSetting &action) const
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    const QStringList words = text.toLower().split(blanks, Qt::SkipEmptyParts);
    action.text = text;
    if (words.size() < 2)
        return false;
    const QString &source = words.at(1);
    if (words.first() == QLatin1String("delete")) {
        action.kind = Delete;
        return words.size() == 2 && readRange(source, action);
    }
    if (words.first() == QLatin1String("copy")) {
        action.kind = Copy;
        return readRange(source, action) && readTarget(words, action);
    }
    if (words.first() != QLatin1String("import"))
        return false;
    action.kind = Import;
    const qsizetype colon = source.indexOf(u':');
    quint32 project = 0;
    quint32 line = 0;
    if (colon < 0 || !readNumber(QStringView(source).left(colon), 0xFFFFFFFF, project) ||
        !readNumber(QStringView(source).mid(colon + 1), 0xFF, line))
        return false;
    action.projectPath = m_projects.value(project);
    action.sourceLine = static_cast<quint8>(line);
    return readTarget(words, action);
}

bool ImportHandler::applyImportFile()
{
    m_error.clear();
    m_store->setBlockUpdates(false);
    qDebug() << "Applying " << m_path;
    if (m_path.isEmpty())
        return fail(tr("No import file is loaded"));
    QSettings file(m_path, QSettings::IniFormat);
    m_projects = readProjects(file);
    qDebug() << m_projects;
    if (m_projects.isEmpty())
        return fail(QStringLiteral("No projects found."));
    m_deleteObjects = file.value(QStringLiteral("Options/delete_objects"), false).toBool();

    QList<actionSetting> actions;
    file.beginGroup(QStringLiteral("Actions"));
    const QStringList keys = file.childKeys();
    for (const QString &key : keys) {
        actionSetting action;
        if (!parse(textValue(file, key), action))
            return fail(action.text + QLatin1String(" failed"));
        actions.append(action);
    }
    std::stable_partition(actions.begin(), actions.end(),
                          [](const actionSetting &action) { return action.kind == Import; });
    for (const actionSetting &action : std::as_const(actions)) {
        if (!process(action)) {
            if (!m_error.isEmpty())
                qDebug() << m_error;
            return fail(action.text + QLatin1String(" failed"));
        }
    }
    return true;
}

bool ImportHandler::process(const actionSetting &action)
{
    switch (action.kind) {
    case Import:
        return processImport(action);
    case Copy:
        return processCopy(action);
    default:
        return processDelete(action);
    }
}

/// Fills the scratch line with the objects of the action's project.
bool ImportHandler::readProject(const actionSetting &action)
{
    if (!m_scratch) {
        m_scratch = std::make_unique<ObjectDataBase>();
        if (!m_scratch->createNewDataBase())
            return false;
    }
    m_scratch->deleteNode(ObjectDataBase::stagingLine);
    if (!m_scratch->addNode(ObjectDataBase::stagingLine, ObjectDataBase::NODE_DATA_T()))
        return false;
    auto importer = std::make_unique<VXMPImporter>();
    importer->setSourceLine(action.sourceLine);
    importer->setLine(ObjectDataBase::stagingLine);
    importer->setDatabase(m_scratch.get());
    importer->setRange(0, highestIndex);
    importer->setFile(action.projectPath);
    m_importer = std::move(importer);
    if (!m_importer->start())
        return false;
    while (!m_importer->isFinished())
        runEventsFor(100);
    m_error = m_importer->errorString();
    m_importer.reset();
    return m_error.isEmpty();
}

bool ImportHandler::processImport(const actionSetting &action)
{
    if (action.projectPath.isEmpty() || !m_store->lineExists(action.targetLine) ||
        !readProject(action))
        return false;
    const QList<quint16> before = m_store->getIndices(action.targetLine, ObjectRanges::device.low);
    const QList<quint16> objects =
        m_scratch->getIndices(ObjectDataBase::stagingLine, ObjectRanges::device.low);
    if (!objects.isEmpty() && objects.last() + action.offset > highestIndex)
        return false;
    QSet<quint16> brought;
    for (const quint16 index : objects) {
        const auto target = static_cast<quint16>(index + action.offset);
        if (!m_store->copyIndex(ObjectDataBase::stagingLine, index, action.targetLine, target,
                                m_scratch.get()))
            return false;
        brought.insert(target);
    }
    if (!m_deleteObjects)
        return true;
    bool done = true;
    for (const quint16 index : before) {
        if (!brought.contains(index))
            done &= m_store->deleteIndex(action.targetLine, index);
    }
    return done;
}

bool ImportHandler::processCopy(const actionSetting &action)
{
    qDebug() << action.text;
    if (!m_store->lineExists(action.sourceLine) || !m_store->lineExists(action.targetLine))
        return false;
    QList<quint16> objects =
        m_store->getIndices(action.sourceLine, action.firstIndex, action.lastIndex);
    if (!objects.isEmpty() && objects.last() + action.offset > highestIndex)
        return false;
    // Source and target may overlap; from the top down no object is overwritten before its turn.
    std::reverse(objects.begin(), objects.end());
    for (const quint16 index : std::as_const(objects)) {
        if (!m_store->copyIndex(action.sourceLine, index, action.targetLine,
                                static_cast<quint16>(index + action.offset)))
            return false;
    }
    return true;
}

bool ImportHandler::processDelete(const actionSetting &action)
{
    qDebug() << " delete " << action.firstIndex << action.lastIndex;
    if (!m_store->lineExists(action.sourceLine))
        return false;
    bool done = true;
    const QList<quint16> objects =
        m_store->getIndices(action.sourceLine, action.firstIndex, action.lastIndex);
    for (const quint16 index : objects)
        done &= m_store->deleteIndex(action.sourceLine, index);
    return done;
}
