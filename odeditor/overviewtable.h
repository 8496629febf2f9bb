#pragma once

#include "dictionary/editrights.h"

#include <QMap>
#include <QTableWidget>

#include <vector>

class WidgetDelegate;
struct DictionaryObject;

/// All subindices of an object, one a row. With editing switched on it holds what its user has
/// changed until the owner writes it.
class OverviewTable : public QTableWidget
{
    Q_OBJECT

public:
    using Record = ObjectDataBase::SUBINDEX_DATA_T;

    explicit OverviewTable(QWidget *parent = nullptr);

    /// Shows the object; what the user has changed is kept over it.
    void showObject(const DictionaryObject &object, const EditRights &rights);
    void setEditing(bool on);
    [[nodiscard]] bool isEditing() const { return m_isEditing; }
    void commitOpenEditor();
    /// What differs from the object as it was shown.
    [[nodiscard]] QMap<quint8, Record> changedRecords() const;
    /// Drops what the user has changed.
    void reset();

    /// Takes what the user has entered in a cell.
    void takeCell(int row, int column);
    /// Gives the other rows the value that the column has in the first: of the selected rows, or of
    /// all if no more than one is selected. Cells that can't be changed are left out.
    void copyDown(int column);
    /// Why the cell can't be changed; empty if it can.
    [[nodiscard]] QString refusal(int row, int column) const;
    [[nodiscard]] quint8 subindexAt(int row) const;

signals:
    void refused(const QString &reason);

private:
    struct Entry
    {
        quint8 subindex = 0;
        Record shown;
        Record record;
    };

    void showRow(int row);
    void showAll();

    quint16 m_index = 0;
    QString m_objectClass;
    EditRights m_rights;
    std::vector<Entry> m_entries;
    bool m_isEditing = false;
    bool m_isFilling = false;
    WidgetDelegate *m_delegate;
    QFont m_fixedFont;
};
