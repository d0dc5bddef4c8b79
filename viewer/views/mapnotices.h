#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <functional>

class QFrame;

namespace Korvane::Map {
class ILayerCondition;
class Layer;
class MapView;
} // namespace Korvane::Map

namespace Viewer {

/// Tells, on a bar over the map, what a person would not see of the layers in it: that one lies outside the view, is
/// damaged, or gets nothing more from its server. Lost connections are tried again with growing pauses.
class MapNotices : public QObject
{
    Q_OBJECT

public:
    explicit MapNotices(QObject *parent);
    ~MapNotices() override;

    /// The view that is told about; may be null.
    void setView(Korvane::Map::MapView *view);
    /// To be told of as long as the layer, one that has just been added, lies outside the view.
    void watchPlace(const Korvane::Map::Layer *layer);
    /// Everything the bar says, for tests and screen readers.
    QStringList texts() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Notice
    {
        QString text, buttonText;
        std::function<void()> act;
    };
    /// Of a lost connection.
    struct Retry
    {
        QElapsedTimer sinceLast;
        int pauseMs = 0;
    };

    void update();
    void addNotices(Korvane::Map::Layer *layer, QVector<Notice> *notices);
    void retry(Korvane::Map::Layer *layer, Korvane::Map::ILayerCondition *source);
    void show(const QVector<Notice> &notices);
    void addRow(const Notice &notice);
    void place();

    QPointer<Korvane::Map::MapView> view;
    QPointer<QFrame> bar; ///< a child of the view; null when there is nothing to tell
    QStringList shown;
    QSet<QString> dismissed;
    QSet<const QObject *> newLayers;
    QHash<const QObject *, Retry> retries;
    QTimer timer;
};

} // namespace Viewer
