#pragma once

#include "app/exampleprojects.h"
#include "app/recentprojects.h"

#include <QScrollArea>

class QVBoxLayout;

/// What a window with nothing in it offers: a new project, an existing one, the examples and the
/// recent projects. It only asks for them; whoever shows it does what was asked.
///
/// Every offer can be reached by Tab and the arrow keys, and taken by Enter, Space or a click.
class StartPage : public QScrollArea
{
    Q_OBJECT

public:
    explicit StartPage(QWidget *parent = nullptr);

    void setExamples(const QList<ExampleProjects::Example> &examples);
    /// In the order in which they are to stand. One whose file is gone is shown, but can't be
    /// opened.
    void setRecent(const QList<RecentProjects::Entry> &projects);

signals:
    void newRequested();
    void openRequested();
    void exampleRequested(const QString &path);
    void recentRequested(const QString &path);

private:
    void makeStartRows(QVBoxLayout &column);

    QVBoxLayout *m_examples;
    QVBoxLayout *m_recent;
};
