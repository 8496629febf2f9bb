#include "app/selectprotocoldialog.h"

#include "gui/guihelper.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

#include <array>

namespace {

struct Choice
{
    const char *objectName;
    const char *text;
    const char *toolTip;
    LineType::Number type;
};

constexpr std::array choices{
    Choice{"btnCANopen", "CANopen", "The line speaks CANopen.", LineType::CANopen},
    Choice{"btnJ1939", "J1939", "The line speaks J1939.", LineType::J1939},
    Choice{"btnCAN", "CAN only", "The line sends and receives plain CAN messages.",
           LineType::RawCan},
    Choice{"btnCANopenJ1939", "both\nCANopen/J1939", "The line speaks CANopen and J1939.",
           LineType::CANopenJ1939},
    Choice{"btnCANopenCAN", "CANopen\n+ CAN",
           "The line speaks CANopen, and plain CAN messages beside it.", LineType::CANopenRawCan},
    Choice{"btnJ1939CAN", "J1939\n+ CAN",
           "The line speaks J1939, and plain CAN messages beside it.", LineType::J1939RawCan},
};
constexpr int columns = 3;
constexpr QSize buttonSize(136, 64);

} // namespace

SelectProtocolDialog::SelectProtocolDialog(const QString &question, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(GuiHelper::boxTitle());
    auto *grid = new QGridLayout(this);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    grid->addWidget(new QLabel(question, this), 0, 0, 1, columns);
    for (int i = 0; i < int(choices.size()); ++i) {
        const Choice &choice = choices[size_t(i)];
        auto *button = new QPushButton(QString::fromLatin1(choice.text), this);
        button->setObjectName(QLatin1String(choice.objectName));
        button->setToolTip(QString::fromLatin1(choice.toolTip));
        button->setMinimumSize(buttonSize);
        connect(button, &QPushButton::clicked, this, [this, type = choice.type] {
            m_lineType = type;
            accept();
        });
        grid->addWidget(button, 1 + i / columns, i % columns);
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    grid->addWidget(buttons, 1 + int(choices.size()) / columns, 0, 1, columns);
}

int SelectProtocolDialog::ask(const QString &question, QWidget *parent)
{
    SelectProtocolDialog dialog(question, parent);
    return GuiHelper::execDialog(dialog) == QDialog::Accepted ? dialog.lineType()
                                                              : int(LineType::Unknown);
}
