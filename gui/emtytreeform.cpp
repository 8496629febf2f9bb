#include "gui/emtytreeform.h"

EmtyTreeForm::EmtyTreeForm(QWidget *parent) : BaseTreeForm(parent) {}
