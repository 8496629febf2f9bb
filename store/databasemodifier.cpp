#include "store/databasemodifier.h"

#include "canopen/safefile.h"
#include "store/objectdatabase.h"

#include <QDebug>
#include <QFile>
#include <QTextStream>

namespace {

constexpr qint64 shortestScript = 11; ///< bytes
constexpr qint64 largestScript = qint64(16) * 1024 * 1024;
constexpr int fieldsOfLine = 3;

} // namespace

DatabaseModifier::DatabaseModifier(ObjectDataBase *store, QObject *parent)
    : QObject(parent), m_store(store)
{
}

bool DatabaseModifier::fail(const QString &path, const QString &what)
{
    m_errorText = path + QLatin1String(": ") + what;
    return false;
}

bool DatabaseModifier::load(const QString &path)
{
    m_errorText.clear();
    m_path.clear();
    QFile file(path);
    QString fault;
    if (!SafeFile::open(file, fault))
        return fail(path, QStringLiteral("can't be read: ") + fault);
    if (file.size() < shortestScript)
        return fail(path, QStringLiteral("is too short for a modifier script"));
    m_path = path;
    return true;
}

bool DatabaseModifier::applyModifierFile()
{
    m_errorText.clear();
    m_store->setBlockUpdates(false);
    qDebug() << "Applying " << m_path;
    QString fault;
    auto content = SafeFile::read(m_path, largestScript, fault);
    if (!content)
        return fail(m_path, QStringLiteral("can't be read: ") + fault);
    QTextStream stream(&*content, QIODevice::ReadOnly | QIODevice::Text);
    QString line;
    int failed = 0;
    for (int number = 1; stream.readLineInto(&line); ++number) {
        if (!applyLine(line) && failed++ == 0)
            fail(m_path, QStringLiteral("line %1: the setting can't be written").arg(number));
    }
    return failed == 0;
}

/// False only for a setting that the store refuses.
bool DatabaseModifier::applyLine(const QString &line)
{
    if (line.isEmpty() || line.startsWith(u'#'))
        return true;
    const QStringList fields = line.split(u':');
    if (fields.size() != fieldsOfLine)
        return true;
    if (fields.at(0) == QLatin1String("GeneralSettings"))
        return m_store->setGeneralSetting(fields.at(1), fields.at(2));
    if (fields.at(0) == QLatin1String("J1939Settings"))
        return m_store->setJ1939Setting(fields.at(1), fields.at(2));
    return true;
}
