#pragma once

#include "store/objectdatabase.h"

#include <QWidget>

#include <memory>

class QPushButton;
class QTableWidget;
class WidgetDelegate;

/// Key and value pairs that generators and documents read, of an object or a subindex.
class MetaDataForm : public QWidget
{
    Q_OBJECT

public:
    explicit MetaDataForm(QWidget *parent = nullptr);

    /// Where entries to offer come from.
    void setStore(const std::shared_ptr<ObjectDataBase> &store) { m_store = store; }
    void setMetaData(const ObjectDataBase::MetaData &entries);
    [[nodiscard]] ObjectDataBase::MetaData metaData() const { return m_entries; }
    void setReadOnly(bool on);
    void commitOpenEditor();

    /// False, and nothing changed, for an empty key and one that exists.
    bool addEntry(const QString &key, const QString &value = QString());

public slots:
    void on_btnAddEntry_clicked();
    void deleteEntry();
    /// Keeps key and value of the current row for the next forms.
    void copyEntry();
    void pasteEntry();
    /// Adds an entry that is used elsewhere in the project; the key and value of the action's data.
    void insertExistingMetaData();
    void displayContextMenu(const QPoint &pos);

signals:
    /// By the user.
    void changed();

private:
    void fill();
    void takeCell(int row, int column);
    [[nodiscard]] QString currentKey() const;
    [[nodiscard]] QList<std::pair<QString, QString>> existingEntries() const;

    std::shared_ptr<ObjectDataBase> m_store;
    ObjectDataBase::MetaData m_entries;
    bool m_isReadOnly = false;
    QTableWidget *m_table;
    WidgetDelegate *m_delegate;
    QPushButton *m_add;
};
