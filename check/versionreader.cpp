#include "check/versionreader.h"

#include <QDebug>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace {

constexpr qint64 maximumSize = qint64(4) * 1024 * 1024;
constexpr int maximumDepth = 200;

/// Whether a document may be built from the text: without entities of its own, which could grow
/// without bound, and not nested so deep that its tree can't be walked.
bool isHarmless(const QByteArray &content)
{
    QXmlStreamReader reader(content);
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
            if (!reader.entityDeclarations().isEmpty() ||
                reader.text().contains(QLatin1String("<!ENTITY")))
                return false;
            break;
        case QXmlStreamReader::StartElement:
            if (++depth > maximumDepth)
                return false;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    return !reader.hasError();
}

} // namespace

bool VersionReader::setFile(const QString &path)
{
    if (!QFileInfo::exists(path))
        return false;
    m_path = path;
    return true;
}

QString VersionReader::requiredToolVersion() const
{
    QFile file(m_path);
    if (m_path.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        qWarning() << "VersionReader: can't read" << m_path << file.errorString();
        return unknownVersion;
    }
    const QByteArray content = file.read(maximumSize + 1);
    QDomDocument document;
    QString error;
    if (content.size() > maximumSize || !isHarmless(content) ||
        !document.setContent(content, &error)) {
        qWarning() << "VersionReader: refused" << m_path << error;
        return unknownVersion;
    }
    const QDomNodeList elements =
        document.elementsByTagName(QStringLiteral("required_tool_version"));
    if (elements.isEmpty())
        return unknownVersion;
    return elements.at(0).firstChild().toText().data();
}
