#pragma once

#include "odeditor/widgetdelegate.h"

#include <QTableWidget>

#include <functional>
#include <optional>

/// A table of attributes and their values: texts, check boxes and choices, one a row. It shows what
/// it is told and tells by `edited` and `itemChanged` what its user does; the owner then shows the
/// row again.
class AttributeTable : public QTableWidget
{
    Q_OBJECT

public:
    /// What a row shows.
    struct Look
    {
        QString text = {};
        std::optional<bool> checked = std::nullopt;
        std::function<void(QComboBox &)> fill = {}; ///< of a choice
        QString refusal = {};                       ///< why it can't be changed; empty if it can
        bool hasText = true;                        ///< false: a check box alone
        bool isFixedWidth = false;
        bool isChanged = false; ///< since it was read
    };

    explicit AttributeTable(QWidget *parent = nullptr);

    void setAttributes(const QStringList &labels);
    void setDescribe(const WidgetDelegate::Describe &describe);
    void showRow(int row, const Look &look);
    /// Takes over what is being typed.
    void commitOpenEditor();
    /// Of a choice; else null.
    [[nodiscard]] QComboBox *combo(int row) const;

signals:
    void chosen(int row, const QVariant &value);
    void refused(const QString &reason);

private:
    void showChoice(int row, const Look &look);

    WidgetDelegate *m_delegate = nullptr;
};
