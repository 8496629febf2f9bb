#pragma once

#include "compare/projectcomparison.h"

#include <QDialog>

#include <memory>

class QTableWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace Ui {
class ProjectDiffDialog;
}

/// Shows what differs between the open project and another one.
///
/// Lists and tables are filled when the dialog is first shown, so that it can also be asked for
/// the count alone.
class ProjectDiffDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ProjectDiffDialog(QWidget *parent = nullptr);
    ~ProjectDiffDialog() override;

    /// Compares the projects and gives the number of differences. Both stores are kept until
    /// `release` or the next comparison; neither is changed. `otherName` tells the user what the
    /// current project is compared with.
    int compare(const std::shared_ptr<ObjectDataBase> &current,
                const std::shared_ptr<ObjectDataBase> &other, const QString &otherName);
    /// Lets the stores go; the dialog is empty then.
    void release();

public slots:
    void on_cbInternal_clicked(bool checked);
    void on_cbOnlyDifferences_clicked();
    void on_cbLines_currentIndexChanged(int index);
    void on_edtFilter_textChanged();
    void on_treeWidget_itemActivated(QTreeWidgetItem *item, int column);
    void on_treeWidget_itemClicked(QTreeWidgetItem *item, int column);
    void on_treePGN_itemActivated(QTreeWidgetItem *item, int column);
    void on_treePGN_itemClicked(QTreeWidgetItem *item, int column);
    void on_treeCANID_itemActivated(QTreeWidgetItem *item, int column);
    void on_treeCANID_itemClicked(QTreeWidgetItem *item, int column);

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void prepareViews();
    void fill();
    void fillLines();
    void fillTrees();
    void fillSettings();
    void showTabs();
    void showResult();
    void selectFirstDifference();
    [[nodiscard]] int countShownIn(const QWidget *page) const;
    void addItems(QTreeWidget &tree, QTreeWidgetItem *group, const QList<DiffItem> &items);
    [[nodiscard]] QTreeWidgetItem *makeRow(const DiffItem &item);
    void addParts(QTreeWidgetItem *row);
    void showPair(QTreeWidgetItem *row, QTableWidget &table);
    void applyFilter();
    [[nodiscard]] quint8 shownLine() const;

    std::unique_ptr<Ui::ProjectDiffDialog> ui;
    std::shared_ptr<ObjectDataBase> m_current;
    std::shared_ptr<ObjectDataBase> m_other;
    std::unique_ptr<ProjectComparison> m_comparison; ///< null while there is nothing to compare
    bool m_filled = false;
};
