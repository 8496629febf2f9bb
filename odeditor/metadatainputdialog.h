#pragma once

#include <QDialog>
#include <QStringList>

class QLabel;
class QLineEdit;
class QPushButton;

/// Asks for the key and the value of a new entry of metadata.
class MetaDataInputDialog : public QDialog
{
    Q_OBJECT

public:
    /// `keys` are those that exist.
    explicit MetaDataInputDialog(const QStringList &keys, QWidget *parent = nullptr);

    [[nodiscard]] QString key() const;
    [[nodiscard]] QString value() const;

private:
    void check();

    QStringList m_keys;
    QLineEdit *m_key;
    QLineEdit *m_value;
    QLabel *m_warning;
    QPushButton *m_ok;
};
