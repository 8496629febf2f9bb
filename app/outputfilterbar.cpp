#include "app/outputfilterbar.h"

#include "gui/guihelper.h"
#include "gui/lineicon.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

#include <array>

namespace {

struct Toggle
{
    OutputClass::Kind kind;
    const char *objectName;
    QStyle::StandardPixmap icon;
    const char *one;
    const char *many;
    const char *toolTip;
};

constexpr std::array toggles{
    Toggle{OutputClass::Kind::Error, "btnErrors", QStyle::SP_MessageBoxCritical,
           QT_TRANSLATE_NOOP("OutputFilterBar", "%1 error"),
           QT_TRANSLATE_NOOP("OutputFilterBar", "%1 errors"),
           QT_TRANSLATE_NOOP("OutputFilterBar", "Show only the errors of the last run")},
    Toggle{OutputClass::Kind::Warning, "btnWarnings", QStyle::SP_MessageBoxWarning,
           QT_TRANSLATE_NOOP("OutputFilterBar", "%1 warning"),
           QT_TRANSLATE_NOOP("OutputFilterBar", "%1 warnings"),
           QT_TRANSLATE_NOOP("OutputFilterBar", "Show only the warnings of the last run")},
    Toggle{OutputClass::Kind::Note, "btnNotes", QStyle::SP_MessageBoxInformation,
           QT_TRANSLATE_NOOP("OutputFilterBar", "%1 note"),
           QT_TRANSLATE_NOOP("OutputFilterBar", "%1 notes"),
           QT_TRANSLATE_NOOP("OutputFilterBar",
                             "Show only the notes, hints and corrections of the last run")},
};

} // namespace

OutputFilterBar::OutputFilterBar(QWidget *parent) : QWidget(parent)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    for (const Toggle &toggle : toggles) {
        auto *button = new QPushButton(this);
        button->setObjectName(QLatin1String(toggle.objectName));
        button->setCheckable(true);
        button->setIcon(style()->standardIcon(toggle.icon, nullptr, this));
        button->setToolTip(tr(toggle.toolTip));
        connect(button, &QPushButton::toggled, this, &OutputFilterBar::chosenChanged);
        row->addWidget(button);
        m_toggles.insert(toggle.kind, button);
    }
    row->addSpacing(8);
    m_previous =
        addStep(QStringLiteral("btnPreviousMessage"), QStringLiteral("up"),
                GuiHelper::withShortcut(tr("Previous error, warning or note"), previousMessage()));
    m_next = addStep(QStringLiteral("btnNextMessage"), QStringLiteral("down"),
                     GuiHelper::withShortcut(tr("Next error, warning or note"), nextMessage()));
    connect(m_previous, &QToolButton::clicked, this, &OutputFilterBar::previousRequested);
    connect(m_next, &QToolButton::clicked, this, &OutputFilterBar::nextRequested);
    setCounts({});
}

QToolButton *OutputFilterBar::addStep(const QString &objectName, const QString &icon,
                                      const QString &toolTip)
{
    auto *button = new QToolButton(this);
    button->setObjectName(objectName);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setIcon(LineIcon::icon(icon));
    button->setToolTip(toolTip);
    const int side = m_toggles.first()->sizeHint().height();
    button->setFixedSize(side, side);
    layout()->addWidget(button);
    return button;
}

void OutputFilterBar::setCounts(const QMap<OutputClass::Kind, int> &counts)
{
    int all = 0;
    for (const Toggle &toggle : toggles) {
        const int count = counts.value(toggle.kind);
        QPushButton *button = m_toggles.value(toggle.kind);
        button->setText(tr(count == 1 ? toggle.one : toggle.many).arg(count));
        // One that is pressed can always be let go.
        button->setEnabled(count > 0 || button->isChecked());
        all += count;
    }
    m_previous->setEnabled(all > 0);
    m_next->setEnabled(all > 0);
}

QSet<OutputClass::Kind> OutputFilterBar::chosen() const
{
    QSet<OutputClass::Kind> kinds;
    for (auto it = m_toggles.begin(); it != m_toggles.end(); ++it) {
        if ((*it)->isChecked())
            kinds.insert(it.key());
    }
    return kinds;
}
