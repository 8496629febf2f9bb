#pragma once

#include <QObject>
#include <QString>

/// Reads the tool version that an installed stack requires from its feature information file.
///
/// The file comes with the stack and may be anything: it is read up to a size and a depth that no
/// real file has, and a document type with entities is refused.
class VersionReader : public QObject
{
    Q_OBJECT

public:
    /// Given for a file that can't be read or that tells no version.
    static constexpr QLatin1String unknownVersion{"0.0"};

    explicit VersionReader(QObject *parent = nullptr) : QObject(parent) {}

    /// Takes the file only if it exists, and tells whether it does.
    bool setFile(const QString &path);
    /// The text of the first element `required_tool_version`, else `unknownVersion`.
    [[nodiscard]] QString requiredToolVersion() const;

private:
    QString m_path;
};
