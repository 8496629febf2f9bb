#include "cli/commandline.h"
#include "cli/console.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cstdio>

namespace {

/// The trace never goes to the system's log, wherever standard error leads.
void traceToStandardError(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QByteArray line = qFormatLogMessage(type, context, text).toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

void silence(QtMsgType, const QMessageLogContext &, const QString &) {}

/// Build servers run programs for users without a home, for whom the folders of an application
/// would end up at the root of the file system. Such a run gets folders that end with it.
class StandInHome
{
public:
    StandInHome()
    {
#ifdef Q_OS_UNIX
        if (!qEnvironmentVariableIsEmpty("HOME"))
            return;
        m_folder = std::make_unique<QTemporaryDir>();
        for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
            if (m_folder->isValid() && qEnvironmentVariableIsEmpty(name))
                qputenv(name, m_folder->path().toLocal8Bit());
        }
#endif
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

/// The program speaks as the edition that it belongs to: that decides which projects open and
/// where the user's settings are.
void nameApplication(QCoreApplication &application)
{
    const QString name = QStringLiteral("CANopen Quillforge");
    const QString version = QStringLiteral(QUILLFORGE_VERSION);
    application.setApplicationName(name);
    application.setApplicationVersion(version);
    application.setOrganizationName(QStringLiteral("tolvex"));
    application.setOrganizationDomain(QStringLiteral("tolvex.com"));
    application.setProperty("AppNameWithVersion", QStringLiteral("%1 %2").arg(name, version));
}

} // namespace

int main(int argc, char *argv[])
{
    // Qt remarks on the locale of a build server before any rule for its messages holds.
    qInstallMessageHandler(silence);
    const StandInHome home;
    QCoreApplication application(argc, argv);
    nameApplication(application);
    // The environment variable QT_LOGGING_RULES goes before these.
    QLoggingCategory::setFilterRules(
        QStringLiteral("*.debug=false\n*.info=false\n*.warning=false"));
    qInstallMessageHandler(traceToStandardError);

    Console console;
    return static_cast<int>(CommandLine::run(QCoreApplication::arguments().mid(1), console));
}
