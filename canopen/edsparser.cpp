#include "canopen/edsparser.h"

#include "canopen/canopentypes.h"
#include "canopen/edsforeign.h"
#include "canopen/edsobjectreader.h"
#include "canopen/edssections.h"
#include "canopen/edsvalue.h"
#include "canopen/indextext.h"
#include "canopen/objectranges.h"

#include <QHash>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <vector>

namespace {

using Kind = EdsSections::Kind;
using Note = ImportResult::Kind;

constexpr int mostCommentLines = 10000;
constexpr qsizetype mostDeviceValues = 20000;

} // namespace

struct EdsParser::State
{
    /// What the sections together say about one object.
    struct Facts
    {
        EdsObjectReader::Object object;
        const EdsText::Section *section = nullptr; ///< null: only subindices are there
        int firstLine = 0;
        int subCount = 0;
        int highest = -1;
        bool hasCount = false;
        bool isListed = false;
        bool isMended = false;
        bool isSent = false;

        [[nodiscard]] bool isComplex() const
        {
            return object.record.objectCode == CANopen::ARRAY ||
                   object.record.objectCode == CANopen::RECORD;
        }
        [[nodiscard]] EdsObjectReader::Owner owner() const
        {
            const CANopen::CANopenIndex &record = object.record;
            return {record.index,
                    record.objectCode,
                    record.dataType,
                    record.name,
                    record.description,
                    static_cast<quint8>(std::max<int>({highest, int(record.compactSubObj), 0}))};
        }
    };

    EdsText text;
    ImportResult result;
    std::optional<EdsSections> sections;
    std::optional<EdsObjectReader> reader;
    QHash<quint16, Facts> objects;
    bool hasLists = false;
    mutable QHash<QByteArray, QHash<QByteArray, QString>> deviceSections;

    void collectObjects();
    void mendObject(Facts &facts);
    void chooseObjectCode(Facts &facts);
    void checkLists();
    void checkList(const char *name, bool mandatory);
    void tellWhatIsPassedOver();
    [[nodiscard]] quint32 countSubindices() const;
    [[nodiscard]] bool hasOneOf(std::initializer_list<const char *> names) const;
    [[nodiscard]] bool hasDeviceData() const;
    [[nodiscard]] bool describesObjects() const;
    [[nodiscard]] QMap<QString, QString> compactTexts(Kind kind, quint16 index) const;
    [[nodiscard]] const QHash<QByteArray, QString> &deviceSection(const QByteArray &name) const;
};

EdsParser::EdsParser(QObject *parent) : QObject(parent), d(std::make_unique<State>()) {}

EdsParser::~EdsParser() = default;

bool EdsParser::LoadEds(const QString &path)
{
    d = std::make_unique<State>();
    return parse(path, d->text.load(path));
}

bool EdsParser::LoadEdsContent(const QByteArray &content, const QString &name)
{
    d = std::make_unique<State>();
    return parse(name, d->text.setContent(content));
}

const ImportResult &EdsParser::result() const
{
    return d->result;
}

bool EdsParser::refuse(const QString &text)
{
    d->result.addError(d->result.located(0, text));
    return false;
}

bool EdsParser::parse(const QString &name, bool readable)
{
    m_stop = false;
    d->result = ImportResult(name);
    if (!readable)
        return refuse(d->text.error());
    if (const QString foreign = EdsForeign::byStart(d->text.head()); !foreign.isEmpty())
        return refuse(foreign);
    d->sections.emplace(d->text);
    d->reader.emplace(d->text, d->result);
    d->collectObjects();
    if (!d->describesObjects()) {
        if (const QString foreign = EdsForeign::bySections(d->text); !foreign.isEmpty())
            return refuse(foreign);
        if (!d->hasDeviceData())
            return refuse(EdsForeign::unknown());
    }
    if (d->countSubindices() > mostSubindices)
        return refuse(tr("The file describes more than %1 sub-indices, which no device has.")
                          .arg(mostSubindices));
    d->tellWhatIsPassedOver();
    d->checkLists();
    for (const EdsSections::Place &place : d->sections->objects())
        d->mendObject(d->objects[place.index]);
    return send();
}

bool EdsParser::State::hasOneOf(std::initializer_list<const char *> names) const
{
    return std::any_of(names.begin(), names.end(),
                       [this](const char *name) { return sections->common(name); });
}

