#pragma once

#include "store/objectdatabase.h"

#include <QWidget>

#include <memory>

class QComboBox;

/// The pane beside the tree of a page; lives as long as one selection of that tree.
///
/// The owner of the tree makes a new pane for a new selection. Before it deletes the old one it
/// calls its `saveData`, so moving on saves, and no pane has a button for that.
class BaseTreeForm : public QWidget
{
    Q_OBJECT

public:
    explicit BaseTreeForm(QWidget *parent = nullptr);

    /// Writes what the widgets hold to the store, if that is another value.
    virtual void saveData() = 0;
    /// Fills the widgets from the store.
    virtual void updateData() = 0;

    /// Selects the first item with that user data; false, and the selection untouched, if no item
    /// has it.
    static bool selectComboItem(QComboBox &comboBox, const QVariant &data);
    /// Offers the data types of an object, with their numbers as user data and an icon for their
    /// kind. Objects of the class "EtherCAT" may have the bit-sized types, too. What the box held
    /// is replaced; it sends no signals.
    static void fillDataTypes(QComboBox &comboBox, const QString &objectClass = QString());

protected:
    [[nodiscard]] ObjectDataBase *database() const { return m_database.get(); }

    quint8 m_line = 0;
    std::shared_ptr<ObjectDataBase> m_database;
    bool m_canEdit = true;
    quint16 m_index = 0; ///< the object that is shown
};
