#include "nginxserver.h"
#include "varnishserver.h"

#include "data/files.h"
#include "data/jp2maker.h"
#include "data/views.h"

#include "stream/sideindex.h"

#include <QElapsedTimer>
#include <QThread>
#include <QtEndian>
#include <QtTest>

namespace {

PLK::SDK::CConfig &config()
{
    return PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
}

PLK::CString utf8(const std::string &text)
{
    return PLK::CString(text.c_str());
}

constexpr Window kAll{1500, 1500, 0, 0, 1500, -1500}, kOverview{187, 187, 0, 0, 1500, -1500};
const QString kWalked = QStringLiteral("walked.jp2"), kSingle = QStringLiteral("single.jp2"),
              kWrongTable = QStringLiteral("wrong.jp2");

} // namespace

/// Views of files on a real web server, against views of the same files on disk.
class TestStreamView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void showsTheSameCells_data();
    void showsTheSameCells();
    void tilePartsArePublished_data();
    void tilePartsArePublished();
    void secondVisitAsksWhetherItChanged();
    void serverStopsDuringAView();
    void serverStopsDuringAProgressiveView();
    void fileChangesDuringAView();
    void secureServerMustBeTrusted();
    void manyViewsOfManyStreams();
    void pagesAreNoImages();

private:
    /// A copy of a file: a stream of which nothing is at hand yet.
    QString fresh(const QString &name) const;
    void write(const QString &name, const jp2maker::Options &options) const
    {
        writeFile(folder.filePath(name), asByteArray(jp2maker::make(options)));
    }
    std::vector<std::uint32_t> localPicture(const QString &name, const Window &window) const;

    QTemporaryDir folder;
    NginxServer server;
};

QString TestStreamView::fresh(const QString &name) const
{
    static int count = 0;
    const QString copy = QString::number(++count) + name;
    return QFile::copy(folder.filePath(name), folder.filePath(copy)) ? copy : QString();
}

std::vector<std::uint32_t> TestStreamView::localPicture(const QString &name, const Window &window) const
{
    PLK::CView local;
    return local.Open(utf8(folder.filePath(name).toStdString()), false, false) ? std::vector<std::uint32_t>()
                                                                               : readPicture(local, window);
}

void TestStreamView::initTestCase()
{
    if (!NginxServer::isInstalled())
        QSKIP("nginx is not installed");
    QVERIFY(folder.isValid());
    jp2maker::Options options;
    options.width = options.height = 1500;
    options.tileWidth = options.tileHeight = 256;
    options.levels = 5;
    options.precincts = {{128, 128}};
    options.progression = "RPCL";
    options.cell = [](int, int x, int y) { return (x * x / 7 + (y * 37 ^ x * 3)) & 255; };
    write(kWalked, options);
    options.tlm = options.plt = true;
    write(QStringLiteral("Übersicht 東京 #1.jp2"), options);
    // The first length in the table of tile-parts, which say their tile in one byte, is wrong.
    QByteArray wrong = asByteArray(jp2maker::make(options));
    auto *const length = reinterpret_cast<uchar *>(wrong.data()) + wrong.indexOf("\xFF\x55") + 7;
    qToBigEndian(qFromBigEndian<quint32>(length) - 16, length);
    writeFile(folder.filePath(kWrongTable), wrong);
    options.tileWidth = options.tileHeight = 0;
    write(kSingle, options);
    QVERIFY(server.start(folder.path()));
}

void TestStreamView::showsTheSameCells_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isBehindVarnish");
    QTest::newRow("tile-parts to be walked") << kWalked << false;
    QTest::newRow("tile-part table, odd name") << QStringLiteral("Übersicht 東京 #1.jp2") << false;
    QTest::newRow("wrong tile-part table") << kWrongTable << false;
    QTest::newRow("single tile") << kSingle << false;
    QTest::newRow("tile-parts to be walked, behind Varnish") << kWalked << true;
    QTest::newRow("single tile, behind Varnish") << kSingle << true;
}

