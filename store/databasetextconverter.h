#pragma once

#include <QObject>
#include <QString>

class ObjectDataBase;
class QIODevice;

namespace ProjectText {
class Reader;
struct Layout;
struct Summary;
} // namespace ProjectText

/// Turns a project to and from the text form `.vxmt`, an INI file in UTF-8 with a group for each
/// table, as `QSettings::IniFormat` reads and writes it. Raw CAN data, connections of the network
/// tool and EnergyBus settings have no text form.
///
/// Rows, and the ids of texts, come into a new store in the order of the file: the same file always
/// gives the same content hash. Belongs to the store's thread, and lives no longer than the store.
class DatabaseTextConverter : public QObject
{
    Q_OBJECT

public:
    DatabaseTextConverter(ObjectDataBase &store, const QString &path, QObject *parent = nullptr);

    /// Writes the store's content; false, with `errorText` set, if the file can't be written. The
    /// file is replaced as a whole or left as it was.
    bool convertSqlToText();
    /// Reads the file into the store, which should be new; false, with `errorText` set, if it
    /// can't be read. The store is touched only by a file that could be understood to its end.
    bool convertTextToSql();
    [[nodiscard]] QString errorText() const { return m_errorText; }

private:
    bool fail(const QString &what);
    [[nodiscard]] bool put(const QByteArray &text, QIODevice &out);
    void normaliseNulls(const QString &table);
    [[nodiscard]] QStringList allTables();
    [[nodiscard]] bool writeTable(const QString &table, QIODevice &out);
    [[nodiscard]] bool writeSettings(const QString &table, QIODevice &out);
    [[nodiscard]] bool writeRows(const ProjectText::Layout &layout, const QString &table,
                                 QIODevice &out);
    [[nodiscard]] bool readFile(QByteArray &content);
    [[nodiscard]] bool checkComplete(const ProjectText::Summary &summary,
                                     const QByteArray &content);
    void createLines(const ProjectText::Summary &summary);
    void importContent(ProjectText::Reader &reader);

    ObjectDataBase &m_store;
    QString m_path;
    QString m_errorText;
};
