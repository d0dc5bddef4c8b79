#pragma once

#include <QImage>
#include <QPoint>
#include <QWidget>

class QPainter;

/// A compass rose with a sun that can be dragged around: a picture only, no value depends on it. Before the first press
/// the sun sits in the top-left corner.
class SunShadeWidget : public QWidget
{
public:
    explicit SunShadeWidget(QWidget *parent);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void moveSun(const QPoint &position);
    void drawRose(QPainter &painter);
    void drawSun(QPainter &painter) const;

    QPoint sunPos; // in widget pixels, as centre
    QPoint centre;
    double azimuth = 45.0; // degrees
    double elevation = 45.0;
    double diameter = 0.0;
    QImage sunImage;
};
