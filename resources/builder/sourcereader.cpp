#include "resources/builder/sourcereader.h"

#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "resources/builder/sourcelexer.h"
#include "resources/builder/subindexparser.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QStringDecoder>

#include <algorithm>
#include <optional>

namespace {

using DataSource::Line;
using DataSource::Object;
using DataSource::Settings;

constexpr int maximumErrors = 50;
constexpr int maximumDepth = 8;

/// Where a problem is.
struct Place
{
    QString file;
    int line = 0;
};

/// What the next "|" line goes on with.
struct TextTarget
{
    enum Kind { Nothing, Setting, ObjectText, SubIndexText } kind = Nothing;
    Settings *settings = nullptr;
    QString key;
    quint8 first = 0;
    quint8 last = 0;
    bool begun = false; ///< there is a line of text already
};

class Reader
{
public:
    explicit Reader(SourceResult &result) : m_result(result) {}

    void readFile(const QString &path, int depth);
    void readText(const QByteArray &bytes, const QString &file, int depth);
    void end() { finishObject(); }

private:
    struct Directive
    {
        const char *word;
        void (Reader::*read)(const QString &rest);
    };
    static const Directive directives[];

    void readLine(const QString &text);
    void readGeneral(const QString &rest) { readSetting(m_result.project.general, rest); }
    void readMisc(const QString &rest) { readSetting(m_result.project.misc, rest); }
    void readJ1939(const QString &rest) { readSetting(m_result.project.j1939, rest); }
    void readDescription(const QString &rest) { readSetting(line().description, rest); }
    void readSetting(Settings &settings, const QString &rest);
    void readNode(const QString &rest);
    void readUds(const QString &rest);
    void readObject(const QString &rest);
    void readSub(const QString &rest);
    void readInclude(const QString &rest);
    void readMoreText(const QString &text);
    void appendDescription(QString &description, const QString &text) const;

    QString applyObjectWords(Object &object, const QList<SourceWord> &words) const;
    QString applyObjectKind(Object &object, QList<SourceWord> &words) const;
    QString applyNodeWord(Line &target, const SourceWord &word) const;
    void finishObject();
    QList<SourceWord> words(const QString &rest);
    void fail(const QString &text) { fail(m_place, text); }
    void fail(const Place &place, const QString &text);
    [[nodiscard]] bool isFull() const { return m_result.errors.size() > maximumErrors; }
    [[nodiscard]] Line &line() { return m_result.project.lines.last(); }

    SourceResult &m_result;
    Place m_place;
    Place m_objectPlace;
    int m_depth = 0;
    std::optional<Object> m_object;
    QSet<quint8> m_writtenSubs;
    bool m_skipSubs = false; ///< below an object line that was refused
    TextTarget m_text;
};

const Reader::Directive Reader::directives[] = {
    {"general", &Reader::readGeneral}, {"misc", &Reader::readMisc},
    {"j1939", &Reader::readJ1939},     {"description", &Reader::readDescription},
    {"line", &Reader::readNode},       {"uds", &Reader::readUds},
    {"object", &Reader::readObject},   {"sub", &Reader::readSub},
    {"include", &Reader::readInclude},
};

void Reader::fail(const Place &place, const QString &text)
{
    if (isFull())
        return;
    m_result.errors.append(
        m_result.errors.size() == maximumErrors
            ? QStringLiteral("%1:%2: too many errors").arg(place.file).arg(place.line)
            : QStringLiteral("%1:%2: %3").arg(place.file).arg(place.line).arg(text));
}

void Reader::readFile(const QString &path, int depth)
{
    QFile file(path);
    const Place asker = m_place.file.isEmpty() ? Place{path, 0} : m_place;
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        fail(asker, QStringLiteral("can't read %1").arg(path));
        return;
    }
    readText(file.readAll(), path, depth);
}

void Reader::readText(const QByteArray &bytes, const QString &file, int depth)
{
    const Place caller = m_place;
    m_result.files.append(file);
    m_depth = depth;
    m_place = {file, 0};
    for (QByteArray row : bytes.split('\n')) {
        ++m_place.line;
        if (row.endsWith('\r'))
            row.chop(1);
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(row);
        if (decoder.hasError())
            fail(QStringLiteral("the line is not UTF-8"));
        else
            readLine(text);
        if (isFull())
            break;
    }
    m_place = caller;
    m_depth = depth - 1;
}

