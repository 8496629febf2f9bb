#pragma once

class BaseTreeForm;
class QWidget;

/// Which form shows what of an object dictionary. The pane still has to be opened.
namespace ObjectPanes {

[[nodiscard]] BaseTreeForm *forObject(QWidget *parent);
[[nodiscard]] BaseTreeForm *forSubIndex(QWidget *parent);

} // namespace ObjectPanes
