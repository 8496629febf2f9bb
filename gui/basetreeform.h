#pragma once

#include "gui/formcontext.h"

#include <QWidget>

#include <memory>

class QComboBox;

/// The pane beside the tree of a page; lives as long as one selection of that tree.
///
/// The owner of the tree makes a new pane for a new selection, tells it by `open` what to show and
/// calls `updateData`. Before it deletes the old one it calls its `saveData`, so moving on saves,
/// and no pane has a button for that. The pane of what is gone from the project is deleted without.
class BaseTreeForm : public QWidget
{
    Q_OBJECT

public:
    static constexpr quint8 noSubindex = 255; ///< CiA 301 uses it for none that can be edited

    /// What a pane shows, and what its user may do there.
    struct Place
    {
        quint8 line = 0;
        quint16 index = 0; ///< 0 for none
        quint8 subindex = noSubindex;
        bool canEdit = true; ///< else the pane only shows
        bool expert = false;
    };

    explicit BaseTreeForm(QWidget *parent = nullptr);

    /// Tells what to work on; shows nothing yet.
    void open(const FormContext &context, const Place &place);

    /// Writes what the widgets hold to the store, if that is another value.
    virtual void saveData() = 0;
    /// Fills the widgets from the store. Called again after each change of the shown object, the
    /// pane's own writes included: what is being typed survives where the store still holds what
    /// the pane was filled with.
    virtual void updateData() = 0;

    /// Selects the first item with that user data; false, and the selection untouched, if no item
    /// has it.
    static bool selectComboItem(QComboBox &comboBox, const QVariant &data);
    /// Offers the data types of an object, with their numbers as user data and an icon for their
    /// kind. Objects of the class "EtherCAT" may have the bit-sized types, too. What the box held
    /// is replaced; it sends no signals.
    static void fillDataTypes(QComboBox &comboBox, const QString &objectClass = QString());

protected:
    [[nodiscard]] ObjectDataBase *database() const { return m_context.project.get(); }
    [[nodiscard]] const FormContext &context() const { return m_context; }

    FormContext m_context;
    quint8 m_line = 0;
    bool m_canEdit = true;
    bool m_expert = false;
    quint16 m_index = 0;            ///< the object that is shown
    quint8 m_subindex = noSubindex; ///< its subindex, if one is shown
};
