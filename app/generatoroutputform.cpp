#include "app/generatoroutputform.h"

#include <QFontDatabase>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTime>
#include <QVBoxLayout>

GeneratorOutputForm::GeneratorOutputForm(QWidget *parent)
    : BaseMainForm(parent), m_logging(new QTextBrowser(this))
{
    m_logging->setObjectName(QStringLiteral("tbLogging"));
    m_logging->setOpenLinks(false);
    m_logging->setPlaceholderText(
        QStringLiteral("The messages of the next generation appear here."));
    m_logging->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_logging);
}

void GeneratorOutputForm::updateData(ObjectDataBase::ChangeSet) {}

void GeneratorOutputForm::saveData() {}

void GeneratorOutputForm::handleExpertMode(bool) {}

void GeneratorOutputForm::clearLogging()
{
    m_logging->clear();
}

void GeneratorOutputForm::appendLogging(const QString &loggingString)
{
    QString message = loggingString;
    if (message.startsWith(u'\n')) {
        message.remove(0, 1);
        append(QString());
    }
    append(QStringLiteral("%1: %2").arg(QTime::currentTime().toString(Qt::TextDate), message));
}

void GeneratorOutputForm::appendHtml(const QString &html)
{
    append(html);
}

QString GeneratorOutputForm::getLogging() const
{
    return m_logging->toPlainText();
}

void GeneratorOutputForm::append(const QString &html)
{
    m_logging->moveCursor(QTextCursor::End);
    m_logging->append(html);
}
