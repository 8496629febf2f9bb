#pragma once

#include <QTreeWidget>

class QMenu;

/// A tree beside a pane, with commands on its view: expanding, collapsing, and whether the keyboard
/// navigates through it.
///
/// Without keyboard navigation the arrows move the cursor only, and Enter shows what is there. The
/// state is a user setting, told by the name of the tree.
class TolvexTreeWidget : public QTreeWidget
{
    Q_OBJECT

public:
    /// `name` is the tree's object name, under which its settings are kept.
    explicit TolvexTreeWidget(const QString &name, QWidget *parent = nullptr);

    [[nodiscard]] bool hasKeyboardNavigation() const;
    /// "Collapse all", "Expand all" and "Keyboard navigation". They belong to the menu.
    void addViewActions(QMenu &menu);

signals:
    /// The keyboard has moved to another item, which counts as a click.
    void itemSelectionHasChanged();
    /// Many items are about to be expanded.
    void aboutToExpandAll();

protected:
    /// Sends `customContextMenuRequested` with a point in the viewport, at the current item for the
    /// menu key; shows the commands on the view if nobody listens.
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    [[nodiscard]] QString settingKey() const;
    void setKeyboardNavigation(bool on);
};
