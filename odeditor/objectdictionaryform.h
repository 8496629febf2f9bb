#pragma once

#include "dictionary/dictionaryclipboard.h"
#include "dictionary/editcontext.h"
#include "gui/basemainform.h"
#include "gui/basetreeform.h"
#include "odeditor/dictionarytree.h"

#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include <functional>

class QLineEdit;
class QMenu;
class QModelIndex;
class QSplitter;
class TolvexTreeWidget;
struct TreeSituation;

/// The page of the object dictionary: one line's objects as a tree, beside the pane of what is
/// shown.
///
/// What an edit does is decided in `dictionary/`; this asks, has it done, and shows the result. Its
/// commands work on the rows that are selected and can be seen. Each is one step of undo.
class ObjectDictionaryForm : public BaseMainForm
{
    Q_OBJECT

public:
    explicit ObjectDictionaryForm(QWidget *parent = nullptr);
    ~ObjectDictionaryForm() override;

    bool setDatabase(const std::shared_ptr<ObjectDataBase> &database) override;
    void setLine(quint8 line) override;
    void doAction(int action) override;
    [[nodiscard]] bool canDoAction(int action) const override;

    /// What the pane shows; index 0 and subindex `BaseTreeForm::noSubindex` mean none.
    [[nodiscard]] quint16 shownIndex() const { return m_shownIndex; }
    [[nodiscard]] quint8 shownSubindex() const { return m_shownSubindex; }
    [[nodiscard]] BaseTreeForm *pane() const { return m_pane; }

signals:
    void expertModeChanged(bool expertModeActive);
    /// The user wants the import dialog.
    void importWanted();

public slots:
    void updateData(ObjectDataBase::ChangeSet modification) override;
    void saveData() override;
    void handleExpertMode(bool expertModeActive) override;
    /// The library has other objects.
    void libraryChanged();

    void displayContextMenu(QPoint point);
    void deleteIndex();
    void deleteSub();
    void duplicateIndex();
    void duplicateSub();
    void addNextSub();
    void addSpecificSub();
    void copyIndex();
    void pasteIndex();
    void pasteIndexAt();
    void cutIndex();
    void insertSubGapBefore();
    void insertSubGapAfter();
    void moveSubTo();
    /// Has the user type another name for the current row.
    void renameCurrent();
    /// Sets one attribute for all subindices of the line; which, the sending action tells.
    void handleHiddenExtraCommand();
    void clearSegment();
    void clearPDOs();
    void lineHandle(quint8 currentLine);
    /// Shows an object; one that isn't there is told.
    void gotoIndex(ushort index);
    void gotoSubIndex(ushort index, quint8 subindex);
    void updateAllTree();
    void on_treeWidget_itemActivated(QTreeWidgetItem *item, int column);
    void on_treeWidget_itemClicked(QTreeWidgetItem *item, int column);
    void on_treeWidget_activated(const QModelIndex &index);
    void on_leFilter_textChanged(const QString &filter);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void makeWidgets();
    void makeShortcuts();
    [[nodiscard]] EditContext editContext() const;

    // The pane
    void showRow(const TreeRow &row);
    void openPane();
    void dropPane();
    void updatePaneSoon();
    [[nodiscard]] BaseTreeForm *makePane();
    void followPane(const ObjectDataBase::ChangeSet &change);
    void followTree(const ObjectDataBase::ChangeSet &change);

    // Menus and keys
    [[nodiscard]] TreeSituation situation() const;
    void runByKeys(const QString &keys);
    void addCommands(QMenu &menu);
    void addExtraCommands(QMenu &menu);
    void focusFilter();

    // Edits
    using Edit = std::function<EditResult(const EditContext &)>;
    void finishInput();
    bool run(const Edit &edit);
    bool runRemoval(const QList<TreeRow> &rows, const Edit &edit);
    void clear(const QList<quint16> &indices);
    void refuse(const QString &reason);
    [[nodiscard]] bool confirmDelete(qsizetype count, bool always = false);
    [[nodiscard]] bool confirmReplace(quint16 index, QMessageBox::StandardButton byDefault);
    void addObject(quint32 index, const QString &objectType);
    void addImported(quint16 index);
    void showRows(const QList<TreeRow> &rows);
    void rename(const TreeRow &row, const QString &name);
    [[nodiscard]] QString storedName(const TreeRow &row) const;

    TolvexTreeWidget *m_view;
    QLineEdit *m_filter;
    QSplitter *m_splitter;
    DictionaryTree *m_tree;
    QPointer<BaseTreeForm> m_pane;
    DictionaryClipboard m_clipboard;
    QTimer m_paneTimer;
    int m_treeWidth = 0;        ///< as the user has left it
    quint16 m_shownSegment = 0; ///< first number of the one whose pane is shown
    quint16 m_shownIndex = 0;
    quint8 m_shownSubindex = BaseTreeForm::noSubindex;
    bool m_expert = false;
    bool m_isStale = true; ///< the tree is to be read again when it is seen
};
