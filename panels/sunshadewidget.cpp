#include "sunshadewidget.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

const QColor kLineColor(165, 165, 165);
constexpr double kResetAngle = 45.0;
constexpr int kMargin = 10;
constexpr int kInnerRings = 4;
constexpr int kSunCircle = 10; // diameter
constexpr int kSunImageReach = 8;

} // namespace

SunShadeWidget::SunShadeWidget(QWidget *parent)
    : QWidget(parent)
    , sunImage(QStringLiteral(":/Resources/sun.png"))
{
}

void SunShadeWidget::mousePressEvent(QMouseEvent *event)
{
    moveSun(event->pos());
}

void SunShadeWidget::mouseReleaseEvent(QMouseEvent *)
{
}

void SunShadeWidget::mouseMoveEvent(QMouseEvent *event)
{
    moveSun(event->pos());
}

void SunShadeWidget::moveSun(const QPoint &position)
{
    azimuth = kResetAngle;
    elevation = kResetAngle;
    sunPos = position;
    update();
}

void SunShadeWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(QPen(kLineColor, 1));
    painter.setRenderHint(QPainter::Antialiasing);
    drawRose(painter);
    drawSun(painter);
}

void SunShadeWidget::drawRose(QPainter &painter)
{
    const QRect whole = rect();
    const int side = std::min(whole.width(), whole.height());
    QRect square(whole.topLeft(), QSize(side, side));
    square.translate((whole.width() - side) / 2, (whole.height() - side) / 2);
    diameter = square.height();
    centre = QPoint(whole.x() + whole.width() / 2, whole.y() + whole.height() / 2);
    const int step = square.width() / 2 / (kInnerRings + 1);

    square = QRect(square.topLeft() + QPoint(kMargin, kMargin), square.size() - QSize(2 * kMargin, 2 * kMargin));
    painter.drawEllipse(square);
    QRect ring = square;
    for (int i = 0; i < kInnerRings; ++i) {
        ring.adjust(step, step, -step, -step);
        painter.drawEllipse(ring);
    }
    const int middleX = square.x() + square.width() / 2;
    const int middleY = square.y() + square.height() / 2;
    painter.drawLine(square.x(), middleY, square.x() + square.width(), middleY);
    painter.drawLine(middleX, square.y(), middleX, square.y() + square.height());
}

void SunShadeWidget::drawSun(QPainter &painter) const
{
    painter.drawEllipse(sunPos.x() - kSunCircle / 2, sunPos.y() - kSunCircle / 2, kSunCircle, kSunCircle);
    painter.drawLine(sunPos, centre);
    painter.drawImage(sunPos - QPoint(kSunImageReach, kSunImageReach), sunImage);
}
