// A mark on a plan sheet whose file cannot be written: it stays on screen and
// in the sheet when opened again, the save banner says so like any failed
// write, and it reaches the file as soon as the file can be written.
#include "testmain.h"

#include "documents/pdfmarks.h"
#include "screens/markupview.h"
#include "shell/nav.h"
#include "shell/savebanner.h"
#include "shell/tlwindow.h"
#include "store/db.h"
#include "store/filewrites.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Root writes over a read-only file; for the length of one call the process
// acts as the unprivileged "nobody", as any real user would.
class AsUnprivileged
{
public:
    AsUnprivileged()
    {
        if (::geteuid() == 0)
            m_active = ::setegid(65534) == 0 && ::seteuid(65534) == 0;
    }
    ~AsUnprivileged()
    {
        if (m_active) {
            (void)!::seteuid(0);
            (void)!::setegid(0);
        }
    }
    AsUnprivileged(const AsUnprivileged &) = delete;
    AsUnprivileged &operator=(const AsUnprivileged &) = delete;

private:
    bool m_active = false;
};

void send(QWidget *to, QEvent::Type type, const QPointF &at, Qt::MouseButtons buttons)
{
    QMouseEvent e(type, at, to->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(to, &e);
}

void drawBox(MarkupView &view, const QPointF &a, const QPointF &b)
{
    view.setTool(u"box"_s);
    QWidget *vp = view.viewport();
    send(vp, QEvent::MouseButtonPress, view.toViewport(0, a), Qt::LeftButton);
    send(vp, QEvent::MouseMove, view.toViewport(0, b), Qt::LeftButton);
    send(vp, QEvent::MouseButtonRelease, view.toViewport(0, b), Qt::NoButton);
}

QAbstractButton *tryAgain(SaveBanner &banner)
{
    for (auto *b : banner.findChildren<QAbstractButton *>())
        if (b->text() == u"Try Again"_s)
            return b;
    return nullptr;
}

} // namespace

class PlanWriteTests : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_sheet;

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_dir.isValid());
        // Readable by "nobody", writable by no one but root.
        QFile::setPermissions(m_dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                QFile::ReadOther | QFile::ExeOther);
        m_sheet = m_dir.filePath(u"A-101.pdf"_s);
        QFile::remove(m_sheet);
        {
            QPdfWriter writer(m_sheet);
            writer.setPageSize(QPageSize(QSizeF(17, 11), QPageSize::Inch));
            writer.setResolution(72);
            QPainter p(&writer);
            p.drawRect(36, 36, 1152, 720);
        }
        QVERIFY(QFile::setPermissions(m_sheet, QFile::ReadOwner | QFile::ReadOther));
    }
    void cleanup()
    {
        QFile::setPermissions(m_sheet, QFile::ReadOwner | QFile::WriteOwner);
        FileWrites::shared().retry();
        QCOMPARE(FileWrites::shared().count(), 0);
    }

    void markOnReadOnlySheetWaitsInTheBanner()
    {
        DB db;
        SaveBanner banner(db);
        QVERIFY(banner.isHidden());
        {
            auto view = std::make_unique<MarkupView>(m_sheet);
            view->resize(900, 700);
            view->show();
            QVERIFY(view->isValid());
            AsUnprivileged nobody;
            drawBox(*view, {100, 100}, {300, 200});
            // On screen, not in the file.
            QCOMPARE(view->pdf().marks(0).size(), 1);
            QCOMPARE(PdfMarkup(m_sheet).marks(0).size(), 0);
            QVERIFY(!banner.isHidden());
            QCOMPARE(banner.text(), SaveBanner::message(1, u"the plan sheet's file is read-only"_s));

            // A second mark on the same sheet is the same waiting file.
            drawBox(*view, {400, 100}, {500, 200});
            QCOMPARE(FileWrites::shared().count(), 1);
            // Still not writable: the marks keep waiting.
            QVERIFY(tryAgain(banner));
            tryAgain(banner)->click();
            QVERIFY(!banner.isHidden());
        }
        // Opened again before the write went through, the sheet shows its marks.
        MarkupView again(m_sheet);
        QCOMPARE(again.pdf().marks(0).size(), 2);

        QVERIFY(QFile::setPermissions(m_sheet, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
        tryAgain(banner)->click();
        QVERIFY(banner.isHidden());
        QCOMPARE(PdfMarkup(m_sheet).marks(0).size(), 2);
        QCOMPARE(FileWrites::shared().count(), 0);
    }

    void undoOfAWaitingMarkIsWrittenToo()
    {
        DB db;
        SaveBanner banner(db);
        MarkupView view(m_sheet);
        view.resize(900, 700);
        view.show();
        {
            AsUnprivileged nobody;
            drawBox(view, {100, 100}, {300, 200});
            QVERIFY(!banner.isHidden());
        }
        QVERIFY(QFile::setPermissions(m_sheet, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
        // The next write of the sheet carries everything and clears the banner.
        QVERIFY(view.undoLast());
        QVERIFY(banner.isHidden());
        QCOMPARE(PdfMarkup(m_sheet).marks(0).size(), 0);
        QCOMPARE(FileWrites::shared().count(), 0);
    }

    // Closing the window with a mark still waiting asks like any unsaved change;
    // saving to a file puts a copy of the sheet, marks and all, beside it.
    void closeKeepsTheSheetBesideTheRescueFile()
    {
        QTemporaryDir rescueDir;
        QVERIFY(QFile::setPermissions(rescueDir.path(), QFile::ReadOwner | QFile::WriteOwner |
                                                            QFile::ExeOwner | QFile::ReadOther |
                                                            QFile::WriteOther | QFile::ExeOther));
        const QString rescue = rescueDir.filePath(u"rescue.json"_s);
        DB db;
        Nav nav;
        qsizetype asked = 0;
        QString cause;
        TLWindow::askUnsavedHook() = [&](QWidget *, qsizetype count, const QString &why) {
            asked = count;
            cause = why;
            return TLWindow::UnsavedAnswer{TLWindow::UnsavedAnswer::SaveToFile, rescue};
        };
        {
            TLWindow window(db, nav);
            window.show();
            MarkupView view(m_sheet, &window);
            view.resize(900, 700);
            view.show();
            AsUnprivileged nobody;
            drawBox(view, {100, 100}, {300, 200});
            QVERIFY(window.close());
        }
        TLWindow::askUnsavedHook() = {};
        QCOMPARE(asked, 1);
        QCOMPARE(cause, u"the plan sheet's file is read-only"_s);
        QCOMPARE(FileWrites::shared().count(), 0);
        QCOMPARE(PdfMarkup(m_sheet).marks(0).size(), 0);
        const QString copy = FileWrites::copyPath(rescue, m_sheet);
        QCOMPARE(QFileInfo(copy).fileName(), u"rescue - A-101.pdf"_s);
        QCOMPARE(PdfMarkup(copy).marks(0).size(), 1);
    }
};

TRESTLE_TEST(PlanWriteTests);
#include "planwritetests.moc"
