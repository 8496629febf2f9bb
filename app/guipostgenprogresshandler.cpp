#include "app/guipostgenprogresshandler.h"

#include "gui/guihelper.h"

#include <QCoreApplication>
#include <QProgressDialog>
#include <QResizeEvent>

void GUIPostGenProgressHandler::setDialog(QProgressDialog *dialog)
{
    if (m_dialog)
        disconnect(m_dialog, nullptr, this, nullptr);
    m_dialog = dialog;
    if (m_dialog)
        connect(m_dialog, &QProgressDialog::canceled, this,
                &PostGenProgressHandler::cancelProcessTriggered);
}

void GUIPostGenProgressHandler::setLabelText(const QString &text)
{
    if (m_dialog)
        m_dialog->setLabelText(text);
}

void GUIPostGenProgressHandler::setCancelButtonText(const QString &text)
{
    if (!m_dialog)
        return;
    m_dialog->setCancelButtonText(text);
    // The dialog gives its button the width of a new text only when it places everything anew.
    QResizeEvent resize(m_dialog->size(), m_dialog->size());
    QCoreApplication::sendEvent(m_dialog, &resize);
}

void GUIPostGenProgressHandler::show()
{
    if (m_dialog)
        m_dialog->show();
}

void GUIPostGenProgressHandler::hide()
{
    if (m_dialog)
        m_dialog->hide();
}

void GUIPostGenProgressHandler::adjustSize()
{
    if (m_dialog)
        m_dialog->adjustSize();
}

void GUIPostGenProgressHandler::raise()
{
    if (m_dialog)
        m_dialog->raise();
}

void GUIPostGenProgressHandler::showMessage(QObject *parent, const QString &title,
                                            const QString &text, const QString &detail)
{
    auto *widget = qobject_cast<QWidget *>(parent);
    if (widget == nullptr && m_dialog)
        widget = m_dialog->parentWidget();
    GuiHelper::showMessageBox(widget, title, text, detail, QMessageBox::Ok, QMessageBox::Warning);
}