void TestStreamView::showsTheSameCells()
{
    QFETCH(QString, name);
    QFETCH(bool, isBehindVarnish);
    if (isBehindVarnish && !VarnishServer::isInstalled())
        QSKIP("Varnish is not installed");
    VarnishServer varnish;
    QVERIFY(!isBehindVarnish || varnish.start(server.port()));
    PLK::CView local, remote;
    QVERIFY(!local.Open(PLK::CString(folder.filePath(name).toUtf8().constData()), false, false));
    const std::string address = isBehindVarnish ? varnish.address(name.toStdString()) : server.address(name);
    const PLK::CError error = remote.Open(utf8(address), false, false);
    QVERIFY2(!error, error.GetErrorMessage());
    QVERIFY(remote.GetFile()->IsRemote());
    for (const Window &window : {Window{187, 187, 0, 0, 1500, -1500}, Window{300, 200, 333, -777, 633, -977},
                                 Window{1500, 1500, 0, 0, 1500, -1500}}) {
        const std::vector<std::uint32_t> expected = readPicture(local, window);
        QVERIFY(!expected.empty());
        QVERIFY(readPicture(remote, window) == expected);
    }
}

namespace {

using Spoil = std::function<void(QByteArray *tileParts, xrv::Bytes *start)>;

/// The tile, length and TNsot of each tile-part of \a file, one after the other.
QByteArray walkedTileParts(const QByteArray &file)
{
    QByteArray parts;
    for (int at = file.indexOf("\xFF\x90"); at > 0 && file.mid(at, 2) == "\xFF\x90";) {
        parts += file.mid(at + 4, 6) + file.mid(at + 11, 1);
        at += int(qFromBigEndian<quint32>(file.constData() + at + 6));
    }
    return parts;
}

} // namespace
Q_DECLARE_METATYPE(Spoil)

void TestStreamView::tilePartsArePublished_data()
{
    QTest::addColumn<Spoil>("spoil");
    QTest::addColumn<bool>("isUsed");
    QTest::newRow("right") << Spoil([](QByteArray *, xrv::Bytes *) {}) << true;
    QTest::newRow("of another image") << Spoil([](QByteArray *, xrv::Bytes *start) { start->back() ^= 1; }) << false;
    QTest::newRow("wrong length") << Spoil([](QByteArray *parts, xrv::Bytes *) { (*parts)[5] = char((*parts)[5] - 1); })
                                  << false;
    QTest::newRow("tile that is none") << Spoil([](QByteArray *parts, xrv::Bytes *) { (*parts)[0] = 7; }) << false;
    QTest::newRow("cut") << Spoil([](QByteArray *parts, xrv::Bytes *) { parts->chop(7 * 20 + 3); }) << false;
}

void TestStreamView::tilePartsArePublished()
{
    QFETCH(Spoil, spoil);
    QFETCH(bool, isUsed);
    const QString name = fresh(kWalked);
    const QByteArray file = readFile(folder.filePath(name));
    QByteArray parts = walkedTileParts(file);
    QCOMPARE(parts.size(), 36 * 7);
    xrv::Bytes start(file.begin(), file.begin() + 4096);
    spoil(&parts, &start);
    xrv::SideIndex index;
    index.set("tile-parts", xrv::Bytes(parts.begin(), parts.end()));
    const xrv::Bytes content = index.write(std::uint64_t(file.size()), start);
    writeFile(folder.filePath(name + QStringLiteral(".xrvi")),
              QByteArray(reinterpret_cast<const char *>(content.data()), int(content.size())));
    server.takeLog();
    PLK::CView view;
    QVERIFY(!view.Open(utf8(server.address(name)), false, false));
    QVERIFY(readPicture(view, kOverview) == localPicture(kWalked, kOverview));
    const int requests = server.takeLog().size();
    QVERIFY2((requests < 10) == isUsed, qPrintable(QString::number(requests)));
}

