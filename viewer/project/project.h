#pragma once

#include "views/missinglayer.h"

#include <QDGui/layer.h>

#include <QRectF>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

namespace Viewer {

/// One map view of a project that was read.
struct ProjectView
{
    QString title;    ///< Empty when the view goes by its layer's name.
    QRectF worldRect; ///< From its top-left corner, negative height; null for a view that had nothing to show.
    std::vector<std::unique_ptr<Korvane::Map::Layer>> layers; ///< The lowest first.
    int activeLayer = -1;                                     ///< Position in \c layers; -1 for none.
    QVector<MissingLayer> missing;                            ///< Layers that could not be opened.
};

/// What a project file holds. Owns its layers.
struct Project
{
    std::vector<ProjectView> views;
    int currentView = -1; ///< Position in \c views; -1 for none.
    bool inTabs = true;
    QStringList warnings; ///< One sentence for each part that could not be restored.
};

/// One map view to be written. The layers stay the caller's.
struct ProjectViewSource
{
    QString title;
    QRectF worldRect;
    QVector<Korvane::Map::Layer *> layers;
    const Korvane::Map::Layer *activeLayer = nullptr;
    QVector<MissingLayer> missing;
};

struct ProjectSource
{
    QVector<ProjectViewSource> views;
    int currentView = -1;
    bool inTabs = true;
};

/// File name extension of projects, with the dot.
inline const QString kProjectSuffix = QStringLiteral(".qdproject");

inline bool isProjectFile(const QString &source)
{
    return source.endsWith(kProjectSuffix, Qt::CaseInsensitive);
}

} // namespace Viewer
