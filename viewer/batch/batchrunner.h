#pragma once

#include "commandline.h"
#include "log/failurewatch.h"
#include "sources/layeropener.h"

#include <QImage>
#include <QStringList>

#include <memory>
#include <vector>

class QTextStream;

namespace Korvane {
class PluginRegistry;
namespace Map {
class MapView;
}
} // namespace Korvane

namespace Viewer {

class MainWindow;
class Translations;

/// Does what the command line asks for without a person: describes the sources, makes pictures, ends. GUI thread.
/// What it says on the way is English; only the window in a picture speaks the user's language.
class BatchRunner
{
public:
    /// Descriptions go to \a out, errors to \a err, one line each. All arguments must outlive it.
    BatchRunner(const CommandLine &commandLine, const Korvane::PluginRegistry &registry, QTextStream &out,
                QTextStream &err);
    ~BatchRunner();

    /// How long a picture may take to become complete.
    void setTimeout(int milliseconds) { timeoutMs = milliseconds; }
    /// The program's exit status: 0, or 1 when anything failed.
    int run();

    static constexpr int kDefaultTimeoutMs = 300 * 1000;

private:
    bool wantsPictures() const;
    void makeView();
    void showLayers();
    void takeSource(const QString &source);
    void takeProject(const QString &fileName);
    void takeLayer(const QString &source, std::unique_ptr<Korvane::Map::Layer> layer);
    void describe(const QString &source, Korvane::Map::Layer &layer);
    void describeFailure(const QString &source, const QString &error);
    bool tellFailures();
    void writePictures();
    void tellDamage();
    QRectF wantedRect(const QSize &pixels) const;
    void writeScreenshot();
    QImage windowPicture();
    void write(const QImage &image, const QString &fileName);
    void resizeWindow();
    void settle();
    void fail(const QString &sentence);
    void tell(const QString &sentence);

    const CommandLine &commandLine;
    const Korvane::PluginRegistry &registry;
    LayerOpener opener;
    FailureWatch failures;
    QTextStream &out;
    QTextStream &err;
    int timeoutMs = kDefaultTimeoutMs;
    bool hasFailed = false;
    bool isDamaged = false;
    QRectF firstBounds; ///< Of the first layer that was opened; null until then.
    struct Opened
    {
        QString source;
        std::unique_ptr<Korvane::Map::Layer> layer;
    };
    std::vector<Opened> opened; ///< What the pictures are to show, until they do.
    std::unique_ptr<Translations> translations;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<Korvane::Map::MapView> ownView;
    Korvane::Map::MapView *view = nullptr; ///< In the window or the own one; null when no picture is wanted.
};

} // namespace Viewer
