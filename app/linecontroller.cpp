#include "app/linecontroller.h"

#include "app/linebox.h"
#include "app/selectprotocoldialog.h"
#include "app/waitcursor.h"
#include "app/windowcontext.h"
#include "canopen/linetype.h"
#include "gui/guihelper.h"
#include "session/projectlines.h"
#include "session/projectsession.h"
#include "store/edition.h"
#include "store/objectdatabase.h"

namespace {

const QString protocolQuestion = QStringLiteral("Select CAN protocol for line %1:");

} // namespace

LineController::LineController(WindowContext &context) : m_context(context) {}

ObjectDataBase &LineController::store() const
{
    return m_context.session().store();
}

void LineController::choose(int entry)
{
    switch (entry) {
    case LineBox::Add:
        addLine();
        break;
    case LineBox::Duplicate:
        duplicateLine();
        break;
    case LineBox::Delete:
        deleteLine();
        break;
    case LineBox::ChangeType:
        changeType();
        break;
    default:
        if (entry != m_context.currentLine()) {
            m_context.storePendingInput();
            m_context.selectLine(quint8(entry));
        }
        return;
    }
    // A flow is no line that the box could go on showing.
    m_context.updateLinesComboBox();
}

bool LineController::mayAdd()
{
    if (ProjectLines::mayAdd(store()))
        return true;
    GuiHelper::showMessageBox(m_context.widget(), GuiHelper::boxTitle(),
                              QStringLiteral("The maximum number of %1 lines has been reached.")
                                  .arg(ObjectDataBase::maximumLines));
    return false;
}

void LineController::addLine()
{
    if (!mayAdd())
        return;
    const quint8 line = quint8(ProjectLines::highest(store()) + 1);
    if (!m_context.askYesNo(QStringLiteral("Do you want to add a new line?"),
                            tr("It becomes line %1.").arg(line))) {
        return;
    }
    int type = Edition::defaultLineType();
    if (Edition::isCan()) {
        type = SelectProtocolDialog::ask(protocolQuestion.arg(line), m_context.widget());
        if (type == LineType::Unknown)
            return;
    }
    m_context.storePendingInput();
    const QString error = ProjectLines::add(store(), line, type, m_library);
    if (error.isEmpty())
        m_context.selectLine(line);
    else
        m_context.showError(error);
}

void LineController::duplicateLine()
{
    if (!mayAdd())
        return;
    const quint8 last = ProjectLines::highest(store());
    const quint8 line = quint8(last + 1);
    if (!m_context.askYesNo(QStringLiteral("Do you want to duplicate the last line?"),
                            tr("%1. The copy becomes line %2.")
                                .arg(ProjectLines::label(store(), last))
                                .arg(line))) {
        return;
    }
    m_context.storePendingInput();
    QString error;
    {
        const WaitCursor cursor;
        error = ProjectLines::duplicate(store(), last, line);
    }
    if (error.isEmpty())
        m_context.selectLine(line);
    else
        m_context.showError(error);
}

void LineController::deleteLine()
{
    const quint8 last = ProjectLines::highest(store());
    if (last == 0) {
        GuiHelper::showMessageBox(m_context.widget(), GuiHelper::boxTitle(),
                                  QStringLiteral("Line 0 cannot be deleted."));
        return;
    }
    if (!m_context.askYesNo(
            QStringLiteral("Do you want to delete this line?"),
            tr("%1, with everything that it has.").arg(ProjectLines::label(store(), last)),
            QMessageBox::No)) {
        return;
    }
    m_context.storePendingInput();
    if (const QString error = ProjectLines::remove(store(), last); !error.isEmpty())
        m_context.showError(error);
    else if (m_context.currentLine() == last)
        m_context.selectLine(ProjectLines::highest(store()));
}

void LineController::changeType()
{
    const quint8 line = m_context.currentLine();
    if (!m_context.askYesNo(
            QStringLiteral("Do you want to add change the type of line %1?").arg(line))) {
        return;
    }
    const int type = SelectProtocolDialog::ask(protocolQuestion.arg(line), m_context.widget());
    if (type == LineType::Unknown)
        return;
    m_context.storePendingInput();
    ProjectLines::setType(store(), line, type);
    m_context.selectLine(line);
}

void LineController::showNewLine(const QList<quint8> &formerLines)
{
    m_context.updateLinesComboBox();
    const QList<quint8> lines = ProjectLines::of(store());
    if (!lines.isEmpty() && !formerLines.contains(lines.last()))
        m_context.selectLine(lines.last());
}
