#pragma once

#include <QApplication>

/// The application object of all editions: names, version, look and the user's settings.
///
/// Carries the dynamic property "AppNameWithVersion", the application part of every settings
/// access, so that each edition and each version keeps settings of its own.
class TolvexBaseApplication : public QApplication
{
    Q_OBJECT

public:
    TolvexBaseApplication(int &argc, char **argv, const QString &name, const QString &version);

    /// Makes the user's settings usable; to be called once the organisation is named. The layout
    /// number is written beside them, so that a later version can tell how to read them.
    void initSettings(int layout);

    bool notify(QObject *receiver, QEvent *event) override;

public slots:
    /// Switches the log of slow events on or off: while it is on, every event that keeps the
    /// program from answering for more than a tenth of a second is named in the debug stream.
    void onInstrumentFunctionChanged(bool enable);

private:
    bool m_instrumented = false;
};
