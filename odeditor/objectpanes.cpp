#include "odeditor/objectpanes.h"

#include "gui/emtytreeform.h"

BaseTreeForm *ObjectPanes::forObject(QWidget *parent)
{
    return new EmtyTreeForm(parent);
}

BaseTreeForm *ObjectPanes::forSubIndex(QWidget *parent)
{
    return new EmtyTreeForm(parent);
}
