#include "check/modelchecker.h"

#include "check/commonmessages.h"
#include "store/objectdatabase.h"

#include <iterator>

namespace {

struct PassRow
{
    std::unique_ptr<CheckPass> (*make)();
    /// The lines that it looks at; null for a pass over the project alone.
    bool LineType::*protocol;
};

/// In the order in which a log shows their messages.
constexpr PassRow passRows[] = {
    {makeUdsPass, nullptr},
    {makeCommonPass, nullptr},
    {makeCanopenPass, &LineType::hasCANopen},
};

} // namespace

QList<quint8> CheckContext::lines() const
{
    QList<quint8> all = database.getLines();
    all.removeIf([](quint8 line) { return line >= ObjectDataBase::maximumLines; });
    return all;
}

ModelChecker::ModelChecker(QObject *parent)
    : QObject(parent),
      m_sink([this](const CheckFinding &finding) { emit newError(finding.text()); })
{
    for (const PassRow &row : passRows)
        m_passes.push_back(row.make());
}

ModelChecker::~ModelChecker() = default;

CheckContext ModelChecker::contextOf(ObjectDataBase &database, bool *changed)
{
    return {.database = database,
            .settings = ProjectSettings(database),
            .sink = m_sink,
            .projectPath = m_projectPath,
            .changed = changed};
}

int ModelChecker::checkProject(ObjectDataBase *database, const QString &projectPath)
{
    m_projectPath = projectPath;
    if (database == nullptr)
        return 0;
    loadSuppressedGroups(database);
    const int before = m_sink.errorCount();
    const CheckContext context = contextOf(*database);
    for (const auto &pass : m_passes)
        pass->checkProject(context);
    return m_sink.errorCount() - before;
}

int ModelChecker::checkLine(quint8 line, ObjectDataBase *database, bool *changed)
{
    const int number = database != nullptr ? database->getLineType(line) : LineType::Unknown;
    return runLinePasses(LineType::of(number), line, database, changed);
}

int ModelChecker::checkCANopenLine(quint8 line, ObjectDataBase *database, bool *changed)
{
    return runLinePasses(LineType::of(LineType::CANopen), line, database, changed);
}

int ModelChecker::runLinePasses(const LineType &type, quint8 line, ObjectDataBase *database,
                                bool *changed)
{
    if (database == nullptr)
        return 0;
    loadSuppressedGroups(database);
    const int before = m_sink.errorCount();
    const CheckContext context = contextOf(*database, changed);
    if (type.number == LineType::Unknown)
        m_sink.report(CommonMessage::LineTypeMissing, {QString::number(line)},
                      {.line = line, .field = LineType::settingKey(line)});
    for (std::size_t i = 0; i < std::size(passRows); ++i)
        if (passRows[i].protocol != nullptr && type.*(passRows[i].protocol))
            m_passes[i]->checkLine(context, line);
    return m_sink.errorCount() - before;
}

void ModelChecker::loadSuppressedGroups(ObjectDataBase *database)
{
    if (database != nullptr)
        m_sink.suppress(::parseWarningGroups(database->getMiscSetting(SuppressedWarningGroups)));
}

void ModelChecker::addGroupWarning(quint8 group, const QString &text)
{
    if (m_sink.isSuppressed(group))
        m_sink.countSuppressed(group);
    else
        emit newError(text);
}

void ModelChecker::addGroupNote(quint8 group, const QString &text)
{
    if (!m_sink.isSuppressed(group))
        emit newError(text);
}
