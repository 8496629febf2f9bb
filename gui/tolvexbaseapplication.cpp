#include "gui/tolvexbaseapplication.h"

#include "gui/tolvxappstyle.h"
#include "store/usersettings.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QThread>

namespace {
constexpr qint64 slowEventMilliseconds = 100;
}

TolvexBaseApplication::TolvexBaseApplication(int &argc, char **argv, const QString &name,
                                             const QString &version)
    : QApplication(argc, argv)
{
    setApplicationName(name);
    setApplicationVersion(version);
    setProperty("AppNameWithVersion", QStringLiteral("%1 %2").arg(name, version));
    TolvxAppStyle::install(*this);
}

void TolvexBaseApplication::initSettings(int layout)
{
    const QString key = QStringLiteral("SettingsLayout/number");
    UserSettings settings;
    if (settings.value(key).toInt() != layout)
        settings.setValue(key, layout);
}

bool TolvexBaseApplication::notify(QObject *receiver, QEvent *event)
{
    if (!m_instrumented || QThread::currentThread() != thread())
        return QApplication::notify(receiver, event);

    // Receiver and event may be gone when the call is over.
    const QByteArray className = receiver->metaObject()->className();
    const QEvent::Type type = event->type();
    QElapsedTimer timer;
    timer.start();
    const bool handled = QApplication::notify(receiver, event);
    if (timer.elapsed() > slowEventMilliseconds)
        qDebug() << "slow event" << type << "for" << className.constData() << timer.elapsed()
                 << "ms";
    return handled;
}

void TolvexBaseApplication::onInstrumentFunctionChanged(bool enable)
{
    m_instrumented = enable;
}