/// Some device data alone may also be that of another kind of file.
bool EdsParser::State::hasDeviceData() const
{
    return hasOneOf({"fileinfo", "dummyusage", "comments"});
}

/// One object with what every object has makes a description, and so does each of the sections
/// that stand nowhere else.
bool EdsParser::State::describesObjects() const
{
    if (hasOneOf({"deviceinfo", "mandatoryobjects", "optionalobjects", "manufacturerobjects"}))
        return true;
    return std::any_of(objects.begin(), objects.end(),
                       [](const Facts &facts) { return facts.object.looksLikeObject; });
}

void EdsParser::State::collectObjects()
{
    for (const EdsSections::Place &place : sections->objects()) {
        const EdsText::Section &section = sections->section(place);
        Facts &facts = objects[place.index];
        if (facts.firstLine == 0)
            facts.firstLine = section.line;
        if (place.kind == Kind::Object) {
            facts.object = reader->readObject(section, place.index);
            facts.section = &section;
        } else {
            facts.object.record.index = place.index;
            ++facts.subCount;
            facts.highest = std::max<int>(facts.highest, place.subindex);
            facts.hasCount = facts.hasCount || place.subindex == 0;
        }
    }
}

quint32 EdsParser::State::countSubindices() const
{
    quint32 count = 0;
    for (const Facts &facts : objects)
        count += static_cast<quint32>(facts.subCount) + facts.object.record.compactSubObj + 1U;
    return count;
}

/// What contradicts the sections of its own subindices can't be right.
void EdsParser::State::chooseObjectCode(Facts &facts)
{
    CANopen::CANopenIndex &record = facts.object.record;
    const QString where = IndexText::hex(record.index);
    const bool hasEntries = facts.highest > 0 || record.compactSubObj > 0;
    const quint8 stated = record.objectCode;
    switch (stated) {
    case CANopen::ARRAY:
    case CANopen::RECORD:
    case CANopen::DEFSTRUCT:
        return;
    case CANopen::VAR:
    case CANopen::DOMAIN_OBJECT:
    case CANopen::DEFTYPE:
        if (hasEntries) {
            record.objectCode = CANopen::RECORD;
            result.add(Note::Mended, facts.firstLine,
                       facts.object.hasObjectType
                           ? tr("%1 is stated as no record or array but has sub-indices; it is "
                                "read as a record.")
                                 .arg(where)
                           : tr("%1 has sub-indices but no object type; it is read as a record.")
                                 .arg(where));
        }
        return;
    default:
        record.objectCode = hasEntries ? CANopen::RECORD : CANopen::VAR;
        result.add(Note::Mended, facts.firstLine,
                   tr("%1: the object type %2 is unknown; it is read as %3.")
                       .arg(where)
                       .arg(stated)
                       .arg(record.objectCode));
    }
}

void EdsParser::State::mendObject(Facts &facts)
{
    if (facts.isMended)
        return;
    facts.isMended = true;
    CANopen::CANopenIndex &record = facts.object.record;
    const QString where = IndexText::hex(record.index);
    if (!facts.section)
        result.add(Note::Made, facts.firstLine, tr("%1 has no section of its own.").arg(where));
    chooseObjectCode(facts);
    if (record.name.isEmpty()) {
        record.name = IndexText::unnamedObject;
        if (facts.section)
            result.add(Note::Made, facts.firstLine, tr("%1 has no name.").arg(where));
    }
    if (hasLists && !facts.isListed && record.index >= ObjectRanges::device.low)
        result.add(Note::Read, facts.firstLine, tr("%1 stands in no list of objects.").arg(where));
    if (!facts.isComplex())
        return;
    if (facts.subCount == 0 && record.compactSubObj == 0)
        result.add(Note::Read, facts.firstLine, tr("%1 has no sub-indices.").arg(where));
    const quint32 stated = facts.object.subNumber.value_or(quint32(facts.subCount));
    if (record.compactSubObj == 0 && stated != quint32(facts.subCount))
        result.add(Note::Mended, facts.firstLine,
                   tr("%1: SubNumber is %2, but the file has %3 sub-indices of it.")
                       .arg(where)
                       .arg(stated)
                       .arg(facts.subCount));
    if (facts.subCount > 0 && !facts.hasCount && record.compactSubObj == 0)
        result.add(Note::Made, facts.firstLine,
                   tr("%1 has no sub-index 0; it is made.").arg(where));
}

