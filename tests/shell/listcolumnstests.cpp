// Record list columns size to what they show: amounts are never cut, at any
// zoom, and the text columns share what is left.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "look/fwui.h"
#include "shell/nav.h"
#include "shell/recordscreen.h"
#include "shell/recordscreenmodel.h"
#include "shell/recordscreenview.h"
#include "store/db.h"

#include <QtGui/QFontMetricsF>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTreeView>

using namespace Qt::StringLiterals;

namespace {

using Ints = QList<int>;
using Flags = QList<bool>;

// The modules whose list shows an amount.
QStringList moneyModules()
{
    QStringList ids;
    for (const ModuleDef &m : Modules::all()) {
        if (m.kind.isEmpty())
            continue;
        for (const FD &fd : RecordListModel::colDefs(m, true))
            if (fd.type.kind == FT::money) {
                ids.append(m.id);
                break;
            }
    }
    return ids;
}

} // namespace

class ListColumnsTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        FWUI::shared().setZoom(1.0);
        Nav().setProjectID(QString());
    }

    void shareWidths_data()
    {
        QTest::addColumn<Ints>("natural");
        QTest::addColumn<Flags>("rigid");
        QTest::addColumn<int>("available");
        QTest::addColumn<Ints>("widths");
        QTest::newRow("room to spare goes to the widest text")
            << Ints{40, 100, 300, 120} << Flags{true, false, false, true} << 800 << Ints{40, 100, 540, 120};
        QTest::newRow("tight: the narrow text keeps its width, the wide one is cut")
            << Ints{40, 100, 300, 120} << Flags{true, false, false, true} << 400 << Ints{40, 100, 140, 120};
        QTest::newRow("two wide texts split evenly")
            << Ints{120, 300, 300} << Flags{true, false, false} << 520 << Ints{120, 200, 200};
        QTest::newRow("no room: amounts whole, texts at the least")
            << Ints{300, 200, 250} << Flags{true, false, true} << 400 << Ints{300, 60, 250};
        QTest::newRow("only amounts") << Ints{90, 110} << Flags{true, true} << 1000 << Ints{90, 110};
    }
    void shareWidths()
    {
        QFETCH(Ints, natural);
        QFETCH(Flags, rigid);
        QFETCH(int, available);
        QFETCH(Ints, widths);
        QCOMPARE(RecordListView::shareWidths(natural, rigid, available, 60), widths);
    }

    void amountsWholeWhenZoomed_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<double>("zoom");
        const QStringList ids = moneyModules();
        QVERIFY2(!ids.isEmpty(), "no list shows an amount");
        for (const QString &id : ids)
            for (double zoom : {1.0, 1.4})
                QTest::newRow(qPrintable(id + u" at "_s + QString::number(zoom * 100) + u'%')) << id << zoom;
    }
    void amountsWholeWhenZoomed()
    {
        QFETCH(QString, module);
        QFETCH(double, zoom);
        FWUI::shared().setZoom(zoom);
        DB db;
        Nav nav;
        db.createCompany(u"Acme Builders"_s, u"Olive Owner"_s, u"CO"_s);
        const ModuleDef &m = *Modules::get(module);
        const QList<FD> cols = RecordListModel::colDefs(m, false);
        for (int i = 0; i < 3; ++i) {
            Fields f;
            for (const FD &fd : cols)
                f.insert(fd.key, fd.type.kind == FT::money
                                     ? u"112645099"_s
                                     : u"Northeast corner foundation and retaining wall"_s);
            db.add(m.kind, {}, {}, f);
        }
        RecordScreen screen({db, nav, m});
        // The list's share of a 1600-pixel window beside the rail and the editor.
        screen.resize(1100, 700);
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        QTreeView *list = screen.list();
        const RecordListModel *model = screen.model();
        // The company's own records (its owner on the team) may add rows without an amount.
        QVERIFY(model->rowCount() >= 3);
        int checked = 0;
        for (int c = 0; c < model->columnCount(); ++c) {
            if (c >= model->columns().size() || model->columns().at(c).type.kind != FT::money)
                continue;
            const QFontMetricsF fm(RecordCellDelegate::fontOf(RecordListModel::Money));
            for (int r = 0; r < model->rowCount(); ++r) {
                const QString shown = model->index(r, c).data().toString();
                if (!shown.contains(u"1,126,450.99"_s))
                    continue;
                const qreal room = list->header()->sectionSize(c) - RecordCellDelegate::leftGap() -
                                   RecordCellDelegate::rightGap();
                QVERIFY2(fm.horizontalAdvance(shown) <= room,
                         qPrintable(u"\""_s + shown + u"\" cut in "_s + QString::number(room)));
                ++checked;
            }
        }
        QVERIFY2(checked >= 3, qPrintable(QString::number(checked)));
        // Their headings read whole too, as the header draws them.
        const int gaps = FWUI::shared().px(8) + FWUI::shared().px(4);
        for (int c = 0; c < model->columns().size(); ++c) {
            if (model->columns().at(c).type.kind != FT::money)
                continue;
            const QString head = model->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
            const QFontMetrics fm = list->header()->fontMetrics();
            QCOMPARE(fm.elidedText(head, Qt::ElideRight, list->header()->sectionSize(c) - gaps), head);
        }
        // The columns fill the list and go no further unless it scrolls sideways.
        int total = 0;
        for (int c = 0; c < model->columnCount(); ++c)
            total += list->header()->sectionSize(c);
        QVERIFY2(total <= list->viewport()->width() + 1 ||
                     list->horizontalScrollBarPolicy() != Qt::ScrollBarAlwaysOff,
                 "columns run past the list with no way to reach them");
    }
};

TRESTLE_TEST(ListColumnsTests);
#include "listcolumnstests.moc"
