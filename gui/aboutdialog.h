#pragma once

#include <QDialog>

/// Tells which program this is: name, version, edition, and the libraries that it stands on.
class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget *parent = nullptr);

    /// What a report of a fault should name, as lines of plain text.
    [[nodiscard]] static QString details();
};
