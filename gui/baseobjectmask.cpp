#include "gui/baseobjectmask.h"

#include "canopen/indextext.h"
#include "gui/guihelper.h"

#include <QComboBox>
#include <QCoreApplication>

BaseObjectMask::BaseObjectMask(QWidget *parent) : BaseTreeForm(parent) {}

bool BaseObjectMask::setDatabase(const std::shared_ptr<ObjectDataBase> &database)
{
    if (database == nullptr)
        return false;
    m_context.project = database;
    return true;
}

bool BaseObjectMask::confirmOverwrite(quint8 line, quint16 objectIndex)
{
    if (database() == nullptr || !database()->indexExists(line, objectIndex))
        return true;
    const int answer = GuiHelper::showMessageBox(
        this, {.title = QCoreApplication::applicationName(),
               .text = QStringLiteral("The existing index %1 must be overwritten. Proceed?")
                           .arg(IndexText::hex(objectIndex)),
               .informativeText = {},
               .buttons = QMessageBox::Yes | QMessageBox::No,
               .icon = QMessageBox::Warning,
               .defaultButton = QMessageBox::Yes,
               .extraButtons = {}});
    return answer != QMessageBox::No;
}

bool BaseObjectMask::selectComboItemByData(QComboBox *comboBox, const QVariant &value,
                                           int *position)
{
    if (comboBox == nullptr || !selectComboItem(*comboBox, value))
        return false;
    if (position != nullptr)
        *position = comboBox->currentIndex();
    return true;
}

void BaseObjectMask::setExpertFlag(bool flag)
{
    m_expert = flag;
}
