#include "gui/newupdatechecker.h"

#include "store/usersettings.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrlQuery>
#include <QVersionNumber>

namespace {

constexpr int mostRedirects = 3;

bool isKnownScheme(const QUrl &url)
{
    return url.isLocalFile() || url.scheme() == u"http" || url.scheme() == u"https";
}

} // namespace

newUpdateChecker::newUpdateChecker(QObject *parent) : QObject(parent)
{
    m_limit.setSingleShot(true);
    m_limit.setInterval(longestMilliseconds);
    connect(&m_limit, &QTimer::timeout, this, [this] { end(tr("the server does not answer")); });
}

newUpdateChecker::~newUpdateChecker() = default;

QUrl newUpdateChecker::server()
{
    const QString address =
        UserSettings::general(QStringLiteral("updateurl"), QStringLiteral(QUILLFORGE_UPDATE_URL))
            .toString()
            .trimmed();
    return QUrl(address);
}

void newUpdateChecker::checkForUpdates(const QString &productCode, const QString &version)
{
    end(std::nullopt);
    m_productCode = productCode;
    m_version = version;
    QUrl url = server();
    if (url.isEmpty()) {
        emit notConfigured();
        return;
    }
    if (!url.isValid() || !isKnownScheme(url)) {
        emit failed(tr("%1 is no address of http, https or file").arg(url.toDisplayString()));
        return;
    }
    if (!url.isLocalFile()) {
        QUrlQuery query(url);
        query.addQueryItem(QStringLiteral("product"), productCode);
        query.addQueryItem(QStringLiteral("version"), version);
        url.setQuery(query);
    }
    if (m_network == nullptr)
        m_network = new QNetworkAccessManager(this);
    QNetworkRequest request(url);
    request.setMaximumRedirectsAllowed(mostRedirects);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    m_reply = m_network->get(request);
    connect(m_reply, &QNetworkReply::readyRead, this, &newUpdateChecker::read);
    connect(m_reply, &QNetworkReply::finished, this, &newUpdateChecker::finish);
    m_limit.start();
}

void newUpdateChecker::read()
{
    m_answer += m_reply->read(longestAnswer + 1 - m_answer.size());
    if (m_answer.size() > longestAnswer)
        end(tr("the answer is too long"));
}

void newUpdateChecker::finish()
{
    if (m_reply->error() != QNetworkReply::NoError) {
        end(m_reply->errorString());
        return;
    }
    read();
    if (m_reply == nullptr)
        return; // too long
    const QString version = versionIn(m_answer, m_productCode);
    if (version.isEmpty()) {
        end(tr("the answer does not name this product"));
        return;
    }
    end(std::nullopt);
    emit newVersion(version, m_productCode, isNewer(version, m_version));
}

void newUpdateChecker::end(const std::optional<QString> &error)
{
    m_limit.stop();
    m_answer.clear();
    if (m_reply != nullptr) {
        QNetworkReply *reply = m_reply;
        m_reply = nullptr;
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    if (error)
        emit failed(*error);
}

QString newUpdateChecker::versionIn(const QByteArray &answer, const QString &productCode)
{
    for (const QString &line : QString::fromUtf8(answer).split(u'\n')) {
        const QStringList words = line.simplified().split(u' ');
        if (words.size() < 2 || words[0] != productCode)
            continue;
        // What is no version must not be shown as one.
        qsizetype end = 0;
        const QVersionNumber number = QVersionNumber::fromString(words[1], &end);
        return !number.isNull() && end == words[1].size() ? words[1] : QString();
    }
    return {};
}

bool newUpdateChecker::isNewer(const QString &version, const QString &thanVersion)
{
    return QVersionNumber::fromString(version).normalized() >
           QVersionNumber::fromString(thanVersion).normalized();
}
