#include "generation/edscheckerwrapper.h"

#include <QDebug>
#include <QFileInfo>

namespace {

constexpr int startMilliseconds = 30000;

} // namespace

EdsCheckerWrapper::EdsCheckerWrapper(QObject *parent) : QObject(parent)
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    connect(&m_process, &QProcess::finished, this, &EdsCheckerWrapper::processFinished);
}

bool EdsCheckerWrapper::start(const QString &edsPath)
{
    const QFileInfo checker(m_checkerPath);
    if (!checker.isFile())
        return false;
    const QStringList arguments = {QStringLiteral("-e"), edsPath, QStringLiteral("-d"),
                                   checker.absolutePath() + QLatin1String("/v301.codb")};
    qDebug() << "start " << arguments;
    m_process.start(checker.absoluteFilePath(), arguments, QIODevice::ReadOnly);
    return m_process.waitForStarted(startMilliseconds);
}

void EdsCheckerWrapper::cancel()
{
    m_process.kill();
}

QString EdsCheckerWrapper::takeOutput()
{
    return QString::fromLocal8Bit(m_process.readAll());
}

void EdsCheckerWrapper::processFinished(int exitcode)
{
    qDebug() << exitcode << "= exitcode";
    emit finished();
}
