#pragma once

#include <QObject>
#include <QProcess>
#include <QString>

/// One run of the external EDS checker on one file.
class EdsCheckerWrapper : public QObject
{
    Q_OBJECT

public:
    explicit EdsCheckerWrapper(QObject *parent = nullptr);

    void setCheckerPath(const QString &path) { m_checkerPath = path; }
    /// False if there is no such checker or it can't be started; `finished` is sent only after
    /// true.
    [[nodiscard]] bool start(const QString &edsPath);
    void cancel();
    /// What the checker has said since the last call, as plain text.
    [[nodiscard]] QString takeOutput();

public slots:
    void processFinished(int exitcode);

signals:
    void finished();

private:
    QString m_checkerPath;
    QProcess m_process;
};
