#pragma once

#include "store/objectdatabase.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/// What a source text of reference data says, as plain records: no file, no store.
namespace DataSource {

/// One row of a settings table. `file` is the source that wrote it last.
struct Setting
{
    QString value;
    QString file;
};

/// Rows in the order in which the source first names them, so that the file made from them comes
/// out in that order too.
class Settings
{
public:
    [[nodiscard]] bool contains(const QString &key) const { return m_rows.contains(key); }
    [[nodiscard]] QString value(const QString &key) const { return m_rows.value(key).value; }
    [[nodiscard]] QString file(const QString &key) const { return m_rows.value(key).file; }
    [[nodiscard]] QStringList keys() const { return m_order; }
    void set(const QString &key, const Setting &setting)
    {
        if (!m_rows.contains(key))
            m_order.append(key);
        m_rows.insert(key, setting);
    }
    void appendText(const QString &key, const QString &text) { m_rows[key].value += text; }

private:
    QStringList m_order;
    QMap<QString, Setting> m_rows;
};

/// One object with its subindices.
struct Object
{
    quint16 index = 0;
    ObjectDataBase::INDEX_DATA_T data;
    QMap<quint8, ObjectDataBase::SUBINDEX_DATA_T> subIndices;
};

/// One UDS service (ISO 14229-1).
struct UdsService
{
    quint8 sid = 0;
    bool active = true;
    QString sessions;
    QString userLevels;
    QString authentication;
};

/// One CAN line with all that hangs on it; objects and services ascend in the store whatever the
/// order here.
struct Line
{
    quint8 number = 0;
    ObjectDataBase::NODE_DATA_T node;
    Settings description;
    QList<Object> objects;
    QList<UdsService> udsServices;
};

/// A whole source. Line 0 is always there and stands first.
struct Project
{
    Settings general;
    Settings misc;
    Settings j1939;
    QList<Line> lines = {Line{}};
};

} // namespace DataSource
