#include "odeditor/widgetdelegate.h"

#include <QComboBox>
#include <QIntValidator>
#include <QLineEdit>
#include <QTimer>
#include <QToolTip>

namespace {

/// Asks for what is wrong with the whole text; tells it when the text is to be taken over.
class FaultValidator : public QValidator
{
public:
    FaultValidator(const std::function<QString(const QString &)> &fault,
                   const std::function<void(const QString &)> &tell, QObject *parent)
        : QValidator(parent), m_fault(fault), m_tell(tell)
    {
    }

    State validate(QString &text, int &) const override
    {
        return m_fault(text).isEmpty() ? Acceptable : Intermediate;
    }

    void fixup(QString &text) const override { m_tell(m_fault(text)); }

private:
    std::function<QString(const QString &)> m_fault;
    std::function<void(const QString &)> m_tell;
};

} // namespace

WidgetDelegate::WidgetDelegate(Describe describe, QObject *parent)
    : QStyledItemDelegate(parent), m_describe(std::move(describe))
{
    // A closed editor still lives until the events are handled.
    connect(this, &QAbstractItemDelegate::closeEditor, this, [this](const QWidget *editor) {
        if (editor == m_editor)
            m_editor = nullptr;
    });
}

QWidget *WidgetDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                      const QModelIndex &index) const
{
    const Cell cell = m_describe(index);
    if (cell.fill) {
        auto *box = new QComboBox(parent);
        offer(box, cell);
        m_editor = box;
    } else {
        auto *edit = new QLineEdit(parent);
        restrict(edit, cell);
        m_editor = edit;
    }
    m_editor->setFont(index.data(Qt::FontRole).value<QFont>().resolve(parent->font()));
    return m_editor;
}

void WidgetDelegate::offer(QComboBox *box, const Cell &cell) const
{
    cell.fill(*box);
    auto *self = const_cast<WidgetDelegate *>(this);
    connect(box, &QComboBox::activated, self, [self, box] {
        emit self->commitData(box);
        emit self->closeEditor(box);
    });
    QTimer::singleShot(0, box, &QComboBox::showPopup);
}

void WidgetDelegate::restrict(QLineEdit *edit, const Cell &cell) const
{
    edit->setStyleSheet(QStringLiteral("QLineEdit { border: none; }"));
    const auto tell = [this, edit](const QString &reason) {
        if (reason.isEmpty())
            return;
        QToolTip::showText(edit->mapToGlobal(edit->rect().bottomLeft()), reason, edit);
        emit refused(reason);
    };
    if (cell.numbers) {
        edit->setValidator(new QIntValidator(cell.numbers->low, cell.numbers->high, edit));
        const QString reason = tr("Only whole numbers from %1 to %2 can be entered here.")
                                   .arg(cell.numbers->low)
                                   .arg(cell.numbers->high);
        connect(edit, &QLineEdit::inputRejected, this, [tell, reason] { tell(reason); });
    } else if (cell.fault) {
        // Existing texts that are at fault may be left as they are.
        edit->setValidator(new FaultValidator(cell.fault, tell, edit));
    }
}

void WidgetDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    if (auto *edit = qobject_cast<QLineEdit *>(editor))
        edit->setText(index.data(Qt::EditRole).toString());
}

void WidgetDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                  const QModelIndex &index) const
{
    if (const auto *box = qobject_cast<QComboBox *>(editor)) {
        if (box->currentIndex() >= 0 && box->currentData() != index.data(Qt::UserRole))
            model->setData(index, box->currentData(), Qt::UserRole);
        return;
    }
    const auto *edit = qobject_cast<QLineEdit *>(editor);
    // A text that nobody typed in stays as it is written, blanks and line breaks too.
    if (edit != nullptr && edit->isModified() && edit->hasAcceptableInput())
        model->setData(index, edit->text(), Qt::EditRole);
}

void WidgetDelegate::commitOpenEditor()
{
    if (QWidget *editor = m_editor) {
        const auto *edit = qobject_cast<QLineEdit *>(editor);
        if (edit != nullptr && edit->isModified() && !edit->hasAcceptableInput()) {
            QString text = edit->text();
            if (edit->validator() != nullptr)
                edit->validator()->fixup(text);
        } else {
            emit commitData(editor);
        }
        emit closeEditor(editor);
    }
}
