#include "data/jp2maker.h"
#include "nginxserver.h"

#include <xrv60/plkfile.h>
#include <xrv60/plkview.h>

#include <QFile>
#include <QtTest>

#include <vector>

/// Views of files on a real web server, against views of the same files on disk.
class TestStreamView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void showsTheSameCells_data();
    void showsTheSameCells();

private:
    QTemporaryDir folder;
    NginxServer server;
};

namespace {

struct Window
{
    int width, height;
    double x1, y1, x2, y2;
};

/// All lines of a blocking view; empty when it cannot be had.
std::vector<std::uint32_t> picture(PLK::CView &view, const Window &window)
{
    const int bands[] = {0};
    if (view.SetView(1, bands, window.width, window.height, window.x1, window.y1, window.x2, window.y2))
        return {};
    std::vector<std::uint32_t> pixels(std::size_t(window.width) * std::size_t(window.height));
    for (int y = 0; y < window.height; ++y)
        if (view.ReadLineBGRA(pixels.data() + std::size_t(y) * std::size_t(window.width)) != PLK_READ_SUCCESS)
            return {};
    return pixels;
}

} // namespace

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
    const auto write = [&](const QString &name) {
        const jp2maker::FileBytes bytes = jp2maker::make(options);
        QFile file(folder.filePath(name));
        return file.open(QIODevice::WriteOnly) &&
               file.write(reinterpret_cast<const char *>(bytes.data()), qint64(bytes.size())) == qint64(bytes.size());
    };
    QVERIFY(write(QStringLiteral("walked.jp2")));
    options.tlm = options.plt = true;
    QVERIFY(write(QStringLiteral("Übersicht 東京 #1.jp2")));
    options.tileWidth = options.tileHeight = 0;
    QVERIFY(write(QStringLiteral("single.jp2")));
    QVERIFY(server.start(folder.path()));
}

void TestStreamView::showsTheSameCells_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("tile-parts to be walked") << QStringLiteral("walked.jp2");
    QTest::newRow("tile-part table, odd name") << QStringLiteral("Übersicht 東京 #1.jp2");
    QTest::newRow("single tile") << QStringLiteral("single.jp2");
}

void TestStreamView::showsTheSameCells()
{
    QFETCH(QString, name);
    PLK::CView local, remote;
    QVERIFY(!local.Open(PLK::CString(folder.filePath(name).toUtf8().constData()), false, false));
    const PLK::CError error = remote.Open(PLK::CString(server.address(name).c_str()), false, false);
    QVERIFY2(!error, error.GetErrorMessage());
    QVERIFY(remote.GetFile()->IsRemote());
    for (const Window &window : {Window{187, 187, 0, 0, 1500, -1500}, Window{300, 200, 333, -777, 633, -977},
                                 Window{1500, 1500, 0, 0, 1500, -1500}}) {
        const std::vector<std::uint32_t> expected = picture(local, window);
        QVERIFY(!expected.empty());
        QVERIFY(picture(remote, window) == expected);
    }
}

QTEST_GUILESS_MAIN(TestStreamView)
#include "tst_streamview.moc"
