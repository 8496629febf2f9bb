#pragma once

#include <QDialog>
#include <QList>

class QComboBox;

/// Asks which number a new subindex is to have.
class SelectSubindexDialog : public QDialog
{
    Q_OBJECT

public:
    /// `numbers` are the ones on offer, at least one.
    explicit SelectSubindexDialog(const QList<quint8> &numbers, QWidget *parent = nullptr);

    [[nodiscard]] quint8 subindex() const;

private:
    QComboBox *m_numbers;
};
