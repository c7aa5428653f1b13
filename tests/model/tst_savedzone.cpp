#include "MenuBarFormat.h"
#include "SavedZone.h"

#include <QTest>

using OptionalText = std::optional<QString>;
Q_DECLARE_METATYPE(OptionalText)
Q_DECLARE_METATYPE(SavedZone)

class TestSavedZone final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cityPart_data();
    void cityPart();
    void displayName_data();
    void displayName();
    void equalityAndHash_data();
    void equalityAndHash();
    void formatRawValues_data();
    void formatRawValues();
    void formatFromText_data();
    void formatFromText();
};

void TestSavedZone::cityPart_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("expected");
    QTest::newRow("three pieces") << "America/Argentina/Buenos_Aires"
                                  << "Buenos Aires";
    QTest::newRow("single") << "UTC"
                            << "UTC";
    QTest::newRow("sign kept") << "Etc/GMT+10"
                               << "GMT+10";
    QTest::newRow("trailing slash") << "Europe/Oslo/"
                                    << "Oslo";
    QTest::newRow("doubled slash") << "America//New_York"
                                   << "New York";
    QTest::newRow("only slashes kept whole") << "//"
                                             << "//";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("every underscore") << "Asia/Ho_Chi_Minh"
                                      << "Ho Chi Minh";
}

void TestSavedZone::cityPart()
{
    QFETCH(QString, identifier);
    QFETCH(QString, expected);
    QCOMPARE(::cityPart(identifier), expected);
}

void TestSavedZone::displayName_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<OptionalText>("customLabel");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no nickname") << "America/Argentina/Buenos_Aires" << OptionalText()
                                 << "Buenos Aires";
    QTest::newRow("nickname trimmed") << "Asia/Tokyo" << OptionalText("  Home \t") << "Home";
    QTest::newRow("blank nickname") << "Europe/Paris" << OptionalText(" \n\t ") << "Paris";
    QTest::newRow("unicode space")
        << "Europe/Paris" << OptionalText(QStringView(u"\u2003Bureau\u2028").toString())
        << "Bureau";
    QTest::newRow("inner space kept")
        << "Europe/Paris" << OptionalText(" La Défense ") << "La Défense";
    QTest::newRow("empty identifier") << "" << OptionalText() << "";
}

void TestSavedZone::displayName()
{
    QFETCH(QString, identifier);
    QFETCH(OptionalText, customLabel);
    QFETCH(QString, expected);
    const SavedZone zone{QUuid::createUuid(), identifier, customLabel, false};
    QCOMPARE(zone.displayName(), expected);
}

void TestSavedZone::equalityAndHash_data()
{
    const SavedZone base{QUuid::fromString(u"0f8fad5b-d9cb-469f-a165-70867728950e"),
                         QStringLiteral("Asia/Tokyo"), QStringLiteral("Home"), true};
    QTest::addColumn<SavedZone>("other");
    QTest::addColumn<bool>("equal");

    QTest::newRow("same") << base << true;
    SavedZone changed = base;
    changed.id = QUuid::fromString(u"7c9e6679-7425-40de-944b-e07fc1f90ae7");
    QTest::newRow("other id") << changed << false;
    changed = base;
    changed.identifier = QStringLiteral("asia/tokyo");
    QTest::newRow("identifier case") << changed << false;
    changed = base;
    changed.customLabel.reset();
    QTest::newRow("absent nickname") << changed << false;
    changed = base;
    changed.customLabel = QStringLiteral("Home ");
    QTest::newRow("untrimmed nickname") << changed << false;
    changed = base;
    changed.isPinned = false;
    QTest::newRow("pin") << changed << false;
}

void TestSavedZone::equalityAndHash()
{
    const SavedZone base{QUuid::fromString(u"0f8fad5b-d9cb-469f-a165-70867728950e"),
                         QStringLiteral("Asia/Tokyo"), QStringLiteral("Home"), true};
    QFETCH(SavedZone, other);
    QFETCH(bool, equal);
    QCOMPARE(base == other, equal);
    if (equal)
        QCOMPARE(qHash(base, 7), qHash(other, 7));
    else
        QVERIFY(qHash(base, 7) != qHash(other, 7));

    // An absent nickname and an empty one are different values.
    SavedZone absent = base;
    absent.customLabel.reset();
    SavedZone empty = base;
    empty.customLabel = QString();
    QVERIFY(absent != empty);
    QVERIFY(qHash(absent) != qHash(empty));
}

void TestSavedZone::formatRawValues_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("rawValue");
    QTest::addColumn<QString>("title");
    QTest::newRow("24h") << 0 << "labelTime24"
                         << "Label + 24h";
    QTest::newRow("12h") << 1 << "labelTime12"
                         << "Label + 12h";
    QTest::newRow("time only") << 2 << "timeOnly24"
                               << "Time only (24h)";
    QTest::newRow("day") << 3 << "labelDayTime24"
                         << "Label + day + 24h";
    QTest::newRow("seconds") << 4 << "labelTime24Seconds"
                             << "Label + 24h + seconds";
}

void TestSavedZone::formatRawValues()
{
    QFETCH(int, position);
    QFETCH(QString, rawValue);
    QFETCH(QString, title);
    const QList<MenuBarFormat> cases = MenuBarFormats::allCases();
    QCOMPARE(cases.size(), 5);
    const MenuBarFormat format = cases.at(position);
    QCOMPARE(MenuBarFormats::rawValue(format), rawValue);
    QCOMPARE(MenuBarFormats::title(format), title);
    QCOMPARE(MenuBarFormats::fromRawValue(rawValue), std::optional(format));
}

void TestSavedZone::formatFromText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("wrong case") << "LabelTime24";
    QTest::newRow("empty") << "";
    QTest::newRow("title") << "Label + 12h";
    QTest::newRow("padded") << " labelTime24";
    QTest::newRow("prefix") << "labelTime24S";
}

void TestSavedZone::formatFromText()
{
    QFETCH(QString, text);
    QCOMPARE(MenuBarFormats::fromRawValue(text), std::nullopt);
}

QTEST_GUILESS_MAIN(TestSavedZone)
#include "tst_savedzone.moc"
