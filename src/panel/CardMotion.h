#pragma once

#include <QEasingCurve>

// The two animations of the zone list: the card highlight fades in and out
// with an ease-out of 0.14 s; cards move to new places with a critically
// damped spring of response 0.24 s (no overshoot).
namespace CardMotion {

constexpr int highlightDurationMs = 140;

// The fraction of the way a spring-driven move has covered after `seconds`,
// starting at rest: 0 at the start, rising monotonically towards 1.
qreal springProgress(qreal seconds);

// How long a move is run: until less than 0.2 % of the way is left.
int springDurationMs();

// The spring as an easing curve over `springDurationMs`, ending exactly at 1.
QEasingCurve springEasing();

// The standard ease-out (a cubic Bézier through (0.58, 1)).
QEasingCurve highlightEasing();

} // namespace CardMotion