void Reader::readLine(const QString &text)
{
    if (std::any_of(text.begin(), text.end(), [](QChar c) { return c < u' ' && c != u'\t'; })) {
        fail(QStringLiteral("the line holds a control character"));
        return;
    }
    const QString row = text.trimmed();
    if (row.startsWith(u'|')) {
        readMoreText(text.mid(text.indexOf(u'|') + 1));
        return;
    }
    if (row.isEmpty() || row.startsWith(u'#'))
        return;
    m_text = {};
    const qsizetype blank =
        std::find_if(row.begin(), row.end(), [](QChar c) { return c.isSpace(); }) - row.begin();
    const QString word = row.left(blank);
    for (const Directive &directive : directives) {
        if (word == QLatin1String(directive.word)) {
            (this->*directive.read)(row.mid(blank).trimmed());
            return;
        }
    }
    fail(QStringLiteral("unknown directive '%1'").arg(word));
}

QList<SourceWord> Reader::words(const QString &rest)
{
    QString problem;
    QList<SourceWord> result = SourceLexer::split(rest, problem);
    if (!problem.isEmpty()) {
        fail(problem);
        return {};
    }
    if (result.isEmpty())
        fail(QStringLiteral("the line is too short"));
    return result;
}

void Reader::readMoreText(const QString &text)
{
    const QString row = text.startsWith(u' ') ? text.mid(1) : text;
    switch (m_text.kind) {
    case TextTarget::Nothing:
        fail(QStringLiteral("'|' follows nothing that has a text"));
        return;
    case TextTarget::Setting:
        m_text.settings->appendText(m_text.key, m_text.begun ? u'\n' + row : row);
        break;
    case TextTarget::ObjectText:
        appendDescription(m_object->data.description, row);
        break;
    case TextTarget::SubIndexText:
        for (int sub = m_text.first; sub <= m_text.last; ++sub)
            appendDescription(m_object->subIndices[quint8(sub)].description,
                              SourceLexer::expand(row, sub));
        break;
    }
    m_text.begun = true;
}

void Reader::appendDescription(QString &description, const QString &text) const
{
    if (m_text.begun)
        description += u'\n' + text;
    else
        description = text;
}

void Reader::readSetting(Settings &settings, const QString &rest)
{
    const qsizetype equals = rest.indexOf(u'=');
    const QString key = rest.left(equals).trimmed();
    if (equals < 0 || key.isEmpty() || key.contains(u' ') || key.contains(u'"')) {
        fail(QStringLiteral("a setting is written KEY = VALUE"));
        return;
    }
    QString problem;
    const QString value = SourceLexer::restOfLine(rest.mid(equals + 1), problem);
    if (!problem.isEmpty()) {
        fail(problem);
        return;
    }
    // A file may change what it includes, but not contradict itself.
    if (settings.contains(key) && settings.file(key) == m_place.file) {
        fail(QStringLiteral("setting '%1' stands twice").arg(key));
        return;
    }
    settings.set(key, {value, m_place.file});
    if (value.isEmpty()) {
        m_text.kind = TextTarget::Setting;
        m_text.settings = &settings;
        m_text.key = key;
    }
}

void Reader::readInclude(const QString &rest)
{
    const QList<SourceWord> list = words(rest);
    if (list.isEmpty())
        return;
    if (list.size() != 1 || !list.first().quoted) {
        fail(QStringLiteral("an include is written include \"FILE\""));
        return;
    }
    if (m_depth >= maximumDepth) {
        fail(QStringLiteral("includes are nested too deeply"));
        return;
    }
    finishObject();
    const QString path = QDir::cleanPath(QFileInfo(m_place.file).dir().filePath(list.first().text));
    readFile(path, m_depth + 1);
}

QString Reader::applyNodeWord(Line &target, const SourceWord &word) const
{
    using Node = ObjectDataBase::NODE_DATA_T;
    static const QMap<QString, QString Node::*> texts = {
        {QStringLiteral("prefix"), &Node::prefix}, {QStringLiteral("output"), &Node::outputpath},
        {QStringLiteral("icon"), &Node::iconpath}, {QStringLiteral("eds"), &Node::edspath},
        {QStringLiteral("dcf"), &Node::dcfpath},   {QStringLiteral("xdd"), &Node::xddpath},
    };
    static const QMap<QString, bool Node::*> flags = {
        {QStringLiteral("master"), &Node::ismaster},
        {QStringLiteral("syncproducer"), &Node::issyncproducer},
        {QStringLiteral("syncconsumer"), &Node::issyncconsumer},
        {QStringLiteral("hbconsumer"), &Node::ishbconsumer},
        {QStringLiteral("emcyproducer"), &Node::isemergencyproducer},
        {QStringLiteral("emcyconsumer"), &Node::isemergencyconsumer},
    };
    if (word.quoted && word.key.isEmpty()) {
        target.node.name = word.text;
        return {};
    }
    if (texts.contains(word.key)) {
        target.node.*texts.value(word.key) = word.text;
        return {};
    }
    if (flags.contains(word.key))
        return SubIndexParser::parseYesNo(word.text, target.node.*flags.value(word.key));
    return QStringLiteral("'%1' is out of place").arg(word.key.isEmpty() ? word.text : word.key);
}

