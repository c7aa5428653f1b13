#include "CityCatalog.h"
#include "FoldedCities.h"
#include "FoldedIdentifiers.h"
#include "FoldedTextTable.h"
#include "TextFolding.h"
#include "ZoneSearch.h"

#include <QRandomGenerator>
#include <QTest>
#include <QTimeZone>

using Flags = QList<bool>;

namespace {

// Queries drawn from the searched texts: pieces of them, re-cased,
// re-normalised, padded or stripped of marks.
QStringList sampleQueries(const QList<CityEntry> &cities, const QStringList &identifiers, int count)
{
    QRandomGenerator random(20240601);
    QStringList queries;
    while (queries.size() < count) {
        const CityEntry &city = cities[random.bounded(int(cities.size()))];
        const QString sources[] = {city.name, city.country, city.identifier,
                                   identifiers[random.bounded(int(identifiers.size()))]};
        const QString &source = sources[random.bounded(4)];
        const int start = random.bounded(int(source.size()));
        QString query =
            random.bounded(5) == 0
                ? source
                : source.mid(start, 1 + random.bounded(qMin(8, int(source.size()) - start)));
        switch (random.bounded(6)) {
        case 0:
            query = query.toUpper();
            break;
        case 1:
            query = query.normalized(QString::NormalizationForm_D);
            break;
        case 2:
            query = u"  " % query % u"\t";
            break;
        case 3:
            query = query.normalized(QString::NormalizationForm_D);
            query.removeIf([](QChar c) { return c.isMark(); });
            break;
        default:
            break;
        }
        queries.append(query);
    }
    return queries;
}

} // namespace

class TestFoldedSearch final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tableMatches_data();
    void tableMatches();
    void sameAsPlainSearch_data();
    void sameAsPlainSearch();
};

void TestFoldedSearch::tableMatches_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QString>("needle");
    QTest::addColumn<Flags>("expected");

    const QStringList words{"ab", "cd", "", "abab", "b"};
    QTest::newRow("not across texts") << words << "bc" << Flags{false, false, false, false, false};
    QTest::newRow("needle at the very end")
        << words << "ab" << Flags{true, false, false, true, false};
    // The next text's leading mark does not belong to this text's last letter.
    const QString mark = QStringView(u"\u0301x").toString();
    QTest::newRow("mark opens next text") << QStringList{"e", mark} << "e" << Flags{true, false};
    QTest::newRow("mark at a text's start")
        << QStringList{"e", mark} << QStringView(u"\u0301").toString() << Flags{false, true};
    QTest::newRow("later occurrence after a rejected one")
        << QStringList{QStringView(u"e\u0301 e").toString()} << "e" << Flags{true};
    QTest::newRow("rejected only")
        << QStringList{QStringView(u"e\u0301 e\u0300").toString()} << "e" << Flags{false};
    QTest::newRow("supplementary letters")
        << QStringList{QStringView(u"\U0001D400\U0001D401").toString(), "x"}
        << QStringView(u"\U0001D401").toString() << Flags{true, false};
}

void TestFoldedSearch::tableMatches()
{
    QFETCH(QStringList, texts);
    QFETCH(QString, needle);
    QFETCH(Flags, expected);

    const FoldedTextTable table(texts);
    QCOMPARE(table.size(), texts.size());
    const QString folded = TextFolding::fold(needle);
    QCOMPARE(table.matches(folded), expected);
    for (qsizetype i = 0; i < texts.size(); ++i) {
        QCOMPARE(table.text(i), TextFolding::fold(texts[i]));
        QCOMPARE(TextFolding::contains(TextFolding::fold(texts[i]), folded), expected[i]);
    }
}

void TestFoldedSearch::sameAsPlainSearch_data()
{
    QTest::addColumn<int>("copies");
    QTest::newRow("sample") << 1;
    // Long enough for the fast search to match names in several blocks.
    QTest::newRow("sample repeated") << 100;
}

void TestFoldedSearch::sameAsPlainSearch()
{
    QFETCH(int, copies);
    const QList<CityEntry> sample =
        CityCatalog::load(QStringLiteral(ZONARA_TEST_DATA_DIR "/catalog/cities-sample.json"));
    QVERIFY(!sample.isEmpty());
    QList<CityEntry> cities;
    // Numbered copies, so that some names are rare enough for their matches to
    // straddle the fast search's blocks.
    for (int i = 0; i < copies; ++i) {
        for (CityEntry city : sample) {
            if (copies > 1)
                city.name += u' ' + QString::number(i);
            cities.append(city);
        }
    }
    QStringList identifiers;
    for (const QByteArray &id : QTimeZone::availableTimeZoneIds())
        identifiers.append(QString::fromLatin1(id));
    // Some hand-picked queries on top of the drawn ones.
    QStringList queries;
    for (const char16_t *query :
         {u"s",      u"st",      u"stockholm", u"new y",  u"america", u"\u00e4", u"s\u00e3o",
          u"zzzz",   u"\u0301",  u"o",         u"e",      u"a",       u"/",      u"_",
          u"\uc11c", u"i\u0307", u"m 7",       u"holm 9", u" 99",     u"a 5"})
        queries.append(QString::fromUtf16(query));
    queries += sampleQueries(cities, identifiers, 400);

    const FoldedCities foldedCities(cities);
    const FoldedIdentifiers foldedIdentifiers(identifiers);
    int withResults = 0;
    int capped = 0;
    for (const QString &query : std::as_const(queries)) {
        const QList<ZoneSearchResult> plain = ZoneSearch::search(query, cities, identifiers);
        const QList<ZoneSearchResult> fast =
            ZoneSearch::search(query, foldedCities, foldedIdentifiers);
        QVERIFY2(plain == fast, qPrintable(u"query \"" % query % u'"'));
        withResults += plain.isEmpty() ? 0 : 1;
        capped += plain.size() == ZoneSearch::maximumResults ? 1 : 0;
    }
    // The sample must exercise both outcomes and the cap.
    QVERIFY2(withResults > queries.size() / 2, qPrintable(QString::number(withResults)));
    QVERIFY(withResults < queries.size());
    QVERIFY(capped > 0);
}

QTEST_GUILESS_MAIN(TestFoldedSearch)
#include "tst_foldedsearch.moc"
