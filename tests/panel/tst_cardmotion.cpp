#include "CardMotion.h"

#include <QTest>

class TestCardMotion final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void springRisesWithoutOvershootAndSettles();
    void springEasingSpansTheWholeMove();
    void highlightEasesOut();
};

void TestCardMotion::springRisesWithoutOvershootAndSettles()
{
    qreal previous = CardMotion::springProgress(0);
    QCOMPARE(previous, 0.0);
    for (int ms = 5; ms <= 1000; ms += 5) {
        const qreal progress = CardMotion::springProgress(ms / 1000.0);
        QVERIFY2(progress > previous && progress < 1.0, qPrintable(QString::number(ms)));
        previous = progress;
    }
    // A critically damped spring of response 0.24 s is nearly home at 0.24 s
    // and still visibly moving at a third of it.
    QVERIFY(CardMotion::springProgress(0.24) > 0.98);
    QVERIFY(CardMotion::springProgress(0.08) < 0.7);
    const qreal end = CardMotion::springDurationMs() / 1000.0;
    QVERIFY(end > 0.24 && end < 0.4);
    QVERIFY(1 - CardMotion::springProgress(end) < 0.002);
}

void TestCardMotion::springEasingSpansTheWholeMove()
{
    const QEasingCurve curve = CardMotion::springEasing();
    QCOMPARE(curve.valueForProgress(0), 0.0);
    QCOMPARE(curve.valueForProgress(1), 1.0);
    for (int i = 1; i <= 100; ++i)
        QVERIFY(curve.valueForProgress(i / 100.0) > curve.valueForProgress((i - 1) / 100.0));
}

void TestCardMotion::highlightEasesOut()
{
    const QEasingCurve curve = CardMotion::highlightEasing();
    QVERIFY(qAbs(curve.valueForProgress(1) - 1) < 1e-6);
    // Fast at first, slow at the end.
    QVERIFY(curve.valueForProgress(0.25) > 0.35);
    QVERIFY(curve.valueForProgress(0.9) - curve.valueForProgress(0.8) <
            curve.valueForProgress(0.2) - curve.valueForProgress(0.1));
}

QTEST_MAIN(TestCardMotion)
#include "tst_cardmotion.moc"
