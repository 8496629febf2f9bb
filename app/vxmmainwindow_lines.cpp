#include "app/vxmmainwindow.h"
#include "dictionary/objectwalk.h"

#include "app/linebox.h"
#include "app/selectprotocoldialog.h"
#include "canopen/linetype.h"
#include "gui/guihelper.h"
#include "store/edition.h"
#include "ui_vxmmainwindow.h"

#include <algorithm>

namespace {

constexpr quint8 firstScratchLine = 240; ///< lines from here on are none of the user's
constexpr quint16 errorRegister = 0x1001;

QString typeKey(quint8 line)
{
    return QStringLiteral("line%1type").arg(line);
}

} // namespace

QList<quint8> VxmMainWindow::projectLines() const
{
    QList<quint8> lines = m_database->getLines();
    lines.removeIf([](quint8 line) { return line >= firstScratchLine; });
    std::sort(lines.begin(), lines.end());
    return lines;
}

quint8 VxmMainWindow::highestLine() const
{
    const QList<quint8> lines = projectLines();
    return lines.isEmpty() ? quint8(0) : lines.last();
}

void VxmMainWindow::handleLineChanged(int value)
{
    if (value < 0)
        return;
    const int chosen = ui->mpSelectLine->itemData(value).toInt();
    switch (chosen) {
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
        changeLineType();
        break;
    default:
        if (chosen != m_line) {
            storePendingInput();
            selectLine(quint8(chosen));
        }
        return;
    }
    updateLinesComboBox();
}

/// As the box with the lines names it.
QString VxmMainWindow::lineLabel(quint8 line) const
{
    const LineType &type = LineType::of(m_database->getLineType(line));
    return QStringLiteral("Line %1 - %2").arg(line).arg(QLatin1String(type.label));
}

bool VxmMainWindow::askYesNo(const QString &question, const QString &explanation,
                             QMessageBox::StandardButton defaultButton)
{
    return GuiHelper::showMessageBox(this, {.title = GuiHelper::boxTitle(),
                                            .text = question,
                                            .informativeText = explanation,
                                            .buttons = QMessageBox::Yes | QMessageBox::No,
                                            .icon = QMessageBox::Question,
                                            .defaultButton = defaultButton,
                                            .extraButtons = {}}) == QMessageBox::Yes;
}

int VxmMainWindow::askLineType(const QString &question)
{
    SelectProtocolDialog dialog(question, this);
    return GuiHelper::execDialog(dialog) == QDialog::Accepted ? dialog.lineType()
                                                              : int(LineType::Unknown);
}

bool VxmMainWindow::mayAddLine()
{
    if (projectLines().size() < ObjectDataBase::maximumLines)
        return true;
    GuiHelper::showMessageBox(this, GuiHelper::boxTitle(),
                              QStringLiteral("The maximum number of %1 lines has been reached.")
                                  .arg(ObjectDataBase::maximumLines));
    return false;
}

bool VxmMainWindow::makeLine(quint8 line, int type)
{
    m_database->setGeneralSetting(typeKey(line), QString::number(type));
    if (m_database->addNode(line, ObjectDataBase::NODE_DATA_T()))
        return true;
    showError(QStringLiteral("Line %1 cannot be added.").arg(line), m_database->lastErrorText());
    return false;
}

void VxmMainWindow::addLine()
{
    if (!mayAddLine())
        return;
    const quint8 line = quint8(highestLine() + 1);
    if (!askYesNo(QStringLiteral("Do you want to add a new line?"),
                  tr("It becomes line %1.").arg(line))) {
        return;
    }
    int type = Edition::defaultLineType();
    if (Edition::isCan()) {
        type = askLineType(QStringLiteral("Select CAN protocol for line %1:").arg(line));
        if (type == LineType::Unknown)
            return;
    }
    storePendingInput();
    if (!makeLine(line, type))
        return;
    copyStandardObjects(line);
    selectLine(line);
}

void VxmMainWindow::copyStandardObjects(quint8 line)
{
    if (m_database->indexExists(0, errorRegister)) {
        for (const quint16 index : m_database->getIndices(0, ObjectRanges::manufacturer.low)) {
            if (readDictionaryObject(*m_database, 0, index).isShared())
                m_database->copyIndex(0, index, line, index);
        }
        return;
    }
    if (m_library == nullptr || !m_library->lineExists(ObjectDataBase::stagingLine))
        return;
    for (const quint16 index : m_library->getIndices(ObjectDataBase::stagingLine)) {
        ObjectDataBase::INDEX_DATA_T data;
        if (m_library->getIndexData(ObjectDataBase::stagingLine, index, data) &&
            data.category == CANopen::Mandatory) {
            m_database->copyIndex(ObjectDataBase::stagingLine, index, line, index, m_library.get());
        }
    }
}

void VxmMainWindow::duplicateLine()
{
    if (!mayAddLine())
        return;
    const quint8 last = highestLine();
    const quint8 line = quint8(last + 1);
    if (!askYesNo(QStringLiteral("Do you want to duplicate the last line?"),
                  tr("%1. The copy becomes line %2.").arg(lineLabel(last)).arg(line))) {
        return;
    }
    storePendingInput();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool made = makeLine(line, m_database->getLineType(last)) &&
                      ObjectDataBase::copyLine(*m_database, *m_database, last, line);
    QApplication::restoreOverrideCursor();
    if (made)
        selectLine(line);
}

void VxmMainWindow::deleteLine()
{
    const quint8 last = highestLine();
    if (last == 0) {
        GuiHelper::showMessageBox(this, GuiHelper::boxTitle(),
                                  QStringLiteral("Line 0 cannot be deleted."));
        return;
    }
    if (!askYesNo(QStringLiteral("Do you want to delete this line?"),
                  tr("%1, with everything that it has.").arg(lineLabel(last)), QMessageBox::No)) {
        return;
    }
    storePendingInput();
    if (!m_database->deleteNode(last))
        showError(QStringLiteral("Line %1 cannot be deleted.").arg(last));
    else if (m_line == last)
        selectLine(highestLine());
}

void VxmMainWindow::changeLineType()
{
    if (!askYesNo(QStringLiteral("Do you want to add change the type of line %1?").arg(m_line)))
        return;
    const int type = askLineType(QStringLiteral("Select CAN protocol for line %1:").arg(m_line));
    if (type == LineType::Unknown)
        return;
    storePendingInput();
    m_database->setGeneralSetting(typeKey(m_line), QString::number(type));
    selectLine(m_line);
}
