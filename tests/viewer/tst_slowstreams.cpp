#include "project/project.h"
#include "project/projectcontroller.h"
#include "views/maparea.h"
#include "window/mainwindow.h"

#include "data/dialogwatch.h"
#include "data/lostonpurpose.h"
#include "data/testfolder.h"
#include "sdk/stream/webfile.h"

#include <QDGui/application.h>
#include <QDGui/layer.h>
#include <QDGui/longtask.h>
#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>

#include <QDropEvent>
#include <QElapsedTimer>
#include <QMimeData>
#include <QSettings>
#include <QUrl>
#include <QtTest>

#include <memory>

using Korvane::Application;
using Korvane::Gui::LongTask;
using Korvane::Map::Layer;
using Korvane::Map::MapView;
using Viewer::MainWindow;

using Request = FaultServer::Request;
using Connection = FaultServer::Connection;
using Dialogs = DialogWatch<QDialog>;

/// The viewer while a server keeps it waiting.
class TestSlowStreams : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase() { registry.reset(); }

    void slowServerLeavesTheWindowAlive();
    void cancelled();
    void cancelledFromThePlugin();
    void droppedMeanwhile();
    void projectKeepsWhatWasCancelled();
    void modeChangedOfALayerInView();
    void windowClosedMeanwhile();

private:
    QString at(const char *path) const { return QString::fromStdString(server->address(path)); }
    MapView *view() const { return window->mapArea()->currentView(); }

    TestFolder folder;
    QString localFile;
    WebFile image;
    std::unique_ptr<FaultServer> server; ///< "/slow..." takes its time, "/silent..." says nothing
    std::unique_ptr<Korvane::PluginRegistry> registry;
    std::unique_ptr<MainWindow> window;
    std::atomic<bool> isSilent{false};
};

namespace {

constexpr int kSilenceMs = 20000;
constexpr int kSlownessMs = 900;

void cancel(QDialog &dialog)
{
    dialog.findChild<QAbstractButton *>()->click();
}

int recentCount(const QString &address)
{
    return Application::instance()
        ->settings()
        ->value(QStringLiteral("Viewer/RecentSources"))
        .toStringList()
        .count(address);
}

} // namespace

void TestSlowStreams::initTestCase()
{
    jp2maker::Options options;
    options.width = options.height = 200;
    localFile = folder.makeImage(QStringLiteral("local.jp2"), options);
    image.bytes = folder.read(QStringLiteral("local.jp2")).toStdString();
    TestFolder::setSetting("LocalXrvpCache", false);
    registry = std::make_unique<Korvane::PluginRegistry>();
    QCOMPARE(registry->loadFolder(QStringLiteral(PLUGIN_FOLDER)), 1);
}

void TestSlowStreams::init()
{
    isSilent = false;
    server = std::make_unique<FaultServer>([this](const Request &request, const Connection &connection) {
        if (isSilent || request.target.find("silent") != std::string::npos) {
            connection.linger(kSilenceMs);
            return false;
        }
        if (request.target.find("slow") != std::string::npos)
            connection.linger(kSlownessMs);
        return connection.send(image.answer(request));
    });
    window = std::make_unique<MainWindow>(*registry);
    window->show();
}

void TestSlowStreams::cleanup()
{
    window.reset();
    server.reset();
}

