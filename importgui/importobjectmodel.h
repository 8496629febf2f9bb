#pragma once

#include "import/objectcargo.h"

#include <QAbstractListModel>
#include <QColor>
#include <QSet>
#include <QSortFilterProxyModel>

/// The objects of a file as a list with check boxes, made for tens of thousands of rows. Objects
/// that the project has already are red, and a sign and the tool tip tell so too.
class ImportObjectModel : public QAbstractListModel
{
    Q_OBJECT

public:
    static constexpr int iconExtent = 14; ///< pixels
    enum Role : int { IndexRole = Qt::UserRole, ExistsRole };

    explicit ImportObjectModel(QObject *parent = nullptr);

    void setObjects(const QList<ObjectCargo::Object> &objects);
    [[nodiscard]] QString nameOf(int row) const { return m_rows.at(row).object.name; }

    /// Checks or unchecks rows, with one signal for all of them.
    void setChecked(const QList<int> &rows, bool checked);
    [[nodiscard]] bool isChecked(int row) const { return m_rows.at(row).isChecked; }
    [[nodiscard]] int checkedCount() const { return m_checkedCount; }
    /// The checked rows, ascending.
    [[nodiscard]] QList<int> checkedRows() const;
    /// What is to be taken over of the checked rows.
    [[nodiscard]] QList<ImportedItem> checkedItems() const;

    [[nodiscard]] const ImportedItem &item(int row) const { return m_rows.at(row).item; }
    /// Where an object is to go and what of it; the index in it is that of the row.
    void setItem(int row, const ImportedItem &item);
    /// The indices of the project's line; an object is red if its target is one of them.
    void setExisting(const QSet<quint16> &existing);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;

signals:
    void checkedCountChanged(int count);

private:
    struct Row
    {
        ObjectCargo::Object object;
        ImportedItem item;
        bool isChecked = false;
    };

    [[nodiscard]] static QString text(const Row &row);
    [[nodiscard]] static QString toolTip(const Row &row);

    QList<Row> m_rows;
    QSet<quint16> m_existing;
    int m_checkedCount = 0;
};

/// Shows the objects of a segment whose text contains what was typed.
class ImportObjectFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setText(const QString &text);
    /// Both ends inside.
    void setSegment(quint16 low, quint16 high);
    /// Rows of the source model that are shown.
    [[nodiscard]] QList<int> shownRows() const;

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    QString m_text;
    quint16 m_low = 0;
    quint16 m_high = 0xFFFF;
};
