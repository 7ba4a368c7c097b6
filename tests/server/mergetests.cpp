// The field-by-field merge of a record changed on a seat and on the server.
#include "store/server/merge.h"
#include "testmain.h"

using namespace Qt::StringLiterals;

namespace {
Rec rec(std::initializer_list<std::pair<QString, QString>> f, const QString &parent = QString())
{
    Rec r;
    r.id = u"R"_s;
    r.kind = u"co"_s;
    r.parent = parent;
    r.f = Fields(f);
    return r;
}
} // namespace

Q_DECLARE_METATYPE(Rec)
Q_DECLARE_METATYPE(std::optional<Rec>)

class MergeTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void threeWay_data()
    {
        QTest::addColumn<std::optional<Rec>>("base");
        QTest::addColumn<Rec>("mine");
        QTest::addColumn<Rec>("theirs");
        QTest::addColumn<Rec>("merged");
        QTest::addColumn<QStringList>("clashes"); // key=replaced>kept

        const Rec base = rec({{u"amount"_s, u"100"_s}, {u"title"_s, u"Wall"_s}});
        QTest::newRow("different fields both kept")
            << std::optional(base) << rec({{u"amount"_s, u"250"_s}, {u"title"_s, u"Wall"_s}})
            << rec({{u"amount"_s, u"100"_s}, {u"title"_s, u"North wall"_s}})
            << rec({{u"amount"_s, u"250"_s}, {u"title"_s, u"North wall"_s}}) << QStringList();
        QTest::newRow("same field: mine stands, theirs is told")
            << std::optional(base) << rec({{u"amount"_s, u"250"_s}, {u"title"_s, u"Wall"_s}})
            << rec({{u"amount"_s, u"300"_s}, {u"title"_s, u"Wall"_s}})
            << rec({{u"amount"_s, u"250"_s}, {u"title"_s, u"Wall"_s}}) << QStringList{u"amount=300>250"_s};
        QTest::newRow("same change on both sides is no clash")
            << std::optional(base) << rec({{u"amount"_s, u"250"_s}, {u"title"_s, u"Wall"_s}})
            << rec({{u"amount"_s, u"250"_s}, {u"title"_s, u"Wall"_s}})
            << rec({{u"amount"_s, u"250"_s}, {u"title"_s, u"Wall"_s}}) << QStringList();
        QTest::newRow("a field they removed goes, one I added stays")
            << std::optional(base)
            << rec({{u"amount"_s, u"100"_s}, {u"title"_s, u"Wall"_s}, {u"note"_s, u"x"_s}})
            << rec({{u"amount"_s, u"100"_s}}) << rec({{u"amount"_s, u"100"_s}, {u"note"_s, u"x"_s}})
            << QStringList();
        QTest::newRow("cleared by them, changed by me")
            << std::optional(base) << rec({{u"amount"_s, u"100"_s}, {u"title"_s, u"Roof"_s}})
            << rec({{u"amount"_s, u"100"_s}, {u"title"_s, QString()}})
            << rec({{u"amount"_s, u"100"_s}, {u"title"_s, u"Roof"_s}}) << QStringList{u"title=>Roof"_s};
        QTest::newRow("parent moved by them")
            << std::optional(base) << base << rec({{u"amount"_s, u"100"_s}, {u"title"_s, u"Wall"_s}}, u"P2"_s)
            << rec({{u"amount"_s, u"100"_s}, {u"title"_s, u"Wall"_s}}, u"P2"_s) << QStringList();
        QTest::newRow("no base: every difference clashes, mine stands")
            << std::optional<Rec>() << rec({{u"amount"_s, u"1"_s}}) << rec({{u"amount"_s, u"2"_s}})
            << rec({{u"amount"_s, u"1"_s}}) << QStringList{u"amount=2>1"_s};
    }
    void threeWay()
    {
        QFETCH(std::optional<Rec>, base);
        QFETCH(Rec, mine);
        QFETCH(Rec, theirs);
        QFETCH(Rec, merged);
        QFETCH(QStringList, clashes);
        const Merge::Result r = Merge::threeWay(base, mine, theirs);
        QCOMPARE(r.rec.f, merged.f);
        QCOMPARE(r.rec.parent, merged.parent);
        QStringList got;
        for (const Merge::Clash &c : r.clashes)
            got.append(c.key + u'=' + c.replaced + u'>' + c.kept);
        QCOMPARE(got, clashes);
    }
};

TRESTLE_TEST(MergeTests);
#include "mergetests.moc"
