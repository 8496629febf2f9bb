#pragma once

#include "store/objectdatabase.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

/// What the store's tests share: application identity, raw access to a file, awkward texts.
namespace StoreTest {

inline void setIdentity(const char *edition = "CANopen Quillforge")
{
    QCoreApplication::setApplicationName(QString::fromLatin1(edition));
    QCoreApplication::setApplicationVersion(QStringLiteral("4.3.3"));
    QCoreApplication::setOrganizationName(QStringLiteral("tolvex"));
}

/// Runs statements on a closed database file as a foreign tool would; gives the first column of
/// the last statement's rows.
inline QStringList runOn(const QString &file, const QStringList &statements)
{
    QStringList rows;
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("raw"));
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
    QSqlDatabase::removeDatabase(QStringLiteral("raw"));
    return rows;
}

inline QByteArray contentOf(const QString &file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline ObjectDataBase::SUBINDEX_DATA_T sub(const QString &name, const QString &value = {},
                                           quint16 type = CAN::UNSIGNED8)
{
    ObjectDataBase::SUBINDEX_DATA_T data;
    data.name = name;
    data.datatype = type;
    data.defaultvalue = value;
    return data;
}

inline const QStringList &awkwardTexts()
{
    static const QStringList texts = {
        QString(),
        QStringLiteral("it's"),
        QStringLiteral("''; drop table Objects0; --"),
        QStringLiteral("line 1\nline 2\r\nline 3\rend"),
        QStringLiteral("\u00e4\u00f6\u00fc\u00df \u20ac"),
        QString::fromUtf8("\xF0\x9F\x94\xA7 four bytes"),
        QStringLiteral("  leading and trailing  "),
        QStringLiteral("%1 %2 %10 \"quoted\" \\ ; , = # @"),
        QString(100000, u'x') + u'\'' + QString(100000, u'\u00e4'),
    };
    return texts;
}

} // namespace StoreTest
