// The record value: typed reads, the stored JSON form and its strictness.
#include "store/recjson.h"
#include "testmain.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

Rec sample()
{
    Rec r;
    r.id = u"6F1C2C1E-0000-4000-8000-000000000001"_s;
    r.kind = u"est_line"_s;
    r.company = u"C1"_s;
    r.project = u"P1"_s;
    r.parent = u"E1"_s;
    r.created = 1763712000.123456;
    r.updated = 1763712001.5;
    r.f.insert(u"description"_s, u"4\" slab \\ \"quoted\"\n\ttabbed — é 😀"_s);
    r.f.insert(u"qty"_s, u"12.5"_s);
    r.f.insert(u"empty"_s, QString());
    return r;
}

// The record as Qt's own JSON parser reads it, or nothing. Qt's parser is
// more lenient than the store's (it takes bad escapes and lone surrogates), so
// it can confirm what the store accepts but not what it refuses.
std::optional<Rec> reference(const QByteArray &json)
{
    QJsonParseError err;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &err);
    if (err.error != QJsonParseError::NoError || !doc.isObject())
        return std::nullopt;
    const QJsonObject o = doc.object();
    for (const char *k : {"id", "kind", "company", "project", "parent"})
        if (!o.value(QLatin1StringView(k)).isString())
            return std::nullopt;
    if (!o.value("created"_L1).isDouble() || !o.value("updated"_L1).isDouble() || !o.value("f"_L1).isObject())
        return std::nullopt;
    Rec r;
    r.id = o.value("id"_L1).toString();
    r.kind = o.value("kind"_L1).toString();
    r.company = o.value("company"_L1).toString();
    r.project = o.value("project"_L1).toString();
    r.parent = o.value("parent"_L1).toString();
    r.created = o.value("created"_L1).toDouble();
    r.updated = o.value("updated"_L1).toDouble();
    const QJsonObject f = o.value("f"_L1).toObject();
    for (auto it = f.begin(); it != f.end(); ++it) {
        if (!it.value().isString())
            return std::nullopt;
        r.f.insert(it.key(), it.value().toString());
    }
    return r;
}

QString randomText(QRandomGenerator &rng)
{
    static const QString alphabet = u"aZ09 \"/\b\f\n\r\t\x01\x1f\x7f—é€😀{}[]:,"_s;
    QString s;
    const int n = rng.bounded(12);
    for (int k = 0; k < n; ++k) {
        const int at = rng.bounded(int(alphabet.size()));
        // Keep surrogate pairs whole.
        if (alphabet.at(at).isLowSurrogate())
            s.append(alphabet.at(at - 1));
        s.append(alphabet.at(at));
        if (alphabet.at(at).isHighSurrogate())
            s.append(alphabet.at(at + 1));
    }
    return s;
}

} // namespace

class RecTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void wholeNumbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("expected");
        QTest::newRow("absent") << QString() << qint64(0);
        QTest::newRow("leading zeros") << u"007"_s << qint64(7);
        QTest::newRow("plus") << u"+5"_s << qint64(5);
        QTest::newRow("minus") << u"-1250"_s << qint64(-1250);
        QTest::newRow("lone minus") << u"-"_s << qint64(0);
        QTest::newRow("lone plus") << u"+"_s << qint64(0);
        QTest::newRow("two signs") << u"+-5"_s << qint64(0);
        QTest::newRow("exponent") << u"1e3"_s << qint64(1000);
        QTest::newRow("fraction truncates") << u"12.9"_s << qint64(12);
        QTest::newRow("negative fraction truncates") << u"-12.9"_s << qint64(-12);
        QTest::newRow("leading blank") << u" 12"_s << qint64(0);
        QTest::newRow("trailing blank") << u"12 "_s << qint64(0);
        QTest::newRow("letters") << u"twelve"_s << qint64(0);
        QTest::newRow("max") << u"9223372036854775807"_s << std::numeric_limits<qint64>::max();
        QTest::newRow("min") << u"-9223372036854775808"_s << std::numeric_limits<qint64>::min();
        QTest::newRow("grouped") << u"1,250"_s << qint64(0);
        QTest::newRow("arabic digits") << u"١٢"_s << qint64(0);
    }
    void wholeNumbers()
    {
        QFETCH(QString, text);
        QFETCH(qint64, expected);
        Rec r;
        if (!text.isNull())
            r.f.insert(u"v"_s, text);
        QCOMPARE(r.i(u"v"), expected);
    }

    void doubles_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("expected");
        QTest::newRow("plain") << u"12.5"_s << 12.5;
        QTest::newRow("exponent") << u"-1.5e2"_s << -150.0;
        QTest::newRow("empty") << QString() << 0.0;
        QTest::newRow("leading blank") << u" 1"_s << 0.0;
        QTest::newRow("trailing text") << u"1.5kg"_s << 0.0;
        QTest::newRow("comma decimal") << u"1,5"_s << 0.0;
    }
    void doubles()
    {
        QFETCH(QString, text);
        QFETCH(double, expected);
        Rec r;
        r.f.insert(u"v"_s, text);
        QCOMPARE(r.d(u"v"), expected);
    }

    // A number too large for 64 bits in a sort field is a programming error
    // that must stop at once, not wrap around silently.
    void overflowStops()
    {
        auto p = TestMain::runChild(u"rec-overflow"_s, {});
        QVERIFY(p->exitStatus() == QProcess::CrashExit || p->exitCode() != 0);
        QVERIFY2(p->readAllStandardError().contains("64-bit"), "a clear message on stderr");
    }

    void fieldsCompareByContent()
    {
        Fields a{{u"b"_s, u"2"_s}, {u"a"_s, u"1"_s}};
        Fields b{{u"a"_s, u"1"_s}, {u"b"_s, u"2"_s}};
        QCOMPARE(a, b);
        QCOMPARE(qHash(a), qHash(b));
        b.insert(u"c"_s, QString());
        QVERIFY(a != b); // an empty value is still a member of the map
        QCOMPARE(b.value(u"c"), a.value(u"c"));
        b.remove(u"c");
        QCOMPARE(a, b);
    }

    void jsonRoundTrip()
    {
        const Rec r = sample();
        const QByteArray json = RecJSON::encode(r);
        QCOMPARE(reference(json), r);
        const auto back = RecJSON::decode(json);
        QVERIFY(back.has_value());
        QCOMPARE(*back, r);
        QCOMPARE(qHash(*back), qHash(r));
        StringPool pool;
        QCOMPARE(*RecJSON::decode(json, &pool), r);
        Rec later = r;
        later.updated += 0.001;
        QVERIFY(later != r);
    }

    void strictDecoding_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("ok");
        const QByteArray base =
            R"({"id":"A","kind":"k","company":"C","project":"","parent":"","created":1.5,"updated":2,"f":{"a":"1"}})";
        QTest::newRow("complete") << base << true;
        QTest::newRow("extra member")
            << QByteArray(base).replace("\"f\"", "\"x\":[1,{\"y\":null}],\"f\"") << true;
        QTest::newRow("spaces") << QByteArray(base).replace(":", " : ").replace(",", " ,\n ") << true;
        QTest::newRow("escaped slash") << QByteArray(base).replace("\"1\"", "\"a\\/b\"") << true;
        QTest::newRow("missing parent") << QByteArray(base).replace("\"parent\":\"\",", "") << false;
        QTest::newRow("null project")
            << QByteArray(base).replace("\"project\":\"\"", "\"project\":null") << false;
        QTest::newRow("number in f") << QByteArray(base).replace("\"a\":\"1\"", "\"a\":1") << false;
        QTest::newRow("date as text") << QByteArray(base).replace("1.5", "\"1.5\"") << false;
        QTest::newRow("id as number") << QByteArray(base).replace("\"A\"", "7") << false;
        QTest::newRow("trailing garbage") << base + "x" << false;
        QTest::newRow("two objects") << base + base << false;
        QTest::newRow("truncated") << base.left(base.size() - 3) << false;
        QTest::newRow("lone surrogate") << QByteArray(base).replace("\"1\"", "\"\\ud800\"") << false;
        QTest::newRow("surrogate pair") << QByteArray(base).replace("\"1\"", "\"\\ud83d\\ude00\"") << true;
        QTest::newRow("invalid utf8") << QByteArray(base).replace("\"1\"", "\"\xc3\x28\"") << false;
        QTest::newRow("raw control") << QByteArray(base).replace("\"1\"", "\"\x01\"") << false;
        QTest::newRow("leading zero") << QByteArray(base).replace("1.5", "01.5") << false;
        QTest::newRow("not an object") << QByteArray("[1,2]") << false;
        QTest::newRow("empty") << QByteArray() << false;
    }
    void strictDecoding()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, ok);
        QCOMPARE(RecJSON::decode(json).has_value(), ok);
        if (ok)
            QCOMPARE(RecJSON::decode(json), reference(json));
    }

    // Any texts at all survive the trip through the stored form.
    void randomRecordsRoundTrip()
    {
        QRandomGenerator rng(3);
        for (int n = 0; n < 3000; ++n) {
            Rec r;
            r.id = randomText(rng);
            r.kind = randomText(rng);
            r.project = randomText(rng);
            r.created = rng.generateDouble() * 2e9;
            r.updated = -rng.generateDouble();
            for (int k = rng.bounded(6); k > 0; --k)
                r.f.insert(randomText(rng), randomText(rng));
            const QByteArray json = RecJSON::encode(r);
            QCOMPARE(RecJSON::decode(json), r);
            QCOMPARE(reference(json), r);
        }
    }

    // Random damage to stored rows: the reader must never crash, and whatever
    // it accepts must be a record that an independent parser reads the same.
    void damagedRows()
    {
        QRandomGenerator rng(7);
        const QByteArray base = RecJSON::encode(sample());
        const QByteArray alphabet = "{}[]\":,\\ 0123456789.eE+-tfnu\x01\xc3\xa9";
        int accepted = 0;
        int refused = 0;
        for (int n = 0; n < 20000; ++n) {
            QByteArray json = base;
            for (int e = 1 + rng.bounded(3); e > 0; --e) {
                const int at = rng.bounded(int(json.size()));
                const char c = alphabet.at(rng.bounded(int(alphabet.size())));
                switch (rng.bounded(3)) {
                case 0: json[at] = c; break;
                case 1: json.insert(at, c); break;
                default: json.remove(at, 1);
                }
            }
            const auto ours = RecJSON::decode(json);
            if (ours) {
                QVERIFY2(reference(json) == ours, json.constData());
                ++accepted;
            } else {
                ++refused;
            }
        }
        QVERIFY(accepted > 100 && refused > 100); // both outcomes were exercised
    }
};

static TestMain::RegisterChild overflowChild(u"rec-overflow"_s, [](const QStringList &) {
    Rec r;
    r.f.insert(u"sort"_s, u"99999999999999999999"_s);
    return int(r.i(u"sort") & 1);
});

TRESTLE_TEST(RecTests);
#include "rectests.moc"