void Reader::readNode(const QString &rest)
{
    finishObject();
    QList<SourceWord> list = words(rest);
    if (list.isEmpty())
        return;
    bool ok = false;
    const SourceWord number = list.takeFirst();
    const uint lineNumber = number.text.toUInt(&ok);
    Line next = lineNumber == 0 ? line() : Line{};
    if (!ok || !number.key.isEmpty() || lineNumber >= ObjectDataBase::maximumLines ||
        lineNumber < line().number || (lineNumber == line().number && lineNumber > 0)) {
        fail(QStringLiteral("'%1' is no line number, or not the next one").arg(number.text));
        return;
    }
    next.number = quint8(lineNumber);
    for (const SourceWord &word : std::as_const(list)) {
        if (const QString problem = applyNodeWord(next, word); !problem.isEmpty())
            fail(problem);
    }
    if (lineNumber == 0)
        line() = next;
    else
        m_result.project.lines.append(next);
}

void Reader::readUds(const QString &rest)
{
    QList<SourceWord> list = words(rest);
    if (list.isEmpty())
        return;
    bool ok = false;
    DataSource::UdsService service;
    const SourceWord number = list.takeFirst();
    const uint sid = number.text.toUInt(&ok, 0);
    if (!ok || !number.key.isEmpty() || sid == 0 || sid > 0xFF) {
        fail(QStringLiteral("'%1' is no service identifier").arg(number.text));
        return;
    }
    service.sid = quint8(sid);
    for (const DataSource::UdsService &other : std::as_const(line().udsServices)) {
        if (other.sid == service.sid) {
            fail(QStringLiteral("service 0x%1 stands twice").arg(sid, 2, 16, QLatin1Char('0')));
            return;
        }
    }
    for (const SourceWord &word : std::as_const(list)) {
        QString problem;
        if (word.key == QLatin1String("active"))
            problem = SubIndexParser::parseYesNo(word.text, service.active);
        else if (word.key == QLatin1String("sessions"))
            service.sessions = word.text;
        else if (word.key == QLatin1String("levels"))
            service.userLevels = word.text;
        else if (word.key == QLatin1String("authentication"))
            service.authentication = word.text;
        else
            problem = QStringLiteral("unknown key '%1'").arg(word.key);
        if (!problem.isEmpty())
            fail(problem);
    }
    line().udsServices.append(service);
}

/// "VAR", "ARRAY", "RECORD", "DOMAIN" or "like 0x1400" behind the index.
QString Reader::applyObjectKind(Object &object, QList<SourceWord> &words) const
{
    if (words.isEmpty())
        return QStringLiteral("the object type is missing");
    const QString kind = words.takeFirst().text;
    if (kind != QLatin1String("like")) {
        static const QMap<QString, quint32> kinds = {
            {QStringLiteral("VAR"), CANopen::VAR},
            {QStringLiteral("ARRAY"), CANopen::ARRAY},
            {QStringLiteral("RECORD"), CANopen::RECORD},
            {QStringLiteral("DOMAIN"), CANopen::DOMAIN_OBJECT},
        };
        object.data.objecttype = kinds.value(kind, CANopen::UNKNOWN_OBJECT);
        return kinds.contains(kind) ? QString()
                                    : QStringLiteral("unknown object type '%1'").arg(kind);
    }
    bool ok = false;
    const QString model = words.isEmpty() ? QString() : words.takeFirst().text;
    const uint index = model.toUInt(&ok, 0);
    for (const Object &other : m_result.project.lines.constLast().objects) {
        if (ok && other.index == index) {
            const quint16 own = object.index;
            object = other;
            object.index = own;
            return {};
        }
    }
    return QStringLiteral("there is no object '%1' before this one").arg(model);
}

