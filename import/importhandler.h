#pragma once

#include "store/objectdatabase.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

#include <memory>

class BaseDataImporter;

/// Runs a batch of imports, copies and deletions that an INI file describes:
///
///     [Projects]
///     p1 = other.vxmp
///     [Options]
///     delete_objects = false
///     [Actions]
///     a = import 1:0 to 0 offset 0x1000
///     b = copy 0:0x2000-0x20ff to 1
///     c = delete 0:0x3000
///
/// Imports run first, then the rest; each in the order of the keys as sorted. Nothing is changed if
/// one of the actions can't be read. Numbers may have the prefix 0x. A project that isn't found as
/// its path stands is looked for beside the file.
///
/// Belongs to the thread of its store; events keep running while it works.
class ImportHandler : public QObject
{
    Q_OBJECT

public:
    /// The store must outlive this.
    explicit ImportHandler(ObjectDataBase *store);
    ~ImportHandler() override;

    /// Looks at the file without applying it. On false, `errorString` says why.
    bool loadImportFile(const QString &path);
    /// Applies the file that was loaded. On false, the actions before the failed one are done.
    bool applyImportFile();
    [[nodiscard]] QString errorString() const { return m_error; }

    enum ActionKind { Delete = 0, Import = 1, Copy = 2 };
    struct actionSetting
    {
        int kind = Delete;
        quint16 firstIndex = 0;
        quint16 lastIndex = 0;
        quint32 offset = 0; ///< added to the index at the target
        quint8 sourceLine = 0;
        quint8 targetLine = 0;
        QString text; ///< the whole action
        QString projectPath;
    };

private:
    using Projects = QMap<quint32, QString>;

    bool fail(const QString &text);
    [[nodiscard]] Projects readProjects(const class QSettings &file) const;
    [[nodiscard]] bool parse(const QString &text, actionSetting &action) const;
    bool process(const actionSetting &action);
    bool processImport(const actionSetting &action);
    bool processCopy(const actionSetting &action);
    bool processDelete(const actionSetting &action);
    bool readProject(const actionSetting &action);

    ObjectDataBase *m_store;
    std::unique_ptr<ObjectDataBase> m_scratch;
    std::unique_ptr<BaseDataImporter> m_importer; ///< of the present action
    QString m_path;
    QString m_error;
    Projects m_projects;
    bool m_deleteObjects = false;
};
