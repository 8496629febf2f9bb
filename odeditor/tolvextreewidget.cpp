#include "odeditor/tolvextreewidget.h"

#include "store/usersettings.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMetaMethod>

TolvexTreeWidget::TolvexTreeWidget(const QString &name, QWidget *parent) : QTreeWidget(parent)
{
    setObjectName(name);
}

QString TolvexTreeWidget::settingKey() const
{
    return QStringLiteral("Env/%1_KeyboardNav").arg(objectName());
}

bool TolvexTreeWidget::hasKeyboardNavigation() const
{
    const QVariant own = UserSettings().value(settingKey());
    return own.isValid() ? own.toBool()
                         : UserSettings::general(QStringLiteral("keyboardnavigation")).toBool();
}

void TolvexTreeWidget::setKeyboardNavigation(bool on)
{
    UserSettings().setValue(settingKey(), on);
}

void TolvexTreeWidget::addViewActions(QMenu &menu)
{
    connect(menu.addAction(QStringLiteral("Collapse all")), &QAction::triggered, this,
            &QTreeWidget::collapseAll);
    connect(menu.addAction(QStringLiteral("Expand all")), &QAction::triggered, this, [this] {
        emit aboutToExpandAll();
        expandAll();
    });
    QAction *navigation = menu.addAction(QStringLiteral("Keyboard navigation"));
    navigation->setToolTip(
        QStringLiteral("Navigate through the object browser with the keyboard."));
    navigation->setCheckable(true);
    navigation->setChecked(hasKeyboardNavigation());
    connect(navigation, &QAction::toggled, this, &TolvexTreeWidget::setKeyboardNavigation);
}

void TolvexTreeWidget::contextMenuEvent(QContextMenuEvent *event)
{
    QPoint point = event->pos();
    if (event->reason() == QContextMenuEvent::Keyboard && currentItem() != nullptr) {
        scrollToItem(currentItem());
        point = visualItemRect(currentItem()).center();
    }
    if (isSignalConnected(QMetaMethod::fromSignal(&QWidget::customContextMenuRequested))) {
        emit customContextMenuRequested(point);
        return;
    }
    QMenu menu(this);
    menu.setToolTipsVisible(true);
    addViewActions(menu);
    menu.exec(viewport()->mapToGlobal(point));
}

void TolvexTreeWidget::keyPressEvent(QKeyEvent *event)
{
    const QTreeWidgetItem *former = currentItem();
    QTreeWidget::keyPressEvent(event);
    if (currentItem() != former && currentItem() != nullptr && hasKeyboardNavigation())
        emit itemSelectionHasChanged();
}
