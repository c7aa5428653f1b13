#include "PanelTestSupport.h"
#include "TimeZoneDatabase.h"
#include "ZoneRowTexts.h"

#include <QTest>

namespace {

// 00:30 UTC: 01:30 in Stockholm, 09:30 in Tokyo, 19:30 the day before in New York.
const QDateTime instant(QDate(2026, 3, 2), QTime(0, 30), QTimeZone::utc());
const QTimeZone stockholm("Europe/Stockholm");

} // namespace

class TestZoneRowTexts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timeText_data();
    void timeText();
    void subtitle_data();
    void subtitle();
    void accessibleNames_data();
    void accessibleNames();
    void copyText_data();
    void copyText();
};

void TestZoneRowTexts::timeText_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<MenuBarFormat>("format");
    QTest::addColumn<QDateTime>("at");
    QTest::addColumn<QString>("expected");
    // The formats themselves are MenuBarFormatter's; this is the zone and the format passed on.
    QTest::newRow("12-hour") << "Asia/Tokyo" << MenuBarFormat::labelTime12
                             << QDateTime(QDate(2026, 3, 2), QTime(12, 5), QTimeZone::utc())
                             << "9:05p";
    QTest::newRow("unknown zone") << "Mars/Olympus_Mons" << MenuBarFormat::labelTime24 << instant
                                  << "--:--";
}

void TestZoneRowTexts::timeText()
{
    QFETCH(QString, identifier);
    QFETCH(MenuBarFormat, format);
    QFETCH(QDateTime, at);
    QFETCH(QString, expected);
    QCOMPARE(ZoneRowTexts::timeText(makeZone(identifier), format, at), expected);
}

void TestZoneRowTexts::subtitle_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<std::optional<QString>>("nickname");
    QTest::addColumn<QString>("expected");
    // ZoneOffset's tests cover the offset part's own variants.
    QTest::newRow("behind, the day before")
        << "America/New_York" << std::optional<QString>() << "EST \u00B7 -6h, yesterday";
    QTest::newRow("underscores become spaces")
        << "America/Los_Angeles" << std::optional<QString>("Studio")
        << "Los Angeles \u00B7 PST \u00B7 -9h, yesterday";
    QTest::newRow("unknown zone shows the identifier")
        << "Mars/Olympus_Mons" << std::optional<QString>("Base") << "Mars/Olympus_Mons";
}

void TestZoneRowTexts::subtitle()
{
    QFETCH(QString, identifier);
    QFETCH(std::optional<QString>, nickname);
    QFETCH(QString, expected);
    QCOMPARE(ZoneRowTexts::subtitle(makeZone(identifier, nickname), instant, stockholm), expected);
}

void TestZoneRowTexts::accessibleNames_data()
{
    QTest::addColumn<SavedZone>("zone");
    QTest::addColumn<QString>("pinTip");
    QTest::addColumn<QString>("pinName");
    QTest::addColumn<QString>("renameName");
    QTest::addColumn<QString>("fieldName");
    QTest::newRow("pinned nickname")
        << makeZone(QStringLiteral("America/New_York"), QStringLiteral("Office"), true)
        << "Unpin from menu bar"
        << "Unpin Office"
        << "Rename Office"
        << "Nickname for New York";
    QTest::newRow("unpinned city") << makeZone(QStringLiteral("Asia/Tokyo")) << "Pin to menu bar"
                                   << "Pin Tokyo"
                                   << "Rename Tokyo"
                                   << "Nickname for Tokyo";
}

void TestZoneRowTexts::accessibleNames()
{
    QFETCH(SavedZone, zone);
    QFETCH(QString, pinTip);
    QFETCH(QString, pinName);
    QFETCH(QString, renameName);
    QFETCH(QString, fieldName);
    QCOMPARE(ZoneRowTexts::pinToolTip(zone.isPinned), pinTip);
    QCOMPARE(ZoneRowTexts::pinAccessibleName(zone), pinName);
    QCOMPARE(ZoneRowTexts::renameAccessibleName(zone), renameName);
    QCOMPARE(ZoneRowTexts::nicknameAccessibleName(zone), fieldName);
}

void TestZoneRowTexts::copyText_data()
{
    QTest::addColumn<SavedZone>("zone");
    QTest::addColumn<MenuBarFormat>("format");
    QTest::addColumn<QDateTime>("at");
    QTest::addColumn<std::optional<QString>>("expected");
    QTest::newRow("Tokyo 24-hour")
        << makeZone(QStringLiteral("Asia/Tokyo")) << MenuBarFormat::labelTime24 << instant
        << std::optional<QString>("Tokyo 09:30");
    QTest::newRow("nickname") << makeZone(QStringLiteral("Asia/Tokyo"), QStringLiteral(" Team "))
                              << MenuBarFormat::timeOnly24 << instant
                              << std::optional<QString>("Team 09:30");
    QTest::newRow("unknown zone") << makeZone(QStringLiteral("Mars/Olympus_Mons"))
                                  << MenuBarFormat::labelTime24 << instant
                                  << std::optional<QString>();
}

void TestZoneRowTexts::copyText()
{
    QFETCH(SavedZone, zone);
    QFETCH(MenuBarFormat, format);
    QFETCH(QDateTime, at);
    QFETCH(std::optional<QString>, expected);
    QCOMPARE(ZoneRowTexts::copyText(zone, format, at), expected);
}

QTEST_MAIN(TestZoneRowTexts)
#include "tst_zonerowtexts.moc"
