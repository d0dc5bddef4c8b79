#pragma once

#include "serveraddress.h"
#include "serverlisting.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <QTimer>

#include <memory>

class QNetworkReply;

namespace Korvane::Gui {

/// Asks a web server what is in a folder. One request at a time; never blocks. Follows redirects within http and https,
/// never from https to http; credentials go to no other server than the one they were given for. GUI thread.
class ListingClient : public QObject
{
    Q_OBJECT

public:
    explicit ListingClient(QObject *parent = nullptr);
    ~ListingClient() override;

    /// Asks for \a folder (http or https, with a slash at its end); what was under way is cancelled first.
    /// \a credentials are "user:password", percent-encoded, or empty.
    void fetch(const QUrl &folder, const QString &credentials);
    /// Gives up at once; neither signal follows.
    void cancel();
    bool isBusy() const { return !reply.isNull() || isParsing; }

    /// For a whole answer, redirects included.
    void setTimeout(int milliseconds) { timeoutMs = milliseconds; }
    static constexpr int kMaxBytes = 8 << 20;
    static constexpr int kMaxRedirects = 5;

Q_SIGNALS:
    /// The server's list of \a folder, which redirects may have changed.
    void listed(const QUrl &folder, const Korvane::Gui::ServerListing &listing);
    /// \a sentence says what is wrong; it holds no credentials.
    void failed(const QString &sentence);

private:
    void ask(const QUrl &url);
    void onRead();
    void onFinished();
    void onTimeout();
    void finish();
    void parse(const QUrl &url);
    void tell(const QUrl &url, ServerListing listing, bool isCutOff);
    void fail(const QString &sentence);
    QNetworkAccessManager &manager();
    void release();
    /// Whether the answer sends elsewhere; follows, or fails.
    bool redirects(const QUrl &target);
    QString networkError() const;
    static QString statusError(int status, const QString &reason);

    std::unique_ptr<QNetworkAccessManager> network; ///< made at the first question: it has a thread of its own
    QPointer<QNetworkReply> reply;
    QTimer timer;
    QByteArray body;
    QUrl firstUrl; ///< the one that credentials are for
    QByteArray authorization;
    QString distrust; ///< what is wrong with the server's certificate
    int redirectCount = 0;
    int timeoutMs = 15000;
    bool isParsing = false;
    int generation = 0; ///< of what is asked for; a list of an earlier one is dropped
    QThreadPool parser; ///< long lists would hold up the GUI; the last member, so that it ends first, by waiting
};

} // namespace Korvane::Gui
