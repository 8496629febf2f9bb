#include "generators/define/definewriter.h"

#include <QStringList>

void DefineWriter::flagIf(bool condition, const QString &name)
{
    if (condition)
        flag(name);
}

void DefineWriter::number(const QString &name, quint64 value, char separator)
{
    text(name, QString::number(value) + QLatin1Char('u'), separator);
}

void DefineWriter::count(const QString &name, quint64 value, char separator)
{
    if (value > 0)
        number(name, value, separator);
}

void DefineWriter::list(const QString &name, const QList<quint32> &values)
{
    QStringList numbers;
    numbers.reserve(values.size());
    for (const quint32 value : values)
        numbers.append(QString::number(value) + QLatin1Char('u'));
    text(name, numbers.join(QLatin1String(", ")));
}

void DefineWriter::text(const QString &name, const QString &value, char separator)
{
    const QString written = word(name);
    if (m_names.contains(written))
        return;
    m_names.insert(written);
    m_out << "#define " << written << separator << value << '\n';
}

QString DefineWriter::word(const QString &name) const
{
    if (m_dialect.isV4)
        return name;
    for (const QLatin1String prefix : {QLatin1String("CORE_"), QLatin1String("CAN_")}) {
        if (name.startsWith(prefix))
            return QLatin1String(m_dialect.prefix) + name.mid(prefix.size());
    }
    return name;
}
