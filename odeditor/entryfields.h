#pragma once

#include "dictionary/editrights.h"
#include "odeditor/widgetdelegate.h"

#include <QString>
#include <QVariant>

class QComboBox;

/// How the fields of a subindex are shown and typed, the same in its form and in tables.
namespace EntryFields {

using Record = ObjectDataBase::SUBINDEX_DATA_T;

enum class Kind {
    Text,
    Value, ///< a number or what stands for one, in a fixed-width font
    Choice,
    Check
};

[[nodiscard]] Kind kindOf(SubIndexField field);
/// The value as the store has it.
[[nodiscard]] QVariant value(SubIndexField field, const Record &record);
/// The text of a cell; the label of what is chosen.
[[nodiscard]] QString text(SubIndexField field, const Record &record);
/// Sets what the user has typed or chosen, with what follows from it in the record.
void set(SubIndexField field, Record &record, const QVariant &value);
/// What is wrong with a typed text; empty if nothing.
[[nodiscard]] QString fault(SubIndexField field, const Record &record, const QString &text);
/// Offers the choices and selects the record's, which is offered in any case. `objectClass` as in
/// `BaseTreeForm::fillDataTypes`.
void fill(QComboBox &box, SubIndexField field, const Record &record, const QString &objectClass);
/// An editor for the field.
[[nodiscard]] WidgetDelegate::Cell cell(SubIndexField field, const Record &record,
                                        const QString &objectClass);

/// What the store has come to hold, with the fields that the user has changed since it was shown.
[[nodiscard]] Record merged(const Record &shown, const Record &edited, const Record &stored);

/// What is wrong with a text of one line; empty if nothing.
[[nodiscard]] QString lineFault(const QString &text, qsizetype longest);
/// As many characters as a line of an EDS file has (CiA 306).
inline constexpr qsizetype longestName = 255;

} // namespace EntryFields
