#include "ReduceMotion.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestReduceMotion final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decides_data();
    void decides();
    void processEnvironmentIsRead();
};

void TestReduceMotion::decides_data()
{
    QTest::addColumn<QByteArray>("environment");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<bool>("reduced");
    const QString kde = QStringLiteral("kdeglobals");
    const QString gtk = QStringLiteral("gtk-3.0/settings.ini");
    QTest::newRow("nothing set") << QByteArray() << QString() << QByteArray() << false;
    QTest::newRow("variable 1") << QByteArray("1") << QString() << QByteArray() << true;
    QTest::newRow("variable 0 beats the desktop")
        << QByteArray("0") << kde << QByteArray("[KDE]\nAnimationDurationFactor=0\n") << false;
    QTest::newRow("other variable value falls through")
        << QByteArray("yes") << QString() << QByteArray() << false;
    QTest::newRow("KDE factor 0") << QByteArray() << kde
                                  << QByteArray("[KDE]\nAnimationDurationFactor=0\n") << true;
    QTest::newRow("GTK animations off")
        << QByteArray() << gtk << QByteArray("[Settings]\ngtk-enable-animations=false\n") << true;
    QTest::newRow("GTK animations on")
        << QByteArray() << gtk << QByteArray("[Settings]\ngtk-enable-animations=true\n") << false;
}

void TestReduceMotion::decides()
{
    QFETCH(QByteArray, environment);
    QFETCH(QString, file);
    QFETCH(QByteArray, contents);
    QFETCH(bool, reduced);
    QTemporaryDir config;
    QVERIFY(config.isValid());
    if (!file.isEmpty()) {
        const QString path = config.filePath(file);
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(contents);
    }
    QCOMPARE(ReduceMotion::isOn(environment, config.path()), reduced);
}

void TestReduceMotion::processEnvironmentIsRead()
{
    qputenv("ZONARA_REDUCE_MOTION", "1");
    QVERIFY(ReduceMotion::isOn());
    qputenv("ZONARA_REDUCE_MOTION", "0");
    QVERIFY(!ReduceMotion::isOn());
}

QTEST_MAIN(TestReduceMotion)
#include "tst_reducemotion.moc"