void TestStreamView::secondVisitAsksWhetherItChanged()
{
    QTemporaryDir cache;
    config().SetXrvpCacheEnabled(true);
    config().SetXrvpCacheLocation(cache.path().toLocal8Bit().constData());
    const QString name = fresh(kSingle);
    const std::vector<std::uint32_t> expected = localPicture(kSingle, kOverview);
    {
        PLK::CView view;
        QVERIFY(!view.Open(utf8(server.address(name)), false, false));
        QVERIFY(readPicture(view, kOverview) == expected);
        view.Close(true);
    }
    server.takeLog();
    PLK::CView view;
    QVERIFY(!view.Open(utf8(server.address(name)), false, false));
    QVERIFY(readPicture(view, kOverview) == expected);
    const QStringList log = server.takeLog();
    QCOMPARE(log.size(), 1);
    QVERIFY2(log[0].startsWith(QLatin1String("304 0 ")), qPrintable(log[0]));
    config().SetXrvpCacheLocation(nullptr);
}

void TestStreamView::serverStopsDuringAView()
{
    PLK::CView view;
    QVERIFY(!view.Open(utf8(server.address(fresh(kWalked))), false, false));
    const std::vector<std::uint32_t> overview = readPicture(view, kOverview);
    QVERIFY(!overview.empty());
    server.stop();
    QVERIFY(readPicture(view, {300, 300, 700, -700, 1000, -1000}).empty());
    QCOMPARE(view.GetLastError().GetErrorNumber(), int(PLK_ERR_CONNECTION_LOST));
    const PLK::CError error = setView(view, {300, 300, 700, -700, 1000, -1000});
    QCOMPARE(error.GetErrorNumber(), 76);
    QVERIFY(QByteArray(error.GetErrorMessage()).contains("walked.jp2"));
    QVERIFY(server.start(folder.path()));
    QVERIFY(!view.Reconnect());
    // The view that was asked for last is the one that shows, without being set again.
    std::vector<std::uint32_t> pixels(300 * 300);
    for (std::size_t y = 0; y < 300; ++y)
        QCOMPARE(view.ReadLineBGRA(pixels.data() + y * 300), PLK_READ_SUCCESS);
    QVERIFY(pixels == localPicture(kWalked, {300, 300, 700, -700, 1000, -1000}));
    QVERIFY(readPicture(view, kOverview) == overview);
}

void TestStreamView::serverStopsDuringAProgressiveView()
{
    ProgressiveView view;
    QVERIFY(!view.Open(utf8(server.address(fresh(kSingle))), true, false));
    server.stop();
    QVERIFY(!setView(view, kAll));
    QTRY_VERIFY_WITH_TIMEOUT(view.failed(), 20000);
    QVERIFY(server.start(folder.path()));
    QVERIFY(!view.Reconnect());
    QTRY_VERIFY_WITH_TIMEOUT(view.picture() == localPicture(kSingle, kAll), 20000);
}

void TestStreamView::fileChangesDuringAView()
{
    const QString name = QStringLiteral("changing.jp2");
    jp2maker::Options options;
    options.width = options.height = 700;
    options.tileWidth = options.tileHeight = 100;
    options.cell = [](int, int x, int y) { return (x * 5 ^ y * 3) & 255; };
    write(name, options);
    PLK::CView view;
    QVERIFY(!view.Open(utf8(server.address(name)), false, false));
    QVERIFY(!readPicture(view, {100, 100, 0, 0, 100, -100}).empty());
    options.cell = [](int, int x, int y) { return (x * 7 ^ y * 11) & 255; };
    options.height = 900;
    write(name, options);
    QVERIFY(readPicture(view, {700, 700, 0, 0, 700, -700}).empty());
    QCOMPARE(view.GetLastError().GetErrorNumber(), int(PLK_ERR_FILE_CHANGED));
    QVERIFY(readPicture(view, {100, 100, 0, 0, 100, -100}).empty());
    QCOMPARE(view.Reconnect().GetErrorNumber(), int(PLK_ERR_FILE_CHANGED));
    QVERIFY(!view.Open(utf8(server.address(name)), false, false));
    QCOMPARE(view.GetFileInfo()->nSizeY, 900u);
    QVERIFY(readPicture(view, {700, 900, 0, 0, 700, -900}) == localPicture(name, {700, 900, 0, 0, 700, -900}));
}

