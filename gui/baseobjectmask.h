#pragma once

#include "gui/basetreeform.h"

/// A pane that presents one well-known object in the words of its service, not as rows of
/// subindices.
class BaseObjectMask : public BaseTreeForm
{
    Q_OBJECT

public:
    explicit BaseObjectMask(QWidget *parent = nullptr);

    /// Shares the store; false for a null one.
    bool setDatabase(const std::shared_ptr<ObjectDataBase> &database);
    void setLine(quint8 line) { m_line = line; }
    void setIndex(quint16 newIndex) { index = m_index = newIndex; }
    /// True while a service is being added, so that the mask makes objects; false while it edits
    /// one that is there.
    void setServiceMode(bool on) { serviceMode = on; }

    /// Whether the object may be written: asks only if there is one already.
    [[nodiscard]] bool confirmOverwrite(quint8 line, quint16 objectIndex);
    /// Selects the first item with that user data and gives its position, which may be null; false,
    /// and position and selection untouched, if no item has it.
    static bool selectComboItemByData(QComboBox *comboBox, const QVariant &value, int *position);

public slots:
    /// Expert mode was switched; masks without rows for experts keep this one.
    virtual void setExpertFlag(bool flag);

protected:
    quint16 index = 0;
    bool serviceMode = false;
};
