#pragma once

#include <QByteArray>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <optional>

class QNetworkAccessManager;
class QNetworkReply;

/// Asks a server for the newest version of a product.
///
/// No server is asked unless one is configured, by the user setting "General/updateurl" or, below
/// that, by the CMake variable QUILLFORGE_UPDATE_URL of the build: an address of http, https or
/// file. Product code and version go with the question as the query items `product` and `version`
/// (not for files).
///
/// The answer is text: a line for each product, with its code, a blank and its version, such as
/// "04417 4.4.0". Empty lines, and lines that start with "#", mean nothing. Nothing is downloaded
/// or installed. Everything happens in the background of the calling thread's event loop.
class newUpdateChecker : public QObject
{
    Q_OBJECT

public:
    /// An answer that is longer, in bytes, or takes longer is none.
    static constexpr qint64 longestAnswer = 64LL * 1024;
    static constexpr int longestMilliseconds = 15000;

    explicit newUpdateChecker(QObject *parent = nullptr);
    ~newUpdateChecker() override;

    /// The server of this user; empty if there is none.
    [[nodiscard]] static QUrl server();
    /// Starts the question; one of the signals is its end. A question that is still open is given
    /// up.
    void checkForUpdates(const QString &productCode, const QString &version);

    /// The version that the answer names for a product; empty if it doesn't.
    [[nodiscard]] static QString versionIn(const QByteArray &answer, const QString &productCode);
    /// By the numbers between the dots, so that 4.10 is newer than 4.9 and 4.3 as old as 4.3.0.
    [[nodiscard]] static bool isNewer(const QString &version, const QString &thanVersion);

signals:
    void newVersion(const QString &newVersionString, const QString &productCode, bool newerVersion);
    /// There is no server to ask.
    void notConfigured();
    void failed(const QString &reason);

private:
    void read();
    void finish();
    /// Ends the question, with an error if there is one.
    void end(const std::optional<QString> &error);

    QNetworkAccessManager *m_network = nullptr; ///< made with the first question
    QNetworkReply *m_reply = nullptr;
    QTimer m_limit;
    QByteArray m_answer;
    QString m_productCode;
    QString m_version;
};
