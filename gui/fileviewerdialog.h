#pragma once

#include <QDateTime>
#include <QDialog>
#include <QFileSystemWatcher>
#include <QTimer>

class AnsiCHighlighter;
class FileViewerText;
class QCheckBox;
class QLabel;
class QLineEdit;
class QSpinBox;

/// A window that shows one text file and follows it when it is written anew. C sources are
/// coloured. Nothing can be changed in it.
///
/// Does not block; the caller decides who deletes it.
class FileViewerDialog : public QDialog
{
    Q_OBJECT

public:
    /// Files above this are shown up to here, in bytes.
    static constexpr qint64 largestFile = 16LL * 1024 * 1024;

    explicit FileViewerDialog(QWidget *parent = nullptr);

    /// Shows the file; on false it can't be read, and the window says why.
    bool openFile(const QString &path);
    [[nodiscard]] QString path() const { return m_path; }
    /// The text as it is shown.
    [[nodiscard]] QString text() const;

public slots:
    /// Reads the file again and stays at the line.
    bool reload();
    /// Puts the cursor to the line, counted from 1.
    void goToLine(int line);
    /// Marks the next place; starts again at the other end. False if there is none.
    bool findNext();
    bool findPrevious();

protected:
    void changeEvent(QEvent *event) override;

private:
    void makeFindBar();
    void makeLayout();
    void makeShortcuts();
    bool find(bool backward);
    void searchChanged();
    void showMatches();
    void showPosition();
    void showNotice(const QString &text);
    void watch();
    void fileChanged();

    QString m_path;
    QDateTime m_written; ///< of what is shown
    FileViewerText *m_view;
    AnsiCHighlighter *m_highlighter = nullptr; ///< child of the document; only for C
    QWidget *m_findBar;
    QLineEdit *m_search;
    QCheckBox *m_matchCase;
    QSpinBox *m_line;
    QLabel *m_matches;
    QLabel *m_notice;
    QLabel *m_position;
    QFileSystemWatcher m_watcher;
    QTimer m_reloadTimer;
};
