#include "PanelTestSupport.h"
#include "SettingsTexts.h"

#include <QTest>

class TestSettingsTexts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void version_data();
    void version();
    void lastChecked_data();
    void lastChecked();
};

void TestSettingsTexts::version_data()
{
    QTest::addColumn<QVariant>("shortVersion");
    QTest::addColumn<QVariant>("build");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing known") << QVariant() << QVariant() << "1.1 (2)";
    QTest::newRow("short version only") << QVariant("3.0") << QVariant() << "3.0 (2)";
    QTest::newRow("build only") << QVariant() << QVariant("57") << "1.1 (57)";
    QTest::newRow("both") << QVariant("0.1.0") << QVariant("57") << "0.1.0 (57)";
    QTest::newRow("not text") << QVariant(3) << QVariant(57.0) << "1.1 (2)";
    QTest::newRow("blank") << QVariant(" ") << QVariant("") << "1.1 (2)";
}

void TestSettingsTexts::version()
{
    QFETCH(QVariant, shortVersion);
    QFETCH(QVariant, build);
    QFETCH(QString, text);
    QCOMPARE(SettingsTexts::version(shortVersion, build), text);
}

void TestSettingsTexts::lastChecked_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("text");
    // 14:05 UTC, shown in the computer's zone (UTC in this test).
    QTest::newRow("American English") << QLocale(QLocale::English, QLocale::UnitedStates)
                                      << QStringLiteral("Nov 3, 2026, 2:05 PM");
    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany)
                            << QStringLiteral("3. Nov. 2026, 14:05");
    QTest::newRow("Swedish") << QLocale(QLocale::Swedish, QLocale::Sweden)
                             << QStringLiteral("3 nov. 2026, 14:05");
}

void TestSettingsTexts::lastChecked()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, text);
    const QDateTime checked(QDate(2026, 11, 3), QTime(14, 5, 40), QTimeZone::utc());
    QCOMPARE(SettingsTexts::lastChecked(checked, locale), text);
}

QTEST_GUILESS_MAIN(TestSettingsTexts)
#include "tst_settingstexts.moc"
