#include "generation/postgensettings.h"

#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QSettings>
#include <QVariant>

#include <array>

namespace {

/// By the number that is stored; 0 leaves the line ends alone.
constexpr std::array<const char *, 4> lineEndings{"", "\r\n", "\n", "\r"};

QString lineEndingOf(int number)
{
    const bool isKnown = number >= 0 && number < static_cast<int>(lineEndings.size());
    return isKnown ? QString::fromLatin1(lineEndings.at(static_cast<size_t>(number))) : QString();
}

bool isOn(const QString &text)
{
    return QVariant(text.trimmed()).toBool();
}

void readUserSettings(PostGenSettings &result)
{
    const QString application =
        QCoreApplication::instance()->property("AppNameWithVersion").toString();
    if (application.isEmpty())
        return;
    QSettings settings(QStringLiteral("tolvex"), application);
    settings.beginGroup(QStringLiteral("General"));
    result.lineEnding = lineEndingOf(settings.value(QStringLiteral("line_ending_index")).toInt());
    if (settings.value(QStringLiteral("postGenEnabled"), false).toBool()) {
        result.command = settings.value(QStringLiteral("postgenerationcommand")).toString();
        result.arguments =
            settings.value(QStringLiteral("postgenerationcommandarguments")).toString();
        result.waitForCommand = settings.value(QStringLiteral("waitPostGen"), false).toBool();
    }
    settings.endGroup();
    settings.beginGroup(QStringLiteral("EDSChecker"));
    result.checksEds = settings.value(QStringLiteral("checkeds"), false).toBool();
    result.edsCheckerPath = settings.value(QStringLiteral("EDSCheckerPath")).toString();
    settings.endGroup();
}

} // namespace

PostGenSettings PostGenSettings::read(ObjectDataBase *store)
{
    PostGenSettings result;
    readUserSettings(result);
    if (store != nullptr && isOn(store->getMiscSetting(QStringLiteral("postGenEnabled")))) {
        result.command = store->getMiscSetting(QStringLiteral("postgencmd"));
        result.arguments = store->getMiscSetting(QStringLiteral("postgencmdargs"));
        result.waitForCommand = isOn(store->getMiscSetting(QStringLiteral("postGenWait")));
    }
    result.command = result.command.trimmed();
    return result;
}

QStringList PostGenSettings::argumentList(const QString &outputFolder,
                                          const QString &projectName) const
{
    const QString fileName = projectName + QLatin1String(".vxmp");
    QString text = arguments;
    text.replace(QLatin1String("%P"), outputFolder + QLatin1Char('/') + fileName);
    text.replace(QLatin1String("%D"), outputFolder);
    text.replace(QLatin1String("%N"), fileName);
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}
