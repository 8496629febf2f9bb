#pragma once

#include "app/outputlinks.h"
#include "gui/basemainform.h"

#include <QList>
#include <QTimer>

#include <optional>

class QLabel;
class QMenu;
class QTextBrowser;
class QTextCursor;
class QUrl;

/// The page "Generator Output": what a run says, with links to the objects and settings that it
/// names.
///
/// Messages wait a moment and reach the text together, so that a run of thousands stays fluid.
class GeneratorOutputForm : public BaseMainForm
{
    Q_OBJECT

public:
    explicit GeneratorOutputForm(QWidget *parent = nullptr);

    /// By the button of the window: copies what is selected.
    void doAction(int action) override;
    [[nodiscard]] bool canDoAction(int action) const override;

    /// Messages of the model check of the last run.
    [[nodiscard]] int checkMessageCount() const { return m_checkMessages; }

public slots:
    void updateData(ObjectDataBase::ChangeSet modification) override;
    void saveData() override;
    void handleExpertMode(bool expertModeActive) override;

    void clearLogging();
    /// Adds a message with the time before it: plain text in which a few tags of rich text count.
    /// A line feed at its begin makes an empty line.
    void appendLogging(const QString &loggingString);
    /// Adds a piece of rich text as it stands.
    void appendHtml(const QString &html);
    /// Everything that was put out, as plain text.
    [[nodiscard]] QString getLogging() const;
    void copyAll();
    /// Goes to the object that the sending action of the context menu names.
    void handleGotoRequest();
    void on_tbLogging_anchorClicked(const QUrl &url);

signals:
    void gotoObject(quint8 line, quint16 index);
    void goToSubobj(quint8 line, quint16 index, quint8 subindex);
    /// A setting is to be looked for.
    void searchRequest(const QString &searchString);

private:
    struct Entry
    {
        QString time = {}; ///< with its separator; empty for rich text
        QString text = {};
        bool isHtml = false;
        std::optional<quint8> line = {}; ///< of a project with several
    };

    void makeLayout();
    void append(Entry entry);
    void flushSome();
    void flush(qsizetype most) const;
    void insertFirst(qsizetype count) const;
    void insertMessage(QTextCursor &cursor, const Entry &entry) const;
    void trackCheck(const QString &text);
    void showCount() const;
    void showContextMenu(const QPoint &position);
    void addGotoAction(QMenu &menu, const QPoint &position);
    [[nodiscard]] std::optional<OutputLinks::Target> objectAt(const QPoint &position) const;
    void follow(const OutputLinks::Target &target);

    QTextBrowser *m_logging;
    QLabel *m_count;
    mutable QList<Entry> m_waiting; ///< part of the log that is not in the text yet
    QTimer m_flushTimer;
    QString m_timeFormat;                ///< empty for the plain time of day
    std::optional<quint8> m_checkedLine; ///< by the last heading
    bool m_inCheck = false;
    int m_checkMessages = 0;
};
