#include "store/projecttext.h"

#include <QDebug>
#include <QHash>

namespace ProjectText {

namespace {

/// The value of a column that a text does not have.
QString defaultText(const QString &table, const Schema::Column &column)
{
    static const ObjectDataBase::INDEX_DATA_T object;
    static const ObjectDataBase::SUBINDEX_DATA_T sub;
    static const ObjectDataBase::SPN spn;
    static const QHash<QString, QString> defaults = {
        {QStringLiteral("Objects.objecttype"), QString::number(object.objecttype)},
        {QStringLiteral("Objects.category"), QString::number(object.category)},
        {QStringLiteral("SubObjects.accesstype"), sub.accesstype},
        {QStringLiteral("SubObjects.allowedaccesstypes"), sub.allowedaccesstypes},
        {QStringLiteral("SubObjects.implementation"), QString::number(sub.implementation)},
        {QStringLiteral("SubObjects.category"), QString::number(sub.category)},
        {QStringLiteral("SPNs.defaultvalue"), spn.defaultValue},
        {QStringLiteral("SPNs.implementation"), QString::number(spn.implementation)},
    };
    const bool integer = column.type == QLatin1String("integer") && !column.stringId;
    return defaults.value(table + u'.' + column.name,
                          integer ? QStringLiteral("0") : QStringLiteral(""));
}

/// The usual form, which needs no reading: digits without blanks or leading zeros.
bool isPlainNumber(QByteArrayView raw)
{
    constexpr int safeDigits = 18;
    return !raw.isEmpty() && raw.size() <= safeDigits && (raw.front() != '0' || raw.size() == 1) &&
           std::all_of(raw.begin(), raw.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

QList<Column> columnsOf(const Layout &layout)
{
    const QString table = QString::fromLatin1(layout.table);
    QList<Column> columns;
    for (const Schema::Column &column : Schema::columns(Schema::table(table))) {
        const Kind kind = column.stringId                        ? Kind::StringId
                          : column.type == QLatin1String("text") ? Kind::Text
                          : column.type == QLatin1String("blob") ? Kind::MetaData
                                                                 : Kind::Integer;
        columns.append(
            {column.name, column.name.toLower().toLatin1(), kind, defaultText(table, column)});
    }
    return columns;
}

qint64 parseInteger(QStringView text, bool &ok)
{
    text = text.trimmed();
    const bool negative = text.startsWith(u'-');
    const QStringView digits = negative ? text.mid(1) : text;
    ok = !digits.isEmpty() && digits.front().isDigit();
    if (!ok)
        return 0;
    const bool hex = digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    const qint64 value = hex ? digits.mid(2).toLongLong(&ok, 16) : digits.toLongLong(&ok, 10);
    return negative ? -value : value;
}

QByteArray rowPath(const Layout &layout, const std::array<quint64, maximumKeys> &keys,
                   int repetition)
{
    QByteArray path;
    for (int i = 0; i < layout.keyCount(); ++i) {
        if (i > 0)
            path += IniText::separator;
        const int digits = layout.keys[i].hexDigits;
        path += digits == 0 ? QByteArray::number(keys[i])
                            : "0x" + QByteArray::number(keys[i], 16).rightJustified(digits, '0');
    }
    if (repetition > 0)
        path += '_' + QByteArray::number(repetition + 1);
    return path;
}

bool parseGroup(const QString &name, Group &group)
{
    group = {name, nullptr, 0};
    if (contains(settingsTables, name))
        return true;
    for (const Layout &layout : layouts) {
        const QLatin1String table(layout.table);
        if (!name.startsWith(table))
            continue;
        group.layout = &layout;
        if (layout.table == layouts[0].table)
            return group.isNodes();
        const QStringView digits = QStringView(name).mid(table.size());
        bool ok = false;
        const uint line = digits.toUInt(&ok);
        group.line = quint8(line);
        return ok && line <= highestLine && digits == QString::number(line);
    }
    return false;
}

bool Reader::read(const Visitor &visitor)
{
    m_visitor = &visitor;
    m_summary = {};
    m_error.clear();
    m_known = m_inRow = false;
    IniText::Scanner scanner(m_content);
    for (;;) {
        switch (scanner.next()) {
        case IniText::Scanner::Section:
            if (!finishRow() || !beginGroup(scanner))
                return false;
            break;
        case IniText::Scanner::Entry:
            if (m_known && !(m_group.layout ? readRowEntry(scanner) : readSetting(scanner)))
                return false;
            break;
        case IniText::Scanner::Malformed:
            return fail(scanner.line(), scanner.error());
        case IniText::Scanner::End:
            return finishRow();
        }
    }
}

bool Reader::beginGroup(const IniText::Scanner &scanner)
{
    QString name;
    if (!IniText::decodeKey(scanner.name(), name))
        return fail(scanner.line(), QStringLiteral("the group name is not UTF-8"));
    m_known = parseGroup(name, m_group);
    if (!m_known) {
        if (++m_unhandledGroups <= mostUnhandledTold)
            qDebug() << "unhandled group" << name;
        return true;
    }
    if (m_summary.groups.contains(name))
        return fail(scanner.line(), QStringLiteral("the group \"%1\" comes twice").arg(name));
    m_summary.groups.insert(name);
    if (m_group.isLineTable())
        m_summary.lines.insert(m_group.line);
    m_columns = m_group.layout ? columnsOf(*m_group.layout) : QList<Column>();
    m_items.clear();
    m_paths.clear();
    if (m_visitor->group)
        m_visitor->group(m_group, m_columns);
    return true;
}

bool Reader::readSetting(const IniText::Scanner &scanner)
{
    // What other writers of INI texts split at '/' is one item here.
    QString item;
    QByteArray key = scanner.name().toByteArray();
    key.replace(IniText::separator, "%2F");
    QString value;
    if (!IniText::decodeKey(key, item) || !IniText::decodeValue(scanner.value(), value))
        return fail(scanner.line(), QStringLiteral("the text is not UTF-8"));
    if (m_items.contains(item))
        return fail(scanner.line(), QStringLiteral("the setting \"%1\" comes twice").arg(item));
    m_items.insert(item);
    if (item == QLatin1String("FileHash") && m_group.table == QLatin1String("MiscSettings"))
        m_summary.hasFileHash = true;
    if (m_visitor->setting)
        m_visitor->setting(m_group, item, value);
    return true;
}

bool Reader::readRowEntry(const IniText::Scanner &scanner)
{
    const QByteArrayView key = scanner.name();
    qsizetype end = -1;
    for (int i = m_group.layout->keyCount(); i > 0; --i) {
        end = key.indexOf(IniText::separator, end + 1);
        if (end < 0)
            return fail(scanner.line(),
                        QStringLiteral("the key \"%1\" does not name row and column")
                            .arg(QString::fromUtf8(key)));
    }
    const QByteArrayView path = key.first(end);
    if (!m_inRow || path != m_path) {
        if (!finishRow() || !beginRow(path, scanner.line()))
            return false;
    }
    const QByteArrayView rest = key.sliced(end + 1);
    const qsizetype split = rest.indexOf(IniText::separator);
    if (split < 0)
        return setColumn(rest, scanner);
    if (rest.first(split) == QByteArrayView("metadata"))
        return setMetaData(rest.sliced(split + 1), scanner);
    logUnhandled(rest);
    return true;
}

/// Once a group: a text of a later version has the column in every row.
void Reader::logUnhandled(QByteArrayView key)
{
    const QString name = QString::fromUtf8(key).toLower();
    if (m_items.contains(name))
        return;
    m_items.insert(name);
    qDebug() << "unhandled column" << m_group.table << name;
}

bool Reader::beginRow(QByteArrayView path, int line)
{
    if (m_paths.contains(path))
        return fail(line, QStringLiteral("\"%1\" comes twice").arg(QString::fromUtf8(path)));
    m_paths.insert(path);
    m_path = path;
    m_inRow = true;
    m_seen = 0;
    m_expected = 0;
    m_row = {};
    m_row.line = line;
    m_row.values.resize(m_columns.size());
    const QStringList parts = QString::fromUtf8(path).split(QLatin1Char(IniText::separator));
    for (int i = 0; i < parts.size(); ++i) {
        const RowKey &key = m_group.layout->keys[i];
        // Rows that share all keys have a number behind the last one.
        const QString number = i + 1 < parts.size() ? parts.at(i) : parts.at(i).section(u'_', 0, 0);
        bool ok = false;
        const qint64 value = parseInteger(number, ok);
        if (!ok || value < 0 || quint64(value) > key.maximum)
            return fail(line, QStringLiteral("\"%1\" is no %2 from 0 to %3")
                                  .arg(parts.at(i), QLatin1String(key.column))
                                  .arg(key.maximum));
        m_row.keys[i] = quint64(value);
        m_row.values[columnOf(QByteArray(key.column).toLower())] = QString::number(value);
    }
    if (m_group.isNodes())
        m_summary.lines.insert(quint8(m_row.keys[0]));
    return true;
}

bool Reader::finishRow()
{
    if (m_inRow && m_visitor->row)
        m_visitor->row(m_group, m_columns, m_row);
    m_inRow = false;
    return true;
}

qsizetype Reader::columnOf(QByteArrayView key)
{
    if (m_expected < m_columns.size() && m_columns.at(m_expected).key == key)
        return m_expected++;
    for (qsizetype i = 0; i < m_columns.size(); ++i) {
        if (key.compare(m_columns.at(i).key, Qt::CaseInsensitive) == 0) {
            m_expected = i + 1;
            return i;
        }
    }
    return -1;
}

bool Reader::setColumn(QByteArrayView key, const IniText::Scanner &scanner)
{
    const qsizetype i = columnOf(key);
    if (i < 0 || m_columns.at(i).kind == Kind::MetaData) {
        logUnhandled(key);
        return true;
    }
    const QString &name = m_columns.at(i).name;
    const quint64 bit = quint64(1) << i;
    if (m_seen & bit)
        return fail(scanner.line(), QStringLiteral("%1 comes twice").arg(name));
    m_seen |= bit;
    const QByteArrayView raw = scanner.value();
    const bool integer = m_columns.at(i).kind == Kind::Integer;
    const bool plain = isPlainNumber(raw);
    if (!m_visitor->row && m_row.values.at(i).isNull() &&
        (integer ? plain : IniText::isAscii(raw))) {
        m_row.values[i] = QStringLiteral(""); // a walk that only checks has nothing to check here
        return true;
    }
    QString text;
    if (!plain && !IniText::decodeValue(raw, text))
        return fail(scanner.line(), QStringLiteral("the text is not UTF-8"));
    if (plain) {
        text = QString::fromLatin1(raw);
    } else if (integer) {
        bool ok = true;
        const qint64 number = text.isEmpty() ? 0 : parseInteger(text, ok);
        if (!ok)
            return fail(scanner.line(), QStringLiteral("\"%1\" is no number").arg(text.left(40)));
        text = QString::number(number);
    } else if (text.isNull()) {
        text = QStringLiteral("");
    }
    QString &value = m_row.values[i];
    if (!value.isNull() && value != text)
        return fail(scanner.line(),
                    QStringLiteral("%1 is %2 by the name of its group").arg(name, value));
    value = text;
    return true;
}

bool Reader::setMetaData(QByteArrayView key, const IniText::Scanner &scanner)
{
    QString name;
    QString text;
    if (!IniText::decodeKey(key, name) || !IniText::decodeValue(scanner.value(), text))
        return fail(scanner.line(), QStringLiteral("the text is not UTF-8"));
    if (m_row.metadata.contains(name))
        return fail(scanner.line(),
                    QStringLiteral("metadata \"%1\" comes twice").arg(name.left(40)));
    m_row.metadata.insert(name, text);
    return true;
}

} // namespace ProjectText
