#include "import/xmlguard.h"

#include <QStringDecoder>
#include <QXmlStreamReader>

#include <array>
#include <optional>

namespace {

/// The document as characters, if its bytes aren't such by themselves.
std::optional<QString> wideText(const QByteArray &document)
{
    const auto encoding = QStringConverter::encodingForData(document, u'<');
    if (!encoding || *encoding == QStringConverter::Utf8)
        return std::nullopt;
    QStringDecoder decoder(*encoding);
    return QString(decoder(document));
}

/// What has an end of its own and no attributes.
struct Region
{
    QByteArrayView begin;
    QByteArrayView end;
};
constexpr std::array regions = {Region{"<!--", "-->"}, Region{"<![CDATA[", "]]>"},
                                Region{"<?", "?>"}};

class Scanner
{
public:
    explicit Scanner(const QByteArray &document) : m_text(document) {}

    int firstOverloadedTag()
    {
        for (;;) {
            const qsizetype start = m_text.indexOf('<', m_at);
            if (start < 0)
                return 0;
            const bool isLong = start - m_at > XmlGuard::longestPart;
            m_at = start;
            if (!isLong && skipRegion())
                continue;
            if (isLong || tagIsOverloaded())
                return static_cast<int>(m_text.first(start).count('\n')) + 1;
        }
    }

private:
    bool skipRegion()
    {
        for (const Region &region : regions) {
            if (!m_text.sliced(m_at).startsWith(region.begin))
                continue;
            const qsizetype end = m_text.indexOf(region.end, m_at + region.begin.size());
            m_at = end < 0 ? m_text.size() : end + region.end.size();
            return true;
        }
        return false;
    }

    bool tagIsOverloaded()
    {
        int attributes = 0;
        char quote = 0;
        const qsizetype last = m_at + XmlGuard::longestPart;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            if (m_at > last)
                return true;
            const char c = m_text[m_at];
            if (quote != 0)
                quote = c == quote ? '\0' : quote;
            else if (c == '"' || c == '\'')
                quote = c;
            else if (c == '>')
                return false;
            else if (c == '=' && ++attributes > XmlGuard::mostAttributes)
                return true;
        }
        return false;
    }

    QByteArrayView m_text;
    qsizetype m_at = 0;
};

} // namespace

int XmlGuard::firstOverloadedTag(const QByteArray &document)
{
    const auto wide = wideText(document);
    const QByteArray text = wide ? wide->toUtf8() : document;
    return Scanner(text).firstOverloadedTag();
}

void XmlGuard::feed(QXmlStreamReader &xml, const QByteArray &document)
{
    if (const auto wide = wideText(document))
        xml.addData(*wide);
    else
        xml.addData(document);
}