void TestStreamView::secureServerMustBeTrusted()
{
    NginxServer secure;
    if (!secure.makeSecure() || !secure.start(folder.path()))
        QSKIP("no certificate can be made, or nginx knows no TLS");
    PLK::CView view;
    const std::string address = secure.address(kSingle);
    PLK::CError error = view.Open(utf8(address), false, false);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_UNTRUSTED));
    config().SetXrvpClientCaFile(secure.certificateFile().toLocal8Bit().constData());
    QVERIFY(!view.Open(utf8(address), false, false));
    QVERIFY(readPicture(view, kOverview) == localPicture(kSingle, kOverview));
    // All on one connection but for the question whether several ranges are answered.
    const QStringList others = secure.takeLog().filter(QStringLiteral("HTTP/1.1"));
    QCOMPARE(others.size(), 1);
    QVERIFY2(others[0].contains(QLatin1String(" bytes=0-0,")), qPrintable(others[0]));
    error = view.Open(utf8(secure.address(QStringLiteral("away/a"))), false, false);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_SERVER));
    QVERIFY(QByteArray(error.GetErrorMessage()).contains("open one"));
    config().SetXrvpClientCaFile(nullptr);
}

/// XRV_LOAD_SECONDS says for how long; a few are enough for every day.
void TestStreamView::manyViewsOfManyStreams()
{
    constexpr int kStreams = 10, kViews = 200;
    const int seconds = std::max(2, qEnvironmentVariableIntValue("XRV_LOAD_SECONDS"));
    QStringList names;
    for (int i = 0; i < kStreams; ++i)
        names.append(fresh(i % 2 ? kWalked : kSingle));
    const Window last{150, 150, 400, -500, 700, -800};
    const std::vector<std::uint32_t> expected[] = {localPicture(kSingle, last), localPicture(kWalked, last)};
    std::vector<std::unique_ptr<ProgressiveView>> views;
    for (int i = 0; i < kViews; ++i) {
        views.push_back(std::make_unique<ProgressiveView>());
        QVERIFY(!views.back()->Open(utf8(server.address(names[i % kStreams])), true, false));
    }
    QElapsedTimer timer;
    timer.start();
    for (int step = 0; timer.elapsed() < seconds * 1000; ++step) {
        ProgressiveView &view = *views[std::size_t(step % kViews)];
        const double x = step * 37 % 1200, y = step * 53 % 1200;
        QVERIFY(!setView(view, {120, 120, x, -y, x + 300, -y - 300}));
        QThread::yieldCurrentThread();
    }
    for (const auto &view : views)
        QVERIFY(!setView(*view, last));
    for (int i = 0; i < kViews; ++i)
        QTRY_VERIFY_WITH_TIMEOUT(views[std::size_t(i)]->picture() == expected[i % kStreams % 2], 60000);
}

void TestStreamView::pagesAreNoImages()
{
    writeFile(folder.filePath(QStringLiteral("login.jp2")), "\r\n<!DOCTYPE html><title>Log in</title>");
    PLK::CView view;
    const PLK::CError error = view.Open(utf8(server.address(QStringLiteral("login.jp2"))), false, false);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_UNKNOWN_FORMAT));
    QVERIFY2(QByteArray(error.GetErrorMessage()).contains("page"), error.GetErrorMessage());
}

QTEST_GUILESS_MAIN(TestStreamView)
#include "tst_streamview.moc"
