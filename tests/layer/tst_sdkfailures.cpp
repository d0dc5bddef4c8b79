#include "layerprobe.h"
#include "testimages.h"

#include <QDateTime>
#include <QtTest>

using namespace Korvane;

// What no local file brings about: these definitions take the place of the SDK's in this program.
namespace {

struct
{
    int opensUntilFailure = -1;
    int viewError = 0;
    int views = 0;
    int reconnects = 0;
    PLK::CIOStream *stream = nullptr;
} sdk;

class RemoteStream : public PLK::CIOStream
{
public:
    bool IsRemote() const override { return true; }
    std::uint64_t GetSize() const override { return 0; }
    bool Seek(std::uint64_t) override { return false; }
    bool Read(void *, std::uint64_t) override { return false; }
};

} // namespace

namespace PLK {

CError CView::Open(const wchar_t *name, bool progressive, bool update)
{
    if (sdk.opensUntilFailure == 0)
        return CError(PLK_ERR_READ, "The disk is on fire.");
    --sdk.opensUntilFailure;
    return Open(CString(name), progressive, update);
}

CError CView::SetView(int, const int *, int, int, double, double, double, double)
{
    ++sdk.views;
    return sdk.viewError ? CError(sdk.viewError, "The view is lost.") : CError();
}

CError CView::Reconnect()
{
    ++sdk.reconnects;
    return {};
}

CIOStream *SDK::CFileClient::GetStream() const
{
    return sdk.stream;
}

} // namespace PLK

class TestSdkFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void lostConnection_data();
    void lostConnection();
    void otherErrors();
    void failedBackingOpen();
    void backingPictureWhileRoaming_data();
    void backingPictureWhileRoaming();

private:
    TestFolder folder;
    QString file;
};

void TestSdkFailures::init()
{
    sdk = {};
    TestFolder::setSetting("OpenProgressive", false);
    TestFolder::setSetting("UseBackingstore", false);
    file = folder.makeImage(QStringLiteral("image.jp2"), colourImage(32, 32));
}

void TestSdkFailures::lostConnection_data()
{
    QTest::addColumn<int>("secondsSinceLast");
    QTest::addColumn<int>("reconnects");
    QTest::newRow("a moment ago") << 1 << 0;
    QTest::newRow("nearly due") << 19 << 0;
    QTest::newRow("due") << 21 << 1;
}

void TestSdkFailures::lostConnection()
{
    QFETCH(int, secondsSinceLast);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(file));
    LayerProbe::lastReconnectTime(layer) = QDateTime::currentMSecsSinceEpoch() - secondsSinceLast * 1000;
    sdk.viewError = 76;
    viewWhole(layer);
    viewWhole(layer);
    QCOMPARE(sdk.views, 2);
    QTEST(sdk.reconnects, "reconnects"); // the second failure comes right after the first
    QVERIFY(!LayerProbe::isViewSet(layer));
    QVERIFY(layer.isValid());
}

void TestSdkFailures::otherErrors()
{
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(file));
    LayerProbe::lastReconnectTime(layer) = 0;
    viewWhole(layer);
    QVERIFY(LayerProbe::isViewSet(layer));
    sdk.viewError = PLK_ERR_READ;
    viewWhole(layer);
    QVERIFY(!LayerProbe::isViewSet(layer));
    QCOMPARE(sdk.reconnects, 0);
    QCOMPARE(layer.getLastError(), QString());
}

void TestSdkFailures::failedBackingOpen()
{
    TestFolder::setSetting("UseBackingstore", true);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(file));
    layer.setContrast(0.5);
    layer.setBandList({2, 1, 0});
    sdk.opensUntilFailure = 1;
    QVERIFY(!layer.setDataSource(file));
    // The main image is open, as new; everything else is as it was.
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getLastError(), QString());
    QVERIFY(layer.getFile() && layer.getFile()->IsOpen());
    QVERIFY(!LayerProbe::backingRenderer(layer));
    QCOMPARE(layer.getContrast(), 1.0);
    QCOMPARE(layer.getBandList(), QVector<int>({2, 1, 0}));

    sdk.opensUntilFailure = 0;
    QVERIFY(!layer.setDataSource(file));
    QCOMPARE(layer.getLastError(), QStringLiteral("The disk is on fire."));
}

void TestSdkFailures::backingPictureWhileRoaming_data()
{
    QTest::addColumn<bool>("remote");
    QTest::addColumn<bool>("updating");
    QTest::addColumn<bool>("opacityBand");
    QTest::addColumn<double>("transparency");
    QTest::addColumn<bool>("shown");
    QTest::newRow("at rest") << false << false << false << 1.0 << true;
    QTest::newRow("opacity band") << false << false << true << 1.0 << false;
    QTest::newRow("opacity band, local, updating") << false << true << true << 1.0 << false;
    QTest::newRow("opacity band, remote, at rest") << true << false << true << 1.0 << false;
    QTest::newRow("opacity band, roaming") << true << true << true << 1.0 << true;
    QTest::newRow("partly transparent") << false << false << false << 0.5 << false;
    QTest::newRow("partly transparent, roaming") << true << true << false << 0.5 << false;
}

void TestSdkFailures::backingPictureWhileRoaming()
{
    QFETCH(bool, remote);
    QFETCH(bool, updating);
    QFETCH(bool, opacityBand);
    QFETCH(double, transparency);
    RemoteStream stream;
    sdk.stream = remote ? &stream : nullptr;
    TestFolder::setSetting("UseBackingstore", true);
    jp2maker::Options options;
    options.width = options.height = 8;
    options.components.assign(2, jp2maker::Component());
    options.opacityLast = opacityBand;
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(folder.makeImage(QStringLiteral("two.jp2"), options)));
    layer.setTransparency(transparency);
    if (updating)
        layer.beginUpdate(true);
    const QColor green(Qt::green);
    LayerProbe::setImage(*LayerProbe::backingRenderer(layer),
                         GeoImage(2, 2, 0, 0, 8, -8, QImage::Format_ARGB32, &green));
    const bool shown = paintedWhole(layer, Qt::white).pixel(4, 4) != QColor(Qt::white).rgba();
    QTEST(shown, "shown");
}

QTEST_MAIN(TestSdkFailures)
#include "tst_sdkfailures.moc"
