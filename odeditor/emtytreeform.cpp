#include "odeditor/emtytreeform.h"

EmtyTreeForm::EmtyTreeForm(QWidget *parent) : BaseTreeForm(parent) {}
