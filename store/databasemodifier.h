#pragma once

#include <QObject>
#include <QString>

class ObjectDataBase;

/// Applies a small script to the settings of a project. Each line "table:key:value" writes one
/// setting, table being "GeneralSettings" or "J1939Settings"; lines that begin with '#', lines of
/// another form and lines of other tables are skipped.
class DatabaseModifier : public QObject
{
    Q_OBJECT

public:
    /// The store is not owned and has to outlive the modifier.
    explicit DatabaseModifier(ObjectDataBase *store, QObject *parent = nullptr);

    /// False, with `errorText` set, if the script is missing, can't be read, or has at most
    /// 10 bytes.
    bool load(const QString &path);
    /// Writes the settings of the loaded script, also while writes are blocked, a block that
    /// this ends. False, with `errorText` set, if the script can't be read any more or a setting
    /// could not be written.
    bool applyModifierFile();
    [[nodiscard]] QString errorText() const { return m_errorText; }

private:
    bool fail(const QString &path, const QString &what);
    bool applyLine(const QString &line);

    ObjectDataBase *m_store;
    QString m_path;
    QString m_errorText;
};