void EdsParser::State::checkList(const char *name, bool mandatory)
{
    const EdsText::Section *section = sections->common(QByteArray(name).toLower());
    if (!section)
        return;
    std::optional<quint32> stated;
    quint32 found = 0;
    text.forEachEntry(*section, [&](const EdsText::Entry &entry) {
        if (entry.key.compare("SupportedObjects", Qt::CaseInsensitive) == 0) {
            stated = EdsValue::number(entry.value);
            return;
        }
        const auto index = EdsValue::number(entry.value);
        if (!EdsValue::number(entry.key) || !index || *index > 0xFFFF) {
            if (!entry.value.isEmpty())
                result.add(Note::PassedOver, entry.line,
                           tr("[%1]: the line is no entry of the list and is passed "
                              "over.")
                               .arg(QLatin1String(name)));
            return;
        }
        ++found;
        const auto object = objects.find(static_cast<quint16>(*index));
        if (object == objects.end()) {
            result.add(Note::Lost, entry.line,
                       tr("[%1] lists %2, which the file does not describe.")
                           .arg(QLatin1String(name), IndexText::hex(static_cast<quint16>(*index))));
            return;
        }
        object->isListed = true;
        if (mandatory)
            object->object.record.category = CANopen::Mandatory;
    });
    if (stated.value_or(found) != found)
        result.add(Note::Read, section->line,
                   tr("[%1]: SupportedObjects is %2, but %3 objects are listed.")
                       .arg(QLatin1String(name))
                       .arg(*stated)
                       .arg(found));
}

void EdsParser::State::checkLists()
{
    hasLists = hasOneOf({"mandatoryobjects", "optionalobjects", "manufacturerobjects"});
    if (!hasLists && !objects.isEmpty())
        result.add(Note::Read, 0, tr("The file has no lists of its objects."));
    checkList("MandatoryObjects", true);
    checkList("OptionalObjects", false);
    checkList("ManufacturerObjects", false);
}

void EdsParser::State::tellWhatIsPassedOver()
{
    const QList<EdsText::Section> &all = text.sections();
    const auto nameOf = [&](const EdsText::Section &section) { return text.excerpt(section.name); };
    if (text.strayLine() > 0)
        result.add(Note::PassedOver, text.strayLine(),
                   tr("What stands before the first section is passed over."));
    for (const int line : text.longLines())
        result.add(Note::Lost, line,
                   tr("The line is longer than %1 characters and is passed over.")
                       .arg(EdsText::longestLine));
    for (const auto &[again, first] : sections->duplicates()) {
        const QString text =
            EdsSections::isJoined(all.at(again).name)
                ? tr("The section [%1] stands a second time and is joined with that in line %2.")
                : tr("The section [%1] stands a second time and is passed over; that in line %2 "
                     "counts.");
        result.add(EdsSections::isJoined(all.at(again).name) ? Note::Mended : Note::PassedOver,
                   all.at(again).line, text.arg(nameOf(all.at(again))).arg(all.at(first).line));
    }
    for (const EdsSections::Place &place : sections->passedOver()) {
        const EdsText::Section &section = all.at(place.section);
        if (place.kind == Kind::Module)
            result.add(Note::Lost, section.line,
                       tr("The section [%1] of a module is passed over.").arg(nameOf(section)));
        else if (place.kind == Kind::Unknown)
            result.add(Note::PassedOver, section.line,
                       tr("The section [%1] is unknown and is passed over.").arg(nameOf(section)));
    }
}

void EdsParser::sendObject(quint16 index)
{
    State::Facts &facts = d->objects[index];
    if (facts.isSent)
        return;
    facts.isSent = true;
    emit newIndex(facts.object.record);
    const EdsObjectReader::Owner owner = facts.owner();
    if (facts.isComplex()) {
        if (facts.subCount > 0 && !facts.hasCount && facts.object.record.compactSubObj == 0)
            emit newSubIndex(EdsObjectReader::countEntry(owner));
        return;
    }
    // A variable's value may stand in the section of a subindex 0 instead.
    const bool hasOwnValue = facts.section && (facts.object.hasDataType || !facts.hasCount);
    const quint8 code = facts.object.record.objectCode;
    if (hasOwnValue && (code == CANopen::VAR || code == CANopen::DOMAIN_OBJECT ||
                        (code == CANopen::DEFTYPE && facts.object.hasDataType)))
        emit newSubIndex(
            d->reader->readSubindex(*facts.section, owner, 0, EdsObjectReader::Telling::OfValues));
}

