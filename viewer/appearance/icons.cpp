#include "icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

namespace Viewer::Icons {

namespace {

/// Shapes are drawn on a square of this many units.
constexpr double kCanvas = 16.0;
constexpr double kLineWidth = 1.25;

void addLine(QPainterPath *path, double x1, double y1, double x2, double y2)
{
    path->moveTo(x1, y1);
    path->lineTo(x2, y2);
}

void addPolygon(QPainterPath *path, std::initializer_list<QPointF> points, bool close = false)
{
    bool isFirst = true;
    for (const QPointF &point : points) {
        if (isFirst)
            path->moveTo(point);
        else
            path->lineTo(point);
        isFirst = false;
    }
    if (close)
        path->closeSubpath();
}

void addMagnifier(QPainterPath *path)
{
    path->addEllipse(QPointF(6.75, 6.75), 4.75, 4.75);
    addLine(path, 10.25, 10.25, 14.25, 14.25);
}

/// Four corners of a frame, as for "fit".
void addCorners(QPainterPath *path)
{
    addPolygon(path, {{1.5, 5}, {1.5, 1.5}, {5, 1.5}});
    addPolygon(path, {{11, 1.5}, {14.5, 1.5}, {14.5, 5}});
    addPolygon(path, {{14.5, 11}, {14.5, 14.5}, {11, 14.5}});
    addPolygon(path, {{5, 14.5}, {1.5, 14.5}, {1.5, 11}});
}

void addFileShape(Shape shape, QPainterPath *path)
{
    if (shape == Shape::Open) {
        addPolygon(path, {{1.5, 13}, {1.5, 3}, {6, 3}, {7.5, 4.75}, {13, 4.75}, {13, 7}});
        addPolygon(path, {{1.5, 13}, {4, 7}, {15, 7}, {12.5, 13}}, true);
    } else if (shape == Shape::Save) {
        addPolygon(path, {{1.75, 1.75}, {11.75, 1.75}, {14.25, 4.25}, {14.25, 14.25}, {1.75, 14.25}}, true);
        addPolygon(path, {{4.5, 1.75}, {4.5, 5.5}, {10.5, 5.5}, {10.5, 1.75}});
        addPolygon(path, {{4.5, 14.25}, {4.5, 9}, {11.5, 9}, {11.5, 14.25}});
    } else {
        path->addRect(1.5, 2.5, 13, 11);
        addLine(path, 1.5, 5, 14.5, 5);
        addLine(path, 8, 6.75, 8, 11.75);
        addLine(path, 5.5, 9.25, 10.5, 9.25);
    }
}

void addZoomShape(Shape shape, QPainterPath *path)
{
    switch (shape) {
    case Shape::ZoomAll:
        addCorners(path);
        path->addRect(4.75, 4.75, 6.5, 6.5);
        break;
    case Shape::ZoomLayer:
        addCorners(path);
        addPolygon(path, {{8, 4.5}, {12.5, 8}, {8, 11.5}, {3.5, 8}}, true);
        break;
    case Shape::ZoomNative:
        addPolygon(path, {{2, 5}, {4, 3.5}, {4, 12.5}});
        addPolygon(path, {{10.5, 5}, {12.5, 3.5}, {12.5, 12.5}});
        path->addEllipse(QPointF(7.25, 6), 0.4, 0.4);
        path->addEllipse(QPointF(7.25, 10.5), 0.4, 0.4);
        break;
    default:
        addMagnifier(path);
        addLine(path, 4.5, 6.75, 9, 6.75);
        if (shape == Shape::ZoomIn)
            addLine(path, 6.75, 4.5, 6.75, 9);
    }
}

void addLayerShape(Shape shape, QPainterPath *path)
{
    switch (shape) {
    case Shape::Up:
        addLine(path, 8, 13.5, 8, 2.75);
        addPolygon(path, {{3.5, 7.25}, {8, 2.75}, {12.5, 7.25}});
        break;
    case Shape::Down:
        addLine(path, 8, 2.5, 8, 13.25);
        addPolygon(path, {{3.5, 8.75}, {8, 13.25}, {12.5, 8.75}});
        break;
    case Shape::Remove:
        addLine(path, 3.5, 3.5, 12.5, 12.5);
        addLine(path, 12.5, 3.5, 3.5, 12.5);
        break;
    case Shape::Properties:
        path->addEllipse(QPointF(8, 8), 6.25, 6.25);
        addLine(path, 8, 7.25, 8, 11.5);
        path->addEllipse(QPointF(8, 4.75), 0.4, 0.4);
        break;
    default: // Map: three sheets on top of each other.
        addPolygon(path, {{8, 1.5}, {14.5, 5}, {8, 8.5}, {1.5, 5}}, true);
        addPolygon(path, {{1.5, 8}, {8, 11.5}, {14.5, 8}});
        addPolygon(path, {{1.5, 11}, {8, 14.5}, {14.5, 11}});
    }
}

QPainterPath pathOf(Shape shape)
{
    QPainterPath path;
    if (shape <= Shape::NewView)
        addFileShape(shape, &path);
    else if (shape <= Shape::ZoomNative)
        addZoomShape(shape, &path);
    else
        addLayerShape(shape, &path);
    return path;
}

class LineIconEngine : public QIconEngine
{
public:
    explicit LineIconEngine(Shape shape)
        : shape(shape)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const bool isDisabled = mode == QIcon::Disabled;
        const QPalette palette = QGuiApplication::palette();
        const QPalette::ColorGroup group = isDisabled ? QPalette::Disabled : QPalette::Active;
        const QPalette::ColorRole role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / kCanvas, rect.height() / kCanvas);
        painter->setPen(QPen(palette.color(group, role), kLineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPath(pathOf(shape));
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return new LineIconEngine(shape); }

private:
    Shape shape;
};

} // namespace

QIcon icon(Shape shape)
{
    return QIcon(new LineIconEngine(shape));
}

} // namespace Viewer::Icons
