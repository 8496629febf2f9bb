#include "gui/basemainform.h"

#include "gui/guihelper.h"

#include <tuple>
#include <utility>

namespace {

constexpr int quietMilliseconds = 50;

auto fields(const ObjectDataBase::ChangeSet &change)
{
    return std::tie(change.kind, change.index, change.subindex, change.line, change.pgn, change.spn,
                    change.canid, change.element, change.direction);
}

} // namespace

BaseMainForm::BaseMainForm(QWidget *parent) : QWidget(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(quietMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, &BaseMainForm::updateTimerSlot);
}

bool BaseMainForm::setDatabase(const std::shared_ptr<ObjectDataBase> &database)
{
    if (database == nullptr)
        return false;
    if (m_context.project != nullptr)
        disconnect(m_context.project.get(), nullptr, this, nullptr);
    m_context.project = database;
    connect(database.get(), &ObjectDataBase::updateNotify, this, &BaseMainForm::updateDataSlot);
    emit newDatabase();
    return true;
}

void BaseMainForm::setContext(const FormContext &context)
{
    const std::shared_ptr<ObjectDataBase> project = m_context.project;
    m_context = context;
    m_context.project = project;
}

void BaseMainForm::doAction(int)
{
    GuiHelper::showMessageBox(this, QStringLiteral("Not supported."),
                              QStringLiteral("This action is not supported in this form."),
                              QString(), QMessageBox::Ok, QMessageBox::Warning);
}

bool BaseMainForm::canDoAction(int) const
{
    return false;
}

void BaseMainForm::updateDataSlot(ObjectDataBase::ChangeSet modification)
{
    if (m_guard)
        return;
    if (m_pending && fields(*m_pending) == fields(modification)) {
        m_timer.start();
        return;
    }
    // Noted before the former one is delivered: a form that writes meanwhile comes by here again.
    const std::optional<ObjectDataBase::ChangeSet> former = std::exchange(m_pending, modification);
    m_timer.start();
    if (former)
        updateData(*former);
}

void BaseMainForm::updateTimerSlot()
{
    if (m_pending)
        updateData(*std::exchange(m_pending, std::nullopt));
}
