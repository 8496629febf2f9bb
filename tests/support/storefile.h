#pragma once

#include "store/objectdatabase.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

using namespace Qt::StringLiterals;

/// What tests of project files share: application identity, stores, raw access to a file, texts.
namespace StoreTest {

inline void setIdentity(const char *edition = "CANopen Quillforge")
{
    QCoreApplication::setApplicationName(QString::fromLatin1(edition));
    QCoreApplication::setApplicationVersion(u"4.3.3"_s);
    QCoreApplication::setOrganizationName(u"tolvex"_s);
}

/// Runs statements on a closed database file as a foreign tool would; gives the first column of
/// the last statement's rows.
inline QStringList runOn(const QString &file, const QStringList &statements)
{
    QStringList rows;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"raw"_s);
        db.setDatabaseName(file);
        if (!db.open())
            qFatal("can't open %s", qPrintable(file));
        for (const QString &statement : statements) {
            QSqlQuery query(db);
            if (!query.exec(statement))
                qFatal("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
            rows.clear();
            while (query.next())
                rows.append(query.value(0).toString());
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(u"raw"_s);
    return rows;
}

inline QByteArray contentOf(const QString &file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("unreadable");
}

inline void writeFile(const QString &file, const QByteArray &content)
{
    QFile f(file);
    if (!f.open(QIODevice::WriteOnly) || f.write(content) != content.size())
        qFatal("can't write %s", qPrintable(file));
}

/// A store with a new project, or with that of a file.
struct TestStore : ObjectDataBase
{
    TestStore()
    {
        if (!createNewDataBase())
            qFatal("%s", qPrintable(lastErrorText()));
    }
    explicit TestStore(const QString &file)
    {
        if (!openDataBase(file))
            qFatal("%s", qPrintable(lastErrorText()));
    }
};

/// The first column of the first row that a statement gives.
inline QString firstValue(ObjectDataBase &store, const QString &statement)
{
    return store.executeSql(statement) ? store.statementResults().value(0).section(u' ', 0, 0)
                                       : store.lastErrorText();
}

inline ObjectDataBase::SUBINDEX_DATA_T sub(const QString &name, const QString &value = {},
                                           quint16 type = CAN::UNSIGNED8)
{
    return {.name = name, .datatype = type, .defaultvalue = value};
}

inline const QStringList &awkwardTexts()
{
    static const QStringList texts = {
        QStringLiteral(""),
        u"it's"_s,
        u"''; drop table Objects0; --"_s,
        u"line 1\nline 2\r\nline 3\rend"_s,
        u"\u00e4\u00f6\u00fc\u00df \u20ac"_s,
        QString::fromUtf8("\xF0\x9F\x94\xA7 four bytes"),
        u"  leading and trailing  "_s,
        u"%1 %2 %10 \"quoted\" \\ ; , = # @"_s,
        QString(100000, u'x') + u'\'' + QString(100000, u'\u00e4'),
    };
    return texts;
}

} // namespace StoreTest
