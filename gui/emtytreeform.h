#pragma once

#include "gui/basetreeform.h"

/// The pane for a selection that has nothing to show.
class EmtyTreeForm : public BaseTreeForm
{
    Q_OBJECT

public:
    explicit EmtyTreeForm(QWidget *parent = nullptr);

    void saveData() override {}
    void updateData() override {}
};
