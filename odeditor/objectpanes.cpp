#include "odeditor/objectpanes.h"

#include "odeditor/indexform.h"
#include "odeditor/subindexform.h"

BaseTreeForm *ObjectPanes::forObject(QWidget *parent)
{
    return new IndexForm(parent);
}

BaseTreeForm *ObjectPanes::forSubIndex(QWidget *parent)
{
    return new SubIndexForm(parent);
}