bool EdsParser::send()
{
    for (const EdsSections::Place &place : d->sections->objects()) {
        if (m_stop)
            return refuse(tr("The reading was stopped."));
        const State::Facts &facts = d->objects[place.index];
        if (place.kind == Kind::Object) {
            sendObject(place.index);
            continue;
        }
        if (!facts.section)
            sendObject(place.index);
        emit newSubIndex(d->reader->readSubindex(d->sections->section(place), facts.owner(),
                                                 place.subindex, EdsObjectReader::Telling::All));
    }
    d->reader->reportUnknownKeys();
    return true;
}

QMap<QString, QString> EdsParser::State::compactTexts(Kind kind, quint16 index) const
{
    QMap<QString, QString> texts;
    const EdsText::Section *section = sections ? sections->ofObject(kind, index) : nullptr;
    if (!section)
        return texts;
    text.forEachEntry(*section, [&](const EdsText::Entry &entry) {
        const auto subindex = EdsValue::number(entry.key);
        if (!subindex || *subindex == 0 || *subindex > EdsObjectReader::mostCompactEntries)
            return;
        const QString key = QString::number(*subindex);
        if (!texts.contains(key))
            texts.insert(key, text.decoded(entry.value));
    });
    return texts;
}

QMap<QString, QString> EdsParser::getCompactSubObjNames(quint16 index) const
{
    return d->compactTexts(Kind::Names, index);
}

QMap<QString, QString> EdsParser::getCompactSubObjValues(quint16 index) const
{
    QMap<QString, QString> values = d->compactTexts(Kind::Values, index);
    const quint16 dataType = d->objects.value(index).object.record.dataType;
    for (QString &value : values)
        value = EdsValue::value(dataType, value).text;
    return values;
}

QMap<QString, QString> EdsParser::getCompactSubObjDenotations(quint16 index) const
{
    return d->compactTexts(Kind::Denotation, index);
}

const QHash<QByteArray, QString> &EdsParser::State::deviceSection(const QByteArray &name) const
{
    const auto known = deviceSections.constFind(name);
    if (known != deviceSections.constEnd())
        return *known;
    QHash<QByteArray, QString> values;
    const auto parts = sections ? sections->joined(name) : QList<const EdsText::Section *>();
    for (const EdsText::Section *section : parts) {
        text.forEachEntry(*section, [&](const EdsText::Entry &entry) {
            const QByteArray key =
                entry.key.first(qMin<qsizetype>(entry.key.size(), 60)).toByteArray().toLower();
            if (values.size() >= mostDeviceValues || key.isEmpty() || values.contains(key))
                return;
            QByteArrayView value = entry.value;
            if (value.size() >= 2 && value.front() == '"' && value.back() == '"' &&
                value.sliced(1).indexOf('"') == value.size() - 2)
                value = value.sliced(1, value.size() - 2);
            values.insert(key, text.decoded(value));
        });
    }
    return *deviceSections.insert(name, values);
}

QString EdsParser::deviceValue(const QString &section, const QString &key) const
{
    return d->deviceSection(section.toLatin1().toLower()).value(key.toLatin1().toLower());
}

QString EdsParser::deviceComment() const
{
    const QHash<QByteArray, QString> &values = d->deviceSection("comments");
    // A count beyond the last line that is there would only add empty lines.
    int last = 0;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (it.key().startsWith("line"))
            last = std::max(last, it.key().mid(4).toInt());
    }
    const quint32 lines =
        EdsValue::number(values.value("lines").toLatin1()).value_or(quint32(last));
    last = std::min(last, mostCommentLines);
    QString comment;
    for (int i = 1; i <= last && quint32(i) <= lines; ++i)
        comment += values.value("line" + QByteArray::number(i)) + u'\n';
    return comment;
}
