#pragma once

#include <QObject>

class ObjectDataBase;

/// Adapts an opened project to what this version expects. Each correction can be run on any
/// project: on one that has had it, it changes nothing. Corrections write through the store and so
/// notify; what fails is logged, and the next one runs.
class ProjectConverter : public QObject
{
    Q_OBJECT

public:
    /// The store is not owned and has to outlive the converter.
    explicit ProjectConverter(ObjectDataBase *store, QObject *parent = nullptr);

    /// For every project, first of all.
    void doGenericCorrection();
    /// For every project, next. Takes the path of the stack from the user's settings if the
    /// project has none, and brings settings and objects of older versions into their form.
    void doStackPathCorrection();
    /// For the EnergyBus edition.
    void doEnergyBusCorrection();
    /// For the J1939 edition: mapping counts and page bits of older versions.
    void doJ1939Correction();
    /// For the CAN edition, whose projects transmit no address claim of their own.
    void doCanCorrection();

private:
    void enableIfCounted(const QString &enabledKey, const QString &countKey);
    void rewriteFirstSubIndex(quint8 line);
    void correctEnergyBusValue(const QString &key);

    ObjectDataBase *m_store;
};
