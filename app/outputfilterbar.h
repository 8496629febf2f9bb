#pragma once

#include "app/outputclass.h"

#include <QKeySequence>
#include <QMap>
#include <QSet>
#include <QWidget>

class QPushButton;
class QToolButton;

/// How many errors, warnings and notes a run gave. Each count is a button; as long as some are
/// pressed, only messages of their kinds are wanted. Two more go from message to message.
class OutputFilterBar : public QWidget
{
    Q_OBJECT

public:
    explicit OutputFilterBar(QWidget *parent = nullptr);

    /// The keys of the two steps, which the window binds: they count from every page.
    [[nodiscard]] static QKeySequence nextMessage() { return Qt::Key_F8; }
    [[nodiscard]] static QKeySequence previousMessage() { return Qt::SHIFT | Qt::Key_F8; }

    void setCounts(const QMap<OutputClass::Kind, int> &counts);
    /// The kinds that are wanted; empty for all messages.
    [[nodiscard]] QSet<OutputClass::Kind> chosen() const;

signals:
    void chosenChanged();
    void nextRequested();
    void previousRequested();

private:
    QToolButton *addStep(const QString &objectName, const QString &icon, const QString &toolTip);

    QMap<OutputClass::Kind, QPushButton *> m_toggles;
    QToolButton *m_previous;
    QToolButton *m_next;
};
