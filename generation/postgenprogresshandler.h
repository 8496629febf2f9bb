#pragma once

#include <QObject>
#include <QString>

class OutputHandlerBase;

/// What the part of a run behind the last generator shows of its progress, and how the user stops
/// it. The base shows nothing; a window derives from it. Main thread only.
class PostGenProgressHandler : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual void setLabelText(const QString &text);
    /// A null text takes the button away.
    virtual void setCancelButtonText(const QString &text);
    virtual void show();
    virtual void hide();
    virtual void adjustSize();
    virtual void raise();
    /// Tells of a fault and waits until it is read. `parent` may be null.
    virtual void showMessage(QObject *parent, const QString &title, const QString &text,
                             const QString &detail);

public slots:
    void cancelProcessTriggered();

signals:
    /// The command or check that is running is to stop.
    void cancelProcess();
};

/// For runs without a window: nothing to see, and faults go to the messages of the run.
class TextPostGenProgressHandler : public PostGenProgressHandler
{
    Q_OBJECT

public:
    /// `output` outlives this object.
    explicit TextPostGenProgressHandler(OutputHandlerBase &output, QObject *parent = nullptr);

    void showMessage(QObject *parent, const QString &title, const QString &text,
                     const QString &detail) override;

private:
    OutputHandlerBase &m_output;
};
