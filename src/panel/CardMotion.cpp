#include "CardMotion.h"

#include <QPointF>

#include <cmath>
#include <numbers>

namespace {

constexpr qreal response = 0.24;
constexpr qreal settleSeconds = 0.33;

qreal normalisedSpring(qreal progress)
{
    return CardMotion::springProgress(progress * settleSeconds) /
           CardMotion::springProgress(settleSeconds);
}

} // namespace

namespace CardMotion {

qreal springProgress(qreal seconds)
{
    if (seconds <= 0)
        return 0;
    // Critical damping: x(t) = 1 - (1 + wt) e^(-wt), w = 2 pi / response.
    const qreal omega = 2 * std::numbers::pi / response;
    return 1 - (1 + omega * seconds) * std::exp(-omega * seconds);
}

int springDurationMs()
{
    return int(settleSeconds * 1000);
}

QEasingCurve springEasing()
{
    QEasingCurve curve;
    curve.setCustomType(normalisedSpring);
    return curve;
}

QEasingCurve highlightEasing()
{
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment(QPointF(0, 0), QPointF(0.58, 1), QPointF(1, 1));
    return curve;
}

} // namespace CardMotion