QString Reader::applyObjectWords(Object &object, const QList<SourceWord> &words) const
{
    QSet<QString> seen;
    for (const SourceWord &word : words) {
        QString problem;
        const QString kind = !word.key.isEmpty() ? word.key
                             : word.quoted       ? QStringLiteral("a name")
                                                 : QStringLiteral("a category");
        if (seen.contains(kind))
            return QStringLiteral("%1 stands twice").arg(kind);
        seen.insert(kind);
        quint8 category = 0;
        if (word.key.startsWith(QLatin1String("meta:"))) {
            object.data.metadata.insert(word.key.mid(5), word.text);
        } else if (word.key == QLatin1String("class")) {
            object.data.deviceclass = word.text;
        } else if (word.key == QLatin1String("fw")) {
            problem = SubIndexParser::parseYesNo(word.text, object.data.fwsupported);
        } else if (!word.key.isEmpty()) {
            problem = QStringLiteral("unknown key '%1'").arg(word.key);
        } else if (word.quoted) {
            // A copied variable's subindex is named after its object.
            if (object.subIndices.value(0).name == object.data.name && !object.data.name.isEmpty())
                object.subIndices[0].name = word.text;
            object.data.name = word.text;
        } else {
            problem = SubIndexParser::parseCategory(word.text, category);
            object.data.category = category;
        }
        if (!problem.isEmpty())
            return problem;
    }
    return object.data.name.isEmpty() ? QStringLiteral("the name is missing") : QString();
}

void Reader::readObject(const QString &rest)
{
    finishObject();
    m_skipSubs = true;
    QList<SourceWord> list = words(rest);
    if (list.isEmpty())
        return;
    bool ok = false;
    Object object;
    const QString number = list.takeFirst().text;
    const uint index = number.toUInt(&ok, 0);
    if (!ok || index == 0 || index > 0xFFFF) {
        fail(QStringLiteral("'%1' is no object index from 0x0001 to 0xFFFF").arg(number));
        return;
    }
    object.index = quint16(index);
    for (const Object &other : std::as_const(line().objects)) {
        if (other.index == object.index) {
            fail(QStringLiteral("object %1 stands twice").arg(IndexText::hex(quint16(index))));
            return;
        }
    }
    QString problem = applyObjectKind(object, list);
    if (problem.isEmpty())
        problem = applyObjectWords(object, list);
    if (!problem.isEmpty()) {
        fail(problem);
        return;
    }
    m_skipSubs = false;
    m_object = object;
    m_objectPlace = m_place;
    m_text.kind = TextTarget::ObjectText;
}

void Reader::readSub(const QString &rest)
{
    if (!m_object) {
        if (!m_skipSubs)
            fail(QStringLiteral("a subindex must follow an object"));
        return;
    }
    QList<SourceWord> list = words(rest);
    if (list.isEmpty())
        return;
    quint8 first = 0;
    quint8 last = 0;
    const QString range = list.takeFirst().text;
    if (const QString problem = SubIndexParser::parseRange(range, first, last);
        !problem.isEmpty()) {
        fail(problem);
        return;
    }
    for (int sub = first; sub <= last; ++sub) {
        if (m_writtenSubs.contains(quint8(sub))) {
            fail(QStringLiteral("subindex %1 stands twice").arg(sub));
            return;
        }
        m_writtenSubs.insert(quint8(sub));
        if (const QString problem = SubIndexParser::apply(*m_object, quint8(sub), list);
            !problem.isEmpty()) {
            fail(QStringLiteral("subindex %1: %2").arg(sub).arg(problem));
            return;
        }
    }
    m_text.kind = TextTarget::SubIndexText;
    m_text.first = first;
    m_text.last = last;
}

void Reader::finishObject()
{
    m_writtenSubs.clear();
    m_skipSubs = false;
    m_text = {};
    if (!m_object)
        return;
    if (const QString problem = SubIndexParser::finish(*m_object); !problem.isEmpty())
        fail(m_objectPlace,
             QStringLiteral("object %1: %2").arg(IndexText::hex(m_object->index), problem));
    line().objects.append(*m_object);
    m_object.reset();
}

} // namespace

SourceResult SourceReader::readFile(const QString &path)
{
    SourceResult result;
    Reader reader(result);
    reader.readFile(path, 1);
    reader.end();
    return result;
}

SourceResult SourceReader::readText(const QByteArray &text, const QString &file)
{
    SourceResult result;
    Reader reader(result);
    reader.readText(text, file, 1);
    reader.end();
    return result;
}
