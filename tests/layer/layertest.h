#pragma once

#include "data/testfolder.h"
#include "layer/xrvjp2klayer.h"
#include "layer/xrvjp2krenderer.h"

#include <memory>
#include <stdexcept>

/// A layer that shows \a file; throws when it cannot be opened.
inline std::unique_ptr<Korvane::XRVJP2kLayer> openLayer(const QString &file)
{
    auto layer = std::make_unique<Korvane::XRVJP2kLayer>(nullptr);
    if (!layer->setDataSource(file))
        throw std::runtime_error(layer->getLastError().toStdString());
    return layer;
}

/// What the views of a layer are.
inline Korvane::XRVJP2kRenderer *rendererOf(const Korvane::XRVJP2kLayer &layer)
{
    return static_cast<Korvane::XRVJP2kRenderer *>(layer.getFile());
}
inline Korvane::XRVJP2kRenderer *backingOf(const Korvane::XRVJP2kLayer &layer)
{
    return static_cast<Korvane::XRVJP2kRenderer *>(layer.getBackingFile());
}

/// Whether \a layer, of cells that differ from column to column, smoothes them where the map shows each 4 pixels wide.
inline bool isSmoothed(Korvane::XRVJP2kLayer &layer)
{
    viewWhole(layer);
    const QImage picture = paintedWhole(layer, Qt::white, 4);
    return picture.pixel(128, 20) != picture.pixel(131, 20); // of one column
}
