#pragma once

#include "canopen/linetype.h"

#include <QDialog>

/// Asks for the protocols of a line with one button for each type.
class SelectProtocolDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SelectProtocolDialog(const QString &question, QWidget *parent = nullptr);

    /// Asks; `LineType::Unknown` if the user does not choose one.
    [[nodiscard]] static int ask(const QString &question, QWidget *parent);

    /// The chosen type; `LineType::Unknown` until a button was pressed.
    [[nodiscard]] int lineType() const { return m_lineType; }

private:
    int m_lineType = LineType::Unknown;
};
