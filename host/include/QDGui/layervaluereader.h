#pragma once

#include <QDGui/qdguiglobal.h>

#include <QObject>
#include <QPointF>
#include <QVector>

namespace Korvane::Map {

/// What a layer is asked for in one place.
struct ValueQuestion
{
    QPointF world;
    /// World units that one value may stand for: a pixel's, to read what the screen shows. 0: the cell as it is stored.
    double unitsPerPixel = 0.0;
    /// Zero-based, in the order of the answer; empty for all.
    QVector<int> bands;
};

/// The answer.
struct CellValues
{
    ValueQuestion question;
    bool isInside = false;  ///< of the layer; else there are no values
    bool isExact = false;   ///< of this very cell, not of the coarser ones that the screen shows
    qint64 column = 0;      ///< of the cell at full resolution
    qint64 row = 0;         ///< the same
    QVector<double> values; ///< one for each band
    QString error;          ///< why there are no values, though the place is inside
};

/// Reads single values of a layer. It is made by ILayerValues, works beside the layer and may outlive it. GUI thread;
/// nothing here waits.
class QDGUI_EXPORT LayerValueReader : public QObject
{
    Q_OBJECT

public:
    LayerValueReader();
    ~LayerValueReader() override;

    /// Asks for values. The answer to the question asked last comes by answered(), those before it may be passed over.
    virtual void ask(const ValueQuestion &question) = 0;

Q_SIGNALS:
    void answered(const Korvane::Map::CellValues &values);
};

} // namespace Korvane::Map