void TestSlowStreams::slowServerLeavesTheWindowAlive()
{
    window->openSources({localFile});
    QVERIFY(view());
    int paints = 0;
    class Counter : public QObject
    {
    public:
        explicit Counter(int *count)
            : count(count)
        {
        }
        bool eventFilter(QObject *, QEvent *event) override
        {
            *count += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int *const count;
    } counter(&paints);
    view()->installEventFilter(&counter);
    const Dialogs watch([&](QDialog &dialog) {
        QVERIFY(QApplication::overrideCursor() && QApplication::overrideCursor()->shape() == Qt::ArrowCursor);
        QCOMPARE(dialog.parentWidget(), static_cast<QWidget *>(window.get()));
        paints = 0;
        view()->getLayer(0)->refresh(0, 0, 0, 0);
        QTRY_VERIFY_WITH_TIMEOUT(paints > 0, 1000);
    });
    window->openSources({at("/slow.jp2")});
    QCOMPARE(watch.shown, 1);
    QCOMPARE(view()->getLayerCount(), 2);
    QVERIFY(view()->waitUntilComplete(10000));
    QVERIFY(!QApplication::overrideCursor());
}

void TestSlowStreams::cancelled()
{
    const QString address = at("/known.jp2");
    window->openSources({address});
    QCOMPARE(recentCount(address), 1);
    isSilent = true;
    const QPointer<MapView> shown = view();
    QElapsedTimer sinceCancel;
    const Dialogs watch([&](QDialog &dialog) {
        sinceCancel.start();
        cancel(dialog);
    });
    QStringList failures = window->addSources({address}, nullptr);
    QVERIFY2(sinceCancel.elapsed() < 200, qPrintable(QString::number(sinceCancel.elapsed())));
    QCOMPARE(failures, QStringList(address + QStringLiteral(" cannot be opened: The opening was cancelled.")));
    // Neither an empty view nor a hole in the list of what to try again.
    QCOMPARE(window->mapArea()->views().size(), 1);
    QCOMPARE(shown->getLayerCount(), 1);
    QCOMPARE(recentCount(address), 1);
    isSilent = false;
    QCOMPARE(window->addSources({address}, shown), QStringList());
    QCOMPARE(shown->getLayerCount(), 2);
}

/// From the plug-in; then the view that a layer was meant for is closed meanwhile.
void TestSlowStreams::cancelledFromThePlugin()
{
    QObject *plugin = registry->getPlugins().constFirst().instance;
    // Boxes are put away first, and so are not there for the other.
    const BoxWatch boxes;
    const Dialogs watch([&](QDialog &dialog) {
        if (qobject_cast<QMessageBox *>(&dialog))
            return;
        if (isSilent)
            cancel(dialog);
        else
            window->mapArea()->closeAllViews();
    });
    const LostOnPurpose layer; // the plug-in abandons it
    const auto add = [&](const char *path) {
        QMetaObject::invokeMethod(plugin, "onAddXrvpUrl", Q_ARG(QString, at(path)));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    isSilent = true;
    add("/silent.jp2");
    QVERIFY(boxes.texts.isEmpty() && !view()); // no view that was made for nothing
    isSilent = false;
    add("/slow.jp2");
    QCOMPARE(boxes.texts.size(), 1);
    QVERIFY(boxes.texts[0].endsWith(QLatin1String("|Error adding layer to view.")));
}

void TestSlowStreams::droppedMeanwhile()
{
    bool hasHandled = false;
    const Dialogs watch([&](QDialog &) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(localFile)});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &enter);
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &drop);
        QCoreApplication::processEvents();
        hasHandled = true;
        QVERIFY(LongTask::isRunning());
        QVERIFY(!view());
    });
    window->openSources({at("/slow.jp2")});
    QVERIFY(hasHandled);
    QVERIFY(view());
    QCOMPARE(view()->getLayer(0)->getDataSource(), at("/slow.jp2"));
    const auto all = [&] {
        int count = 0;
        for (const MapView *one : window->mapArea()->views())
            count += one->getLayerCount();
        return count;
    };
    QTRY_COMPARE(all(), 2);
}

void TestSlowStreams::projectKeepsWhatWasCancelled()
{
    const QString project = folder.path(QStringLiteral("streams") + Viewer::kProjectSuffix);
    const QString address = at("/of_project.jp2");
    QCOMPARE(window->addSources({localFile, address}, nullptr), QStringList());
    Viewer::ProjectController *controller = window->projectController();
    QCOMPARE(controller->save(project), QString());
    isSilent = true;
    const Dialogs watch([&](QDialog &dialog) {
        QCOMPARE(view()->getLayerCount(), 2); // the old views are there until the new ones are
        cancel(dialog);
    });
    QStringList warnings;
    QCOMPARE(controller->open(project, &warnings), QString());
    QCOMPARE(watch.shown, 1);
    QCOMPARE(warnings.size(), 1);
    QVERIFY2(warnings[0].endsWith(QStringLiteral("The opening was cancelled.")), qPrintable(warnings[0]));
    QCOMPARE(view()->getLayerCount(), 1);
    QCOMPARE(controller->save(project), QString());
    isSilent = false;
    QCOMPARE(controller->open(project, &warnings), QString());
    QCOMPARE(view()->getLayerCount(), 2);
}

void TestSlowStreams::modeChangedOfALayerInView()
{
    QCOMPARE(window->addSources({at("/slow.jp2")}, nullptr), QStringList());
    Layer *layer = view()->getLayer(0);
    QVERIFY(view()->waitUntilComplete(10000));
    const auto picture = [&] {
        bool isComplete = false;
        return view()->renderToImage(QSize(200, 200), QRectF(0, 0, 200, -200), 10000, &isComplete);
    };
    const QImage before = picture();
    const Dialogs watch([&](QDialog &dialog) {
        if (isSilent)
            return cancel(dialog);
        window->resize(window->width() + 40, window->height() + 20);
        view()->update();
        QCoreApplication::processEvents();
    });
    QVERIFY(layer->setProperty("Progressive", false));
    QCOMPARE(watch.shown, 1);
    QVERIFY(layer->isValid());
    QVERIFY(view()->waitUntilComplete(10000));
    QVERIFY(picture() == before);

    isSilent = true;
    layer->setProperty("Progressive", true);
    QCOMPARE(watch.shown, 2);
    // A mode that cannot be had changes nothing.
    QVERIFY(layer->isValid());
    QCOMPARE(layer->property("Progressive").toBool(), false);
    QVERIFY(picture() == before);
}

void TestSlowStreams::windowClosedMeanwhile()
{
    bool hasReturned = false;
    QElapsedTimer timer;
    timer.start();
    QTimer::singleShot(0, window.get(), [&] {
        window->openSources({at("/silent.jp2"), at("/silent2.jp2"), at("/silent3.jp2")});
        hasReturned = true;
    });
    const Dialogs watch([&](QDialog &) { window->close(); });
    QApplication::exec();
    QVERIFY(hasReturned);
    QCOMPARE(watch.shown, 1);
    QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(window->mapArea()->views().size(), 0);
}

QTEST_MAIN(TestSlowStreams)
#include "tst_slowstreams.moc"
