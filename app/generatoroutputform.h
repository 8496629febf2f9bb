#pragma once

#include "app/outputclass.h"
#include "app/outputlinks.h"
#include "gui/basemainform.h"

#include <QList>
#include <QMap>
#include <QSet>
#include <QTimer>

#include <optional>

class OutputFilterBar;
class QMenu;
class QPushButton;
class QStackedWidget;
class QTextBlock;
class QTextBrowser;
class QTextCursor;
class QUrl;
class StartPage;

/// The page "Generator Output": what a run says, with links to the objects and settings that it
/// names. Errors, warnings and notes of the last run are counted, can be shown alone, and can be
/// gone through one by one.
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
    bool eventFilter(QObject *watched, QEvent *event) override;

    /// Messages of a kind that the last run gave.
    [[nodiscard]] int count(OutputClass::Kind kind) const { return m_counts.value(kind); }
    /// In the place of an empty text where `offerStart` says so.
    [[nodiscard]] StartPage &startPage() const { return *m_start; }
    /// Whether the start page is to be offered while nothing was put out.
    void offerStart(bool offered);

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
    /// Go to the next or previous error, warning or note of the last run that is shown; after the
    /// last comes the first. False if there is none.
    bool goToNextMessage();
    bool goToPreviousMessage();
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
        OutputClass::Kind kind = OutputClass::Kind::Progress; ///< only of the last run
        std::optional<quint8> line = {};                      ///< of a project with several

        [[nodiscard]] QString plainText() const;
    };
    enum class Direction { Next, Previous };

    void makeLayout();
    void append(Entry entry);
    void flushSome();
    void flush(qsizetype most) const;
    void insertWaiting(qsizetype count) const;
    void insertMessage(QTextCursor &cursor, const Entry &entry) const;
    void trackCheck(const QString &text);
    void beginRun();
    void showAnew();
    [[nodiscard]] qsizetype waiting() const { return m_entries.size() - m_inText; }
    void showStartOrText();
    bool goToMessage(Direction direction);
    [[nodiscard]] QTextBlock messageFrom(Direction direction) const;
    void showContextMenu(const QPoint &position);
    void addGotoAction(QMenu &menu, const QPoint &position);
    [[nodiscard]] std::optional<OutputLinks::Target> objectAt(const QPoint &position) const;
    void follow(const OutputLinks::Target &target);

    QTextBrowser *m_logging;
    StartPage *m_start;
    QStackedWidget *m_stack;
    OutputFilterBar *m_filterBar;
    QWidget *m_buttons; ///< the row below the text
    QPushButton *m_copyAll;
    QPushButton *m_clear;
    QList<Entry> m_entries;
    mutable qsizetype m_inText = 0;   ///< how many of them have reached the text, or are not wanted
    QSet<OutputClass::Kind> m_wanted; ///< empty for all
    QMap<OutputClass::Kind, int> m_counts;
    QTimer m_flushTimer;
    QString m_timeFormat;                ///< empty for the plain time of day
    std::optional<quint8> m_checkedLine; ///< by the last heading
    bool m_startOffered = false;
    bool m_showsBegin = false; ///< a chosen kind is read from its first message
};
