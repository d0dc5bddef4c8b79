#include "mapnotices.h"

#include "sources/sources.h"

#include <QDGui/ilayercondition.h>
#include <QDGui/longtask.h>
#include <QDGui/mapview.h>

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace Viewer {

using Korvane::Map::ILayerCondition;
using Korvane::Map::Layer;
using Korvane::Map::MapView;
using Fault = ILayerCondition::Fault;

namespace {

constexpr int kLookMs = 500;
constexpr int kFirstPauseMs = 3000, kLongestPauseMs = 300 * 1000;
constexpr int kMaxRows = 4; // more would hide the map

bool isInView(const Layer &layer, const MapView &view)
{
    return view.getVisibleWorldRect().normalized().intersects(layer.getBounds().normalized());
}

} // namespace

MapNotices::MapNotices(QObject *parent)
    : QObject(parent)
{
    timer.setInterval(kLookMs);
    connect(&timer, &QTimer::timeout, this, &MapNotices::update);
}

MapNotices::~MapNotices()
{
    delete bar;
}

void MapNotices::setView(MapView *newView)
{
    if (view) {
        view->removeEventFilter(this);
        view->disconnect(this);
    }
    show({});
    view = newView;
    if (!view) {
        timer.stop();
        return;
    }
    view->installEventFilter(this);
    connect(view, &MapView::layersChanged, this, &MapNotices::update);
    timer.start();
    update();
}

void MapNotices::watchPlace(const Layer *layer)
{
    newLayers.insert(layer);
    connect(layer, &QObject::destroyed, this, [this](const QObject *gone) { newLayers.remove(gone); });
    update();
}

QStringList MapNotices::texts() const
{
    return shown;
}

void MapNotices::update()
{
    if (!view || Korvane::Gui::LongTask::isRunning())
        return;
    QVector<Notice> notices;
    const QList<Layer *> layers = view->getLayers();
    for (Layer *layer : layers) {
        if (layer->isVisible())
            addNotices(layer, &notices);
    }
    notices.erase(std::remove_if(notices.begin(), notices.end(),
                                 [this](const Notice &notice) { return dismissed.contains(notice.text); }),
                  notices.end());
    notices.resize(std::min(notices.size(), kMaxRows));
    QStringList texts;
    for (const Notice &notice : qAsConst(notices))
        texts.append(notice.text);
    if (texts != shown)
        show(notices);
}

void MapNotices::addNotices(Layer *layer, QVector<Notice> *notices)
{
    const QString name = Sources::nameOfLayer(*layer);
    const QPointer<Layer> guard(layer); // the buttons may be clicked just before the layer goes
    const auto repair = [guard] {
        if (auto *source = dynamic_cast<ILayerCondition *>(guard.data()))
            source->repair();
    };
    if (newLayers.contains(layer) && isInView(*layer, *view)) {
        newLayers.remove(layer);
    } else if (newLayers.contains(layer)) {
        notices->append({tr("%1 lies outside the view.").arg(name), tr("Zoom to Layer"), [this, guard] {
                             if (guard && view)
                                 view->zoomToLayer(guard);
                         }});
    }
    auto *source = dynamic_cast<ILayerCondition *>(layer);
    const ILayerCondition::Condition condition = source ? source->getCondition() : ILayerCondition::Condition();
    if (condition.fault != Fault::ConnectionLost)
        retries.remove(layer);
    switch (condition.fault) {
    case Fault::None:
        break;
    case Fault::Damaged:
        notices->append({tr("%1 is damaged and shown as well as can be: %2").arg(name, condition.sentence), {}, {}});
        break;
    case Fault::ConnectionLost:
        notices->append({tr("The connection is lost: %1").arg(condition.sentence), tr("Reconnect"), repair});
        retry(layer, source);
        break;
    case Fault::SourceChanged:
        notices->append({condition.sentence, tr("Open Again"), repair});
        break;
    }
}

/// After three seconds, six, twelve and so on, as long as it does not help.
void MapNotices::retry(Layer *layer, ILayerCondition *source)
{
    if (!retries.contains(layer)) {
        connect(layer, &QObject::destroyed, this, [this](const QObject *gone) { retries.remove(gone); });
        retries[layer].pauseMs = kFirstPauseMs;
        retries[layer].sinceLast.start();
    }
    Retry &state = retries[layer];
    if (!state.sinceLast.hasExpired(state.pauseMs))
        return;
    state.pauseMs = std::min(2 * state.pauseMs, kLongestPauseMs);
    state.sinceLast.start();
    source->repair();
}

void MapNotices::show(const QVector<Notice> &notices)
{
    delete bar;
    shown.clear();
    if (!view || notices.isEmpty())
        return;
    bar = new QFrame(view);
    bar->setFrameShape(QFrame::StyledPanel);
    bar->setAutoFillBackground(true);
    bar->setCursor(Qt::ArrowCursor);
    QPalette colours = bar->palette();
    colours.setBrush(QPalette::Window, colours.brush(QPalette::ToolTipBase));
    colours.setBrush(QPalette::WindowText, colours.brush(QPalette::ToolTipText));
    bar->setPalette(colours);
    auto *rows = new QVBoxLayout(bar);
    rows->setContentsMargins(8, 4, 4, 4);
    rows->setSpacing(2);
    for (const Notice &notice : notices)
        addRow(notice);
    place();
    bar->show();
}

void MapNotices::addRow(const Notice &notice)
{
    shown.append(notice.text);
    auto *row = new QHBoxLayout;
    auto *label = new QLabel(notice.text);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(label, 1);
    if (notice.act) {
        auto *button = new QPushButton(notice.buttonText);
        // What is done may open a stream and replace this bar.
        connect(
            button, &QPushButton::clicked, this, [act = notice.act] { act(); }, Qt::QueuedConnection);
        connect(button, &QPushButton::clicked, this, &MapNotices::update, Qt::QueuedConnection);
        row->addWidget(button);
    }
    auto *close = new QToolButton;
    close->setText(QStringLiteral("\u00d7"));
    close->setAutoRaise(true);
    close->setToolTip(tr("Hide this message"));
    close->setAccessibleName(tr("Hide this message"));
    connect(
        close, &QToolButton::clicked, this,
        [this, text = notice.text] {
            dismissed.insert(text);
            update();
        },
        Qt::QueuedConnection);
    row->addWidget(close);
    static_cast<QVBoxLayout *>(bar->layout())->addLayout(row);
}

/// Along the upper edge of the view.
void MapNotices::place()
{
    if (!bar || !view)
        return;
    const int width = view->width();
    bar->setGeometry(0, 0, width,
                     std::min(view->height(), std::max(bar->heightForWidth(width), bar->minimumSizeHint().height())));
}

bool MapNotices::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == view && event->type() == QEvent::Resize)
        place();
    return false;
}

} // namespace Viewer
