#include <QDirIterator>
#include <QRegularExpression>
#include <QtTest>

namespace {

struct Room
{
    QString folder;      ///< with the slash behind it
    QSet<QString> known; ///< folders whose headers it may include, its own among them
};

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList codeSpans(const QString &text)
{
    static const QRegularExpression span(QStringLiteral("`([a-z/]+?)/?`"));
    QStringList found;
    for (auto match = span.globalMatch(text); match.hasNext();)
        found.append(match.next().captured(1) + u'/');
    return found;
}

/// The rooms of the table in docs/architecture.md, with what each may use by itself or through
/// the rooms that it uses. A row may name rooms of rows above it only, so there is no circle.
QList<Room> readRooms(QStringList &faults)
{
    QList<Room> rooms;
    QSet<QString> all;
    for (const QString &row :
         readText(QStringLiteral(QUILLFORGE_SOURCE_DIR "/docs/architecture.md")).split(u'\n')) {
        const QStringList cells = row.split(u'|');
        if (cells.size() != 6 || codeSpans(cells.at(1)).size() != 1)
            continue;
        Room room{codeSpans(cells.at(1)).constFirst(), {}};
        const QString uses = cells.at(4).trimmed();
        if (uses == QLatin1String("all above") || uses == QLatin1String("everything"))
            room.known = all;
        for (const QString &folder : codeSpans(uses)) {
            const auto used = std::find_if(rooms.cbegin(), rooms.cend(), [&](const Room &other) {
                return other.folder == folder;
            });
            if (used == rooms.cend())
                faults.append(room.folder + QLatin1String(" uses ") + folder +
                              QLatin1String(", which stands in no row above it"));
            else
                room.known.unite(used->known);
        }
        room.known.insert(room.folder);
        all.insert(room.folder);
        rooms.append(room);
    }
    return rooms;
}

/// The room that a path from the root lies in; empty if in none.
QString folderOf(const QString &path, const QList<Room> &rooms)
{
    QString folder;
    for (const Room &room : rooms) {
        if (path.startsWith(room.folder) && room.folder.size() > folder.size())
            folder = room.folder;
    }
    return folder;
}

} // namespace

/// What the linker can't see: includes of headers alone, and folders outside of the plan.
class TstHouse : public QObject
{
    Q_OBJECT

private slots:
    void includesFollowTheArrows()
    {
        static const QRegularExpression include(QStringLiteral("^#include \"([^\"]+)\""),
                                                QRegularExpression::MultilineOption);
        static const QRegularExpression outside(
            QStringLiteral("^(build[^/]*|tests|benchmarks|fuzz|cmake|out|docs|scripts)/"));
        QStringList faults;
        const QList<Room> rooms = readRooms(faults);
        QHash<QString, QSet<QString>> known;
        for (const Room &room : rooms)
            known.insert(room.folder, room.known);
        QSet<QString> seen;

        const QDir root(QStringLiteral(QUILLFORGE_SOURCE_DIR));
        QDirIterator files(root.path(), {QStringLiteral("*.cpp"), QStringLiteral("*.h")},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = root.relativeFilePath(files.next());
            if (outside.match(path).hasMatch())
                continue;
            const QString folder = folderOf(path, rooms);
            seen.insert(folder);
            if (folder.isEmpty())
                faults.append(path + QLatin1String(" stands in no room"));
            for (auto match = include.globalMatch(readText(root.filePath(path)));
                 match.hasNext();) {
                const QString header = match.next().captured(1);
                const QString target = folderOf(header, rooms);
                if (!target.isEmpty() && !known.value(folder).contains(target))
                    faults.append(path + QLatin1String(" includes ") + header);
            }
        }
        for (const Room &room : rooms) {
            if (!seen.contains(room.folder))
                faults.append(room.folder + QLatin1String(" is in the plan and has no sources"));
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
        QVERIFY(rooms.size() > 15);
    }
};

QTEST_APPLESS_MAIN(TstHouse)
#include "tst_house.moc"
