#include "data/lostonpurpose.h"
#include "project/project.h"
#include "project/projectcontroller.h"
#include "views/maparea.h"
#include "window/mainwindow.h"

#include "data/jp2maker.h"
#include "sdk/stream/webfile.h"

#include <QDGui/application.h>
#include <QDGui/layer.h>
#include <QDGui/longtask.h>
#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <QtTest>

#include <functional>
#include <memory>

using Korvane::Application;
using Korvane::Gui::LongTask;
using Korvane::Map::Layer;
using Korvane::Map::MapView;
using Viewer::MainWindow;

using Request = FaultServer::Request;
using Connection = FaultServer::Connection;

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
    void windowClosedMeanwhile_data();
    void windowClosedMeanwhile();

private:
    QString at(const char *path) const { return QString::fromStdString(server->address(path)); }
    MapView *view() const { return window->mapArea()->currentView(); }
    /// Calls \a act once, when the dialog of a long task is there. Message boxes are noted and put away.
    void whenWaiting(const std::function<void(QDialog &)> &act);

    QTemporaryDir folder;
    QString localFile;
    WebFile image;
    std::unique_ptr<FaultServer> server; ///< "/slow..." takes its time, "/silent..." says nothing
    std::unique_ptr<Korvane::PluginRegistry> registry;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<QTimer> watch;
    std::atomic<bool> isSilent{false};
    bool hasWaited = false;
    QStringList messages;
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
    const jp2maker::FileBytes bytes = jp2maker::make(options);
    image.bytes.assign(bytes.begin(), bytes.end());
    localFile = folder.filePath(QStringLiteral("local.jp2"));
    QFile file(localFile);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(image.bytes.data(), qint64(image.bytes.size())) > 0);
    Application::instance()->setSettingsFile(folder.filePath(QStringLiteral("settings.ini")));
    Application::instance()->settings()->setValue(QStringLiteral("XRVJP2kLayer/LocalXrvpCache"), false);
    registry = std::make_unique<Korvane::PluginRegistry>();
    QCOMPARE(registry->loadFolder(QStringLiteral(PLUGIN_FOLDER)), 1);
}

void TestSlowStreams::init()
{
    isSilent = false;
    hasWaited = false;
    messages.clear();
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
    watch.reset();
    window.reset();
    server.reset();
}

void TestSlowStreams::whenWaiting(const std::function<void(QDialog &)> &act)
{
    hasWaited = false;
    watch = std::make_unique<QTimer>();
    connect(watch.get(), &QTimer::timeout, this, [this, act] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (auto *box = qobject_cast<QMessageBox *>(dialog)) {
            messages.append(box->text());
            box->accept();
        } else if (dialog && !hasWaited) {
            hasWaited = true;
            act(*dialog);
        }
    });
    watch->start(5);
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
    whenWaiting([&](QDialog &dialog) {
        QVERIFY(QApplication::overrideCursor() && QApplication::overrideCursor()->shape() == Qt::ArrowCursor);
        QCOMPARE(dialog.parentWidget(), static_cast<QWidget *>(window.get()));
        paints = 0;
        view()->getLayer(0)->refresh(0, 0, 0, 0);
        QTRY_VERIFY_WITH_TIMEOUT(paints > 0, 1000);
    });
    window->openSources({at("/slow.jp2")});
    QVERIFY(hasWaited);
    QCOMPARE(messages, QStringList());
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
    whenWaiting([&](QDialog &dialog) {
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

void TestSlowStreams::cancelledFromThePlugin()
{
    QObject *plugin = nullptr;
    for (const Korvane::PluginRegistry::Plugin &one : registry->getPlugins())
        plugin = one.instance;
    QVERIFY(plugin);
    whenWaiting(cancel);
    {
        const LostOnPurpose layer; // the plug-in abandons it
        QVERIFY(QMetaObject::invokeMethod(plugin, "onAddXrvpUrl", Q_ARG(QString, at("/silent.jp2"))));
    }
    QVERIFY(hasWaited);
    QCOMPARE(messages, QStringList(QStringLiteral("The opening was cancelled.")));

    // The view that it was meant for is closed meanwhile.
    QVERIFY(view());
    messages.clear();
    whenWaiting([&](QDialog &) { window->mapArea()->closeAllViews(); });
    {
        const LostOnPurpose layer;
        QVERIFY(QMetaObject::invokeMethod(plugin, "onAddXrvpUrl", Q_ARG(QString, at("/slow.jp2"))));
    }
    QVERIFY(hasWaited);
    QCOMPARE(messages, QStringList(QStringLiteral("Error adding layer to view.")));
}

void TestSlowStreams::droppedMeanwhile()
{
    bool hasHandled = false;
    whenWaiting([&](QDialog &) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(localFile)});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &enter);
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &drop);
        QTest::qWait(50);
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
    const QString project = folder.filePath(QStringLiteral("streams") + Viewer::kProjectSuffix);
    const QString address = at("/of_project.jp2");
    QCOMPARE(window->addSources({localFile, address}, nullptr), QStringList());
    Viewer::ProjectController *controller = window->projectController();
    QCOMPARE(controller->save(project), QString());
    isSilent = true;
    whenWaiting([&](QDialog &dialog) {
        QCOMPARE(view()->getLayerCount(), 2); // the old views are there until the new ones are
        cancel(dialog);
    });
    QStringList warnings;
    QCOMPARE(controller->open(project, &warnings), QString());
    QVERIFY(hasWaited);
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
    whenWaiting([&](QDialog &) {
        window->resize(window->width() + 40, window->height() + 20);
        view()->update();
        QTest::qWait(50);
    });
    QVERIFY(layer->setProperty("Progressive", false));
    QVERIFY(hasWaited);
    QVERIFY(layer->isValid());
    QVERIFY(view()->waitUntilComplete(10000));
    QVERIFY(picture() == before);

    isSilent = true;
    whenWaiting(cancel);
    layer->setProperty("Progressive", true);
    QVERIFY(hasWaited);
    QVERIFY(!layer->isValid());
    QCOMPARE(layer->getLastError(), QStringLiteral("The opening was cancelled."));
    view()->update();
    QTest::qWait(50);
}

void TestSlowStreams::windowClosedMeanwhile_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"window", "all windows", "quit", "quit before the dialog"})
        QTest::newRow(way) << way;
}

void TestSlowStreams::windowClosedMeanwhile()
{
    QFETCH(QString, way);
    bool hasReturned = false;
    QElapsedTimer timer;
    timer.start();
    QTimer::singleShot(0, window.get(), [&] {
        window->openSources({at("/silent.jp2"), at("/silent2.jp2"), at("/silent3.jp2")});
        hasReturned = true;
    });
    const auto leave = [&] {
        if (way == QLatin1String("window"))
            window->close();
        else if (way == QLatin1String("all windows"))
            QApplication::closeAllWindows();
        else
            QApplication::quit();
    };
    const bool isEarly = way == QLatin1String("quit before the dialog");
    whenWaiting([&](QDialog &) { leave(); });
    if (isEarly)
        QTimer::singleShot(200, window.get(), leave);
    QApplication::exec();
    QVERIFY(hasReturned);
    QCOMPARE(hasWaited, !isEarly);
    QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(window->mapArea()->views().size(), 0);
}

QTEST_MAIN(TestSlowStreams)
#include "tst_slowstreams.moc"
