#include "listingclient.h"

#include "scriptedserver.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QSslSocket>
#include <QTest>
#include <QTimer>

#include <memory>

using Korvane::Gui::ListingClient;
using Korvane::Gui::ServerListing;

Q_DECLARE_METATYPE(Korvane::Gui::ServerListing)

/// Asking servers for lists, through real sockets.
class TestListingClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void reads();
    void tellsFailures_data();
    void tellsFailures();
    void followsWithinTheServer();
    void sendsCredentialsNowhereElse();
    void followsNotEverywhere_data();
    void followsNotEverywhere();
    void givesUpOnSlowServers_data();
    void givesUpOnSlowServers();
    void cancelsAtOnce();
    void readsNoMoreThanSoMuch();
    void canAskFromWithinTheAnswer();

private:
    struct Outcome
    {
        QUrl folder;
        ServerListing listing;
        QString error;
        int count = 0;
    };
    static Outcome fetch(const QUrl &url, const QString &credentials = QString(), int timeoutMs = 15000);
    static QUrl urlOf(const ScriptedServer &server, const QString &path = QStringLiteral("/maps/"));
};

static const QByteArray kPage = "<title>Index of /maps/</title><a href=\"a.jp2\">a.jp2</a>";

void TestListingClient::initTestCase()
{
    QVERIFY(QSslSocket::supportsSsl()); // what xrvps needs
}

QUrl TestListingClient::urlOf(const ScriptedServer &server, const QString &path)
{
    return QUrl(QStringLiteral("http://") + server.place() + path);
}

TestListingClient::Outcome TestListingClient::fetch(const QUrl &url, const QString &credentials, int timeoutMs)
{
    ListingClient client;
    client.setTimeout(timeoutMs);
    Outcome outcome;
    connect(&client, &ListingClient::listed, &client, [&](const QUrl &folder, const ServerListing &listing) {
        outcome.folder = folder;
        outcome.listing = listing;
        ++outcome.count;
    });
    connect(&client, &ListingClient::failed, &client, [&](const QString &sentence) {
        outcome.error = sentence;
        ++outcome.count;
    });
    client.fetch(url, credentials);
    if (!QTest::qWaitFor([&] { return outcome.count > 0; }, 30000))
        qFatal("no answer and no failure");
    QCoreApplication::processEvents(); // nothing may follow
    return outcome;
}

void TestListingClient::reads()
{
    ScriptedServer server(
        [](const QByteArray &, QTcpSocket *socket) { socket->write(ScriptedServer::answer("200 OK", kPage)); });
    const Outcome outcome = fetch(urlOf(server));
    QCOMPARE(outcome.error, QString());
    QCOMPARE(outcome.count, 1);
    QCOMPARE(outcome.folder, urlOf(server));
    QCOMPARE(outcome.listing.entries.size(), 1);
    QVERIFY(!server.requests[0].contains("Authorization"));
    QVERIFY(!server.requests[0].contains("gzip"));
}

void TestListingClient::tellsFailures_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &answer, const char *expected) {
        QTest::newRow(name) << answer << QString::fromLatin1(expected);
    };
    row("not allowed", ScriptedServer::answer("403 Forbidden", kPage), "does not list");
    row("not there", ScriptedServer::answer("404 Not Found", kPage), "no list of such a folder");
    row("password wanted", ScriptedServer::answer("401 Unauthorized", kPage, "WWW-Authenticate: Basic realm=\"x\"\r\n"),
        "user name");
    row("in trouble", ScriptedServer::answer("503 Busy", kPage), "503 Busy");
    row("no HTTP", "SSH-2.0-Server\r\n\r\n", "");
    row("nothing", "", "");
    row("cut off", "HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + kPage, "");
    row("sent nowhere", "HTTP/1.1 302 Found\r\nContent-Length: 0\r\n\r\n", "302");
}

void TestListingClient::tellsFailures()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, expected);
    ScriptedServer server([&](const QByteArray &, QTcpSocket *socket) {
        socket->write(answer);
        socket->disconnectFromHost();
    });
    const Outcome outcome = fetch(urlOf(server), QStringLiteral("me:sesame"));
    QCOMPARE(outcome.count, 1);
    QVERIFY(!outcome.error.isEmpty());
    QVERIFY2(outcome.error.contains(expected), qPrintable(outcome.error));
    QVERIFY2(!outcome.error.contains(QStringLiteral("sesame")), qPrintable(outcome.error));
}

void TestListingClient::followsWithinTheServer()
{
    ScriptedServer server([](const QByteArray &request, QTcpSocket *socket) {
        const bool isFirst = ScriptedServer::pathOf(request) == "/maps/";
        socket->write(isFirst ? ScriptedServer::redirection(QStringLiteral("/new%20maps/"))
                              : ScriptedServer::answer("200 OK", kPage));
    });
    const Outcome outcome = fetch(urlOf(server), QStringLiteral("me:ses%40me"));
    QCOMPARE(outcome.folder, urlOf(server, QStringLiteral("/new%20maps/")));
    QCOMPARE(outcome.listing.entries.size(), 1);
    QCOMPARE(server.requests.size(), 2);
    for (const QByteArray &request : qAsConst(server.requests))
        QVERIFY(request.contains("Authorization: Basic " + QByteArray("me:ses@me").toBase64()));
}

