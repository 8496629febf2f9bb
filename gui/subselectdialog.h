#pragma once

#include <QDialog>
#include <QList>
#include <QString>

#include <utility>

class ObjectDataBase;
class QComboBox;
class QDialogButtonBox;
class QListWidget;

/// Asks for subindices: which ones of an object to take, or where a subindex is to go.
class SubSelectDialog : public QDialog
{
    Q_OBJECT

public:
    /// Which of these subindices to take, numbers with names, ascending. Those in `chosen` are
    /// checked; all are if it is empty.
    SubSelectDialog(const QString &objectText, const QList<std::pair<quint8, QString>> &subindices,
                    const QList<quint8> &chosen, QWidget *parent = nullptr);
    /// Where a subindex is to go: a line of the project, an array or a record in it, and one of the
    /// object's free subindices. The lines from 240 on are none of the user's.
    SubSelectDialog(ObjectDataBase &store, quint8 line, quint16 index, QWidget *parent = nullptr);

    /// Ascending; empty if all are wanted.
    [[nodiscard]] QList<quint8> chosenSubindices() const;
    [[nodiscard]] quint8 targetLine() const;
    [[nodiscard]] quint16 targetIndex() const;
    [[nodiscard]] quint8 targetSubindex() const;

private:
    void addButtons();
    void setAllChecked(Qt::CheckState state);
    void fillObjects();
    void fillSubindices();
    void updateOk();

    ObjectDataBase *m_store = nullptr; ///< of the question for a place
    QListWidget *m_list = nullptr;
    QComboBox *m_line = nullptr;
    QComboBox *m_object = nullptr;
    QComboBox *m_subindex = nullptr;
    QDialogButtonBox *m_buttons = nullptr;
};
