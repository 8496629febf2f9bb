#pragma once

#include "canopen/canopenindex.h"
#include "canopen/canopensubindex.h"
#include "canopen/importresult.h"

#include <QMap>
#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

/// Reads Electronic Data Sheets and Device Configuration Files (CiA 306) as they are found on the
/// market: in any case and order, with missing, double and contradicting parts. What it mends or
/// passes over, it tells in `result`, with file and line.
///
/// A file that isn't such a file is refused as a whole, before anything is sent. So are files
/// beyond any device: 64 MB, 500000 sections or subindices.
///
/// Lives and works in one thread; only `stop` may be called from others.
class EdsParser : public QObject
{
    Q_OBJECT

public:
    static constexpr quint32 mostSubindices = 500000;

    explicit EdsParser(QObject *parent = nullptr);
    ~EdsParser() override;

    /// Reads a file and sends its objects and subindices in file order. A subindex may come before
    /// its object; a variable's value is its subindex 0. False if the file is refused
    /// (`result` says why) or the reading was stopped.
    bool LoadEds(const QString &path);
    /// The same for bytes in memory; `name` is what messages call them.
    bool LoadEdsContent(const QByteArray &content, const QString &name);
    /// Ends a reading before the next object is sent.
    void stop() { m_stop = true; }

    /// What came of the last reading, with the file's name; valid until the next.
    [[nodiscard]] const ImportResult &result() const;

    /// What the sections [xxxxName], [xxxxValue] and [xxxxDenotation] hold for an object in compact
    /// form: from the subindex in decimal to a text.
    [[nodiscard]] QMap<QString, QString> getCompactSubObjNames(quint16 index) const;
    [[nodiscard]] QMap<QString, QString> getCompactSubObjValues(quint16 index) const;
    [[nodiscard]] QMap<QString, QString> getCompactSubObjDenotations(quint16 index) const;
    /// A value of [FileInfo], [DeviceInfo], [DummyUsage] or [Comments]; section and key in any
    /// case. Empty if it isn't there. Quotation marks around a value are taken off.
    [[nodiscard]] QString deviceValue(const QString &section, const QString &key) const;
    /// The lines of [Comments] as far as it says, each with a line feed behind it.
    [[nodiscard]] QString deviceComment() const;

signals:
    void newIndex(const CANopen::CANopenIndex &object);
    void newSubIndex(const CANopenSubindex &subindex);

private:
    struct State;
    std::unique_ptr<State> d;
    std::atomic<bool> m_stop{false};

    bool parse(const QString &name, bool readable);
    bool refuse(const QString &text);
    bool send();
    void sendObject(quint16 index);
};