void TestListingClient::sendsCredentialsNowhereElse()
{
    ScriptedServer other(
        [](const QByteArray &, QTcpSocket *socket) { socket->write(ScriptedServer::answer("200 OK", kPage)); });
    ScriptedServer server([&](const QByteArray &, QTcpSocket *socket) {
        socket->write(ScriptedServer::redirection(QStringLiteral("http://you:pw@%1/maps/").arg(other.place())));
    });
    const Outcome outcome = fetch(urlOf(server), QStringLiteral("me:sesame"));
    QCOMPARE(outcome.folder, urlOf(other));
    QCOMPARE(other.requests.size(), 1);
    QVERIFY(!other.requests[0].contains("Authorization"));
}

void TestListingClient::followsNotEverywhere_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("expected");
    QTest::newRow("file") << QStringLiteral("file:///etc/") << QStringLiteral("web server");
    QTest::newRow("ftp") << QStringLiteral("ftp://127.0.0.1/") << QStringLiteral("web server");
    QTest::newRow("no server") << QStringLiteral("http:///x/") << QString();
    QTest::newRow("in circles") << QStringLiteral("/maps/") << QStringLiteral("without end");
}

void TestListingClient::followsNotEverywhere()
{
    QFETCH(QString, target);
    QFETCH(QString, expected);
    ScriptedServer server(
        [&](const QByteArray &, QTcpSocket *socket) { socket->write(ScriptedServer::redirection(target)); });
    const Outcome outcome = fetch(urlOf(server));
    QCOMPARE(outcome.count, 1);
    QVERIFY(!outcome.error.isEmpty());
    QVERIFY2(outcome.error.contains(expected), qPrintable(outcome.error));
    QVERIFY(server.requests.size() <= ListingClient::kMaxRedirects + 1);
}

void TestListingClient::givesUpOnSlowServers_data()
{
    QTest::addColumn<bool>("drips");
    QTest::newRow("silent") << false;
    QTest::newRow("dripping") << true;
}

void TestListingClient::givesUpOnSlowServers()
{
    QFETCH(bool, drips);
    ScriptedServer server([&](const QByteArray &, QTcpSocket *socket) {
        if (!drips)
            return;
        socket->write("HTTP/1.1 200 OK\r\n\r\n");
        auto *drip = new QTimer(socket);
        connect(drip, &QTimer::timeout, socket, [socket] { socket->write("x"); });
        drip->start(20);
    });
    QElapsedTimer timer;
    timer.start();
    const Outcome outcome = fetch(urlOf(server), QString(), 1000);
    QVERIFY2(outcome.error.contains(QStringLiteral("did not answer")), qPrintable(outcome.error));
    QVERIFY(timer.elapsed() >= 950);
}

void TestListingClient::cancelsAtOnce()
{
    QPointer<QTcpSocket> held;
    ScriptedServer server([&](const QByteArray &, QTcpSocket *socket) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + kPage);
        held = socket;
    });
    auto client = std::make_unique<ListingClient>();
    int told = 0;
    connect(client.get(), &ListingClient::listed, this, [&] { ++told; });
    connect(client.get(), &ListingClient::failed, this, [&] { ++told; });
    client->fetch(urlOf(server), QString());
    QVERIFY(client->isBusy());
    QTRY_VERIFY(held);
    client->cancel();
    QVERIFY(!client->isBusy());
    QTRY_VERIFY(!held); // the connection is given up too
    client->fetch(urlOf(server), QString());
    QTRY_VERIFY(held);
    client.reset();
    QTRY_VERIFY(!held);
    QCOMPARE(told, 0);
}

void TestListingClient::readsNoMoreThanSoMuch()
{
    qint64 sent = 0;
    ScriptedServer server([&](const QByteArray &, QTcpSocket *socket) {
        socket->write("HTTP/1.1 200 OK\r\n\r\n" + kPage);
        const auto more = [&sent, socket] {
            while (socket->bytesToWrite() < 1 << 20 && sent < 64 << 20)
                sent += socket->write(QByteArray(1 << 18, ' '));
        };
        connect(socket, &QTcpSocket::bytesWritten, socket, more);
        more();
    });
    const Outcome outcome = fetch(urlOf(server));
    QCOMPARE(outcome.error, QString());
    QCOMPARE(outcome.listing.entries.size(), 1);
    QVERIFY(outcome.listing.isCutOff);
    // Beyond that lie the buffers of both ends.
    QVERIFY2(sent < 4LL * ListingClient::kMaxBytes, qPrintable(QString::number(sent)));
}

void TestListingClient::canAskFromWithinTheAnswer()
{
    ScriptedServer server([](const QByteArray &request, QTcpSocket *socket) {
        const bool exists = ScriptedServer::pathOf(request) != "/none/";
        socket->write(exists ? ScriptedServer::answer("200 OK", kPage) : ScriptedServer::answer("404 No", "x"));
    });
    ListingClient client;
    QStringList told;
    connect(&client, &ListingClient::listed, this, [&](const QUrl &folder) {
        told.append(folder.path());
        if (told.size() == 1)
            client.fetch(urlOf(server, QStringLiteral("/none/")), QString());
    });
    connect(&client, &ListingClient::failed, this, [&] {
        told.append(QStringLiteral("failed"));
        client.fetch(urlOf(server, QStringLiteral("/last/")), QString());
    });
    client.fetch(urlOf(server), QString());
    QTRY_COMPARE(told.size(), 3);
    QCOMPARE(told, (QStringList{QStringLiteral("/maps/"), QStringLiteral("failed"), QStringLiteral("/last/")}));
}

QTEST_GUILESS_MAIN(TestListingClient)
#include "tst_listingclient.moc"
