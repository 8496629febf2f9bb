#pragma once

#include "gui/helppage.h"

#include <QDialog>
#include <QHash>
#include <QList>
#include <QUrl>

class QAction;
class QLabel;
class QLineEdit;
class QTextBrowser;
class QTreeWidget;
class QTreeWidgetItem;

/// A window that shows the pages of a manual, with its contents beside them.
///
/// Does not block; the caller decides who deletes it.
class HelpViewerDialog : public QDialog
{
    Q_OBJECT

public:
    /// The pages of one chapter, as file names in the manual's folder.
    struct Chapter
    {
        QString title;
        QStringList files;
    };

    HelpViewerDialog(const QString &folder, const QList<Chapter> &chapters,
                     QWidget *parent = nullptr);
    ~HelpViewerDialog() override;

    /// Shows a page, and the heading with this anchor if one is given. False if the manual has no
    /// such page; what is shown stays.
    bool showPage(const QString &file, const QString &anchor = QString());
    [[nodiscard]] QString currentFile() const { return m_shown.file; }

public slots:
    /// Ends a search: all pages are listed, and nothing is marked.
    void clearSearch();
    void back();
    void forward();
    void zoomIn();
    void zoomOut();
    void resetZoom();

protected:
    void changeEvent(QEvent *event) override;

private:
    struct Place
    {
        QString file;
        int scrolled = 0;
    };

    void makeLayout();
    void makeActions();
    QAction *addAction(const char *icon, const QString &text, const QKeySequence &keys,
                       void (HelpViewerDialog::*slot)());
    void fillContents(const QList<Chapter> &chapters);
    void load(const QString &file);
    void goTo(const Place &place);
    void rememberPlace();
    void follow(const QUrl &link);
    void filterContents();
    void markWords();
    void findNext();
    void findPrevious();
    void find(bool backward);
    void setZoom(int steps);
    void updateActions();

    QString m_folder;
    QHash<QString, HelpPage> m_pages; ///< by file name
    QHash<QString, QTreeWidgetItem *> m_items;
    QTreeWidget *m_contents;
    QTextBrowser *m_browser;
    QLineEdit *m_search;
    QLabel *m_note;
    QAction *m_back = nullptr;
    QAction *m_forward = nullptr;
    Place m_shown;
    QList<Place> m_past;
    QList<Place> m_future;
    int m_zoom = 0; ///< steps from the usual size
};
