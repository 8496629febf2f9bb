#pragma once

#include "canopen/linetype.h"

#include <QDialog>

/// Asks for the protocols of a line with one button for each type.
class SelectProtocolDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SelectProtocolDialog(const QString &question, QWidget *parent = nullptr);

    /// The chosen type; `LineType::Unknown` until a button was pressed.
    [[nodiscard]] int lineType() const { return m_lineType; }

private:
    int m_lineType = LineType::Unknown;
};
