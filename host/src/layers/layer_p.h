#pragma once

#include <QDGui/layer.h>

#include <limits>
#include <mutex>
#include <optional>

namespace Korvane::Map {

/// What refresh() calls have asked for since the last delivery.
struct PendingRefresh
{
    void add(double x1, double y1, double x2, double y2);
    QRectF worldRect() const;

    bool whole = false;
    double left = std::numeric_limits<double>::infinity();
    double right = -std::numeric_limits<double>::infinity();
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
};

struct Layer::Private
{
    QString uid;
    QString comments;
    QString description;
    bool visible = true;
    bool isOpeningCancelled = false;

    /// Guards pendingRefresh and refreshCount. Not a QMutex: thread checkers see through the standard one.
    mutable std::mutex refreshMutex;
    /// Set while a delivery is on its way through the event loop.
    std::optional<PendingRefresh> pendingRefresh;
    quint64 refreshCount = 0;
};

} // namespace Korvane::Map
