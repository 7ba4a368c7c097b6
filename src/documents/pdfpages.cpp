#include "pdfpages.h"

#include <poppler/qt6/poppler-qt6.h>

struct PdfPages::Impl
{
    std::unique_ptr<Poppler::Document> doc;

    std::unique_ptr<Poppler::Page> page(int index) const
    {
        if (!doc || index < 0 || index >= doc->numPages())
            return nullptr;
        return doc->page(index);
    }
};

namespace {
std::unique_ptr<Poppler::Document> usable(std::unique_ptr<Poppler::Document> doc)
{
    if (!doc || doc->isLocked())
        return nullptr;
    doc->setRenderHint(Poppler::Document::Antialiasing);
    doc->setRenderHint(Poppler::Document::TextAntialiasing);
    return doc;
}
} // namespace

PdfPages::PdfPages()
    : d(std::make_unique<Impl>())
{}

PdfPages::PdfPages(const QString &path)
    : PdfPages()
{
    d->doc = usable(Poppler::Document::load(path));
}

PdfPages PdfPages::fromData(const QByteArray &data)
{
    PdfPages pages;
    pages.d->doc = usable(Poppler::Document::loadFromData(data));
    return pages;
}

PdfPages::~PdfPages() = default;
PdfPages::PdfPages(PdfPages &&) noexcept = default;
PdfPages &PdfPages::operator=(PdfPages &&) noexcept = default;

bool PdfPages::isValid() const
{
    return pageCount() > 0;
}

int PdfPages::pageCount() const
{
    return d->doc ? d->doc->numPages() : 0;
}

QSizeF PdfPages::pageSize(int index) const
{
    const auto page = d->page(index);
    return page ? page->pageSizeF() : QSizeF();
}

QImage PdfPages::render(int index, double dpi) const
{
    const auto page = d->page(index);
    if (!page || !(dpi > 0))
        return {};
    return page->renderToImage(dpi, dpi);
}

QString PdfPages::text(int index) const
{
    const auto page = d->page(index);
    return page ? page->text(QRectF(), Poppler::Page::PhysicalLayout) : QString();
}
