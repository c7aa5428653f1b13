#include "ZoneChoices.h"

#include <QTest>

using OptionalText = std::optional<QString>;
Q_DECLARE_METATYPE(OptionalText)
Q_DECLARE_METATYPE(ZoneSearchResult)

class TestZoneChoices final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void suggestions();
    void blankQueriesSuggest_data();
    void blankQueriesSuggest();
    void nicknameToSave_data();
    void nicknameToSave();
    void alreadyAdded_data();
    void alreadyAdded();
};

void TestZoneChoices::suggestions()
{
    const QList<ZoneSearchResult> results = ZoneChoices::suggestions();
    const QStringList expected{
        QStringLiteral("Asia/Tokyo"),       QStringLiteral("America/Los_Angeles"),
        QStringLiteral("America/New_York"), QStringLiteral("Europe/London"),
        QStringLiteral("Europe/Stockholm"), QStringLiteral("UTC"),
    };
    QCOMPARE(results.size(), expected.size());
    for (qsizetype i = 0; i < results.size(); ++i) {
        QCOMPARE(results[i].id, expected[i]); // no "iana:" prefix
        QCOMPARE(results[i].identifier, expected[i]);
        QCOMPARE(results[i].subtitle, expected[i]);
    }
    QCOMPARE(results[1].title, QStringLiteral("Los Angeles"));
    QCOMPARE(results[5].title, QStringLiteral("UTC"));
}

void TestZoneChoices::blankQueriesSuggest_data()
{
    QTest::addColumn<QString>("query");
    QTest::newRow("empty") << "";
    QTest::newRow("tabs and line breaks") << "\t\n \r\n";
}

void TestZoneChoices::blankQueriesSuggest()
{
    QFETCH(QString, query);
    QCOMPARE(ZoneChoices::results(query), ZoneChoices::suggestions());
}

void TestZoneChoices::nicknameToSave_data()
{
    QTest::addColumn<ZoneSearchResult>("result");
    QTest::addColumn<OptionalText>("expected");
    QTest::newRow("city named like its zone")
        << ZoneSearchResult{"Stockholm|Europe/Stockholm|Sweden", "Stockholm",
                            "Sweden · Europe/Stockholm", "Europe/Stockholm"}
        << OptionalText();
    QTest::newRow("city in another city's zone")
        << ZoneSearchResult{"Gothenburg|Europe/Stockholm|Sweden", "Gothenburg",
                            "Sweden · Europe/Stockholm", "Europe/Stockholm"}
        << OptionalText(QStringLiteral("Gothenburg"));
    QTest::newRow("underscores in the zone")
        << ZoneSearchResult{"New York|America/New_York|United States", "New York",
                            "United States · America/New_York", "America/New_York"}
        << OptionalText();
    QTest::newRow("spelled differently")
        << ZoneSearchResult{"São Paulo|America/Sao_Paulo|Brazil", QStringLiteral("São Paulo"),
                            "Brazil · America/Sao_Paulo", "America/Sao_Paulo"}
        << OptionalText(QStringLiteral("São Paulo"));
    QTest::newRow("bare identifier")
        << ZoneSearchResult::fromIdentifier(QStringLiteral("America/Argentina/Buenos_Aires"))
        << OptionalText();
}

void TestZoneChoices::nicknameToSave()
{
    QFETCH(ZoneSearchResult, result);
    QFETCH(OptionalText, expected);
    QCOMPARE(ZoneChoices::nicknameToSave(result), expected);
}

void TestZoneChoices::alreadyAdded_data()
{
    QTest::addColumn<OptionalText>("savedNickname");
    QTest::addColumn<QString>("savedIdentifier");
    QTest::addColumn<bool>("stockholmAdded");
    QTest::addColumn<bool>("gothenburgAdded");
    QTest::newRow("saved plainly") << OptionalText() << "Europe/Stockholm" << true << false;
    QTest::newRow("saved as Home")
        << OptionalText(QStringLiteral("Home")) << "Europe/Stockholm" << false << false;
    QTest::newRow("saved as Gothenburg")
        << OptionalText(QStringLiteral("Gothenburg")) << "Europe/Stockholm" << false << true;
    QTest::newRow("other zone") << OptionalText() << "Europe/Oslo" << false << false;
    QTest::newRow("identifier case differs")
        << OptionalText() << "europe/stockholm" << false << false;
}

void TestZoneChoices::alreadyAdded()
{
    QFETCH(OptionalText, savedNickname);
    QFETCH(QString, savedIdentifier);
    QFETCH(bool, stockholmAdded);
    QFETCH(bool, gothenburgAdded);
    const QList<SavedZone> zones{{QUuid::createUuid(), savedIdentifier, savedNickname, false}};
    const ZoneSearchResult stockholm = ZoneChoices::suggestions().at(4);
    const ZoneSearchResult gothenburg{"Gothenburg|Europe/Stockholm|Sweden", "Gothenburg",
                                      "Sweden · Europe/Stockholm", "Europe/Stockholm"};
    QCOMPARE(ZoneChoices::isAlreadyAdded(stockholm, zones), stockholmAdded);
    QCOMPARE(ZoneChoices::isAlreadyAdded(gothenburg, zones), gothenburgAdded);
    QVERIFY(!ZoneChoices::isAlreadyAdded(stockholm, {}));
}

QTEST_GUILESS_MAIN(TestZoneChoices)
#include "tst_zonechoices.moc"
