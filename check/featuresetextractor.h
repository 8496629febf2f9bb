#pragma once

#include <QDomDocument>
#include <QObject>
#include <QString>

/// The feature information file of a stack as a document, for tools that look at the features
/// themselves. The model check needs `VersionReader` only.
class FeatureSetExtractor : public QObject
{
    Q_OBJECT

public:
    explicit FeatureSetExtractor(QObject *parent = nullptr) : QObject(parent) {}

    /// Takes the file only if it exists, and tells whether it does.
    bool setFile(const QString &path);
    [[nodiscard]] QString file() const { return m_path; }
    [[nodiscard]] const QDomDocument &document() const { return m_document; }

private:
    QDomDocument m_document;
    QString m_path;
};
