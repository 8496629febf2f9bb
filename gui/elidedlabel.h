#pragma once

#include <QLabel>

/// A one-line label for a path: what doesn't fit is left out in the middle, and the whole text
/// is in the tool tip. It never makes its window wider.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
};
