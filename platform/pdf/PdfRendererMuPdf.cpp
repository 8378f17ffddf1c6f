#include "platform/pdf/PdfRendererMuPdf.h"

#include "core/Geometry.h"
#include "core/ParallelFor.h"
#include "platform/pdf/Deadline.h"
#include "platform/pdf/MuPdf.h"
#include "platform/pdf/OptionalContent.h"
#include "platform/pdf/PackedRgb.h"
#include "platform/pdf/PageDrawing.h"
#include "platform/pdf/PageTree.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>

namespace murkwell {
namespace {

using namespace std::chrono_literals;

// Pixels per point.
constexpr float scale = 2;

// Letter, for a page without a usable media box.
constexpr fz_rect defaultMediaBox{0, 0, 612, 792};

// Processor time. The slowest honest page that we know needs 3 seconds.
constexpr auto pageTimeLimit = 18s;
// Every page that used up its time halves that of the next ones, down to a sixteenth.
constexpr int mostHalvings = 4;

// A colour scan of 178 megapixels. Beyond it, decoders work for minutes without looking up.
constexpr std::size_t largestBlock = std::size_t{512} << 20;
constexpr std::size_t allLargeBlocks = std::size_t{2048} << 20;

struct PageGeometry {
    fz_rect mediaBox;
    int rotation; // degrees clockwise: 0, 90, 180 or 270
};

// May longjmp out.
PageGeometry geometryOf(fz_context* context, pdf_obj* page) {
    fz_rect box = pdf_to_rect(context, pdf_dict_get_inheritable(context, page, PDF_NAME(MediaBox)));
    if (!(box.x1 > box.x0 && box.y1 > box.y0)) {
        box = defaultMediaBox;
    }
    const int degrees =
        pdf_to_int(context, pdf_dict_get_inheritable(context, page, PDF_NAME(Rotate)));
    // A rotation that is no multiple of 90 is taken for the nearest one, as MuPDF draws it.
    const int turned = (degrees % 360 + 360) % 360;
    return {box, (turned + 45) / 90 * 90 % 360};
}

// The page in pixels; 0 where a side is less than half a pixel or absurdly long.
PixelSize pixelSizeOf(const PageGeometry& geometry) {
    const auto pixels = [](float from, float to) {
        const double length = std::round((static_cast<double>(to) - from) * scale);
        return length <= Bitmap::maxPixels ? static_cast<int>(length) : 0;
    };
    const int width = pixels(geometry.mediaBox.x0, geometry.mediaBox.x1);
    const int height = pixels(geometry.mediaBox.y0, geometry.mediaBox.y1);
    return geometry.rotation % 180 == 0 ? PixelSize{width, height} : PixelSize{height, width};
}

// Makes MuPDF draw the whole media box at one unit per point, in memory only. May longjmp out.
void showWholeMediaBox(fz_context* context, pdf_obj* page, const PageGeometry& geometry) {
    pdf_dict_put_rect(context, page, PDF_NAME(MediaBox), geometry.mediaBox);
    pdf_dict_put_rect(context, page, PDF_NAME(CropBox), geometry.mediaBox);
    pdf_dict_put_int(context, page, PDF_NAME(Rotate), geometry.rotation);
    pdf_dict_del(context, page, PDF_NAME(UserUnit));
}

// One thread's view of the document.
class Worker {
public:
    Worker(std::span<const std::byte> pdf, const std::optional<std::string>& password,
           MuPdfMemory& memory)
        : context(memory) {
        if (context.get() != nullptr) {
            const auto opened = context.open(pdf, password);
            document = opened.document;
            failure = opened.needsPassword ? LoadFailure::needsPassword : LoadFailure::unreadable;
        }
        if (document != nullptr) {
            optionalContent.emplace(context.get(), document);
            pageCount_ = flattenPageTree(context.get(), document);
        }
    }

    ~Worker() { pdf_drop_document(context.get(), document); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    [[nodiscard]] int pageCount() const { return pageCount_; }
    [[nodiscard]] LoadFailure whyNoPages() const { return failure; }

    // Null when the page cannot be had. Counts itself among the expired pages if it takes too long.
    RenderedPage rasterize(int index, std::atomic<int>& expiredPages) {
        fz_cookie cookie{};
        const int halvings = std::min(expiredPages.load(), mostHalvings);
        RenderedPage rendered;
        {
            const Deadline deadline(pageTimeLimit / (1 << halvings), [&] {
                cookie.abort = 1;
                context.interrupt(true);
            });
            rendered = rasterize(index, cookie);
        }
        if (!context.isInterrupted()) {
            return rendered;
        }
        context.interrupt(false);
        ++expiredPages;
        return {};
    }

private:
    RenderedPage rasterize(int index, fz_cookie& cookie) {
        fz_context* const fz = context.get();
        pdf_page* page = nullptr;
        PageGeometry geometry{};
        const bool loaded = attempt(fz, [&] {
            page = pdf_load_page(fz, document, index);
            geometry = geometryOf(fz, page->obj);
            showWholeMediaBox(fz, page->obj, geometry);
        });
        RenderedPage rendered;
        if (loaded) {
            rendered = draw(page, pixelSizeOf(geometry), cookie);
        }
        fz_drop_page(fz, page == nullptr ? nullptr : &page->super);
        return rendered;
    }

    RenderedPage draw(pdf_page* page, PixelSize size, fz_cookie& cookie) {
        fz_context* const fz = context.get();
        const auto bitmap = Bitmap::create(size.width, size.height);
        if (!bitmap) {
            return {};
        }
        fz_pixmap* pixmap = nullptr;
        const bool ready = attempt(fz, [&] {
            pixmap = fz_new_pixmap_with_data(
                fz, fz_device_rgb(fz), size.width, size.height, nullptr, 0, 3 * size.width,
                reinterpret_cast<unsigned char*>(bitmap->pixels().data()));
        });
        const PageDrawing drawing =
            ready ? drawPage(fz, page, *optionalContent, pixmap, fz_scale(scale, scale), cookie)
                  : PageDrawing::Failed;
        fz_drop_pixmap(fz, pixmap);
        if (drawing == PageDrawing::Failed) {
            return {};
        }
        expandPackedRgb(bitmap->pixels());
        return {bitmap, drawing == PageDrawing::Whole};
    }

    MuPdfContext context;
    pdf_document* document = nullptr;
    LoadFailure failure = LoadFailure::unreadable;
    std::optional<OptionalContent> optionalContent; // as soon as there is a document
    int pageCount_ = 0;
};

} // namespace

PdfRenderer::Result PdfRendererMuPdf::render(std::span<const std::byte> pdf,
                                             const std::optional<std::string>& password) {
    MuPdfMemory memory(largestBlock, allLargeBlocks);
    const auto first = std::make_unique<Worker>(pdf, password, memory);
    if (first->pageCount() < 1) {
        return first->whyNoPages();
    }
    std::vector<RenderedPage> pages(static_cast<std::size_t>(first->pageCount()));
    std::atomic<int> nextPage{0};
    std::atomic<int> expiredPages{0};
    const auto renderPages = [&](Worker& worker) {
        const int count = std::min(worker.pageCount(), first->pageCount());
        for (int i = nextPage++; i < count; i = nextPage++) {
            pages[static_cast<std::size_t>(i)] = worker.rasterize(i, expiredPages);
        }
    };
    const auto threads = std::min(pages.size(), availableProcessors());
    const bool allRan = parallelFor(threads, [&](std::size_t thread) {
        if (thread == 0) {
            renderPages(*first);
        } else {
            Worker another(pdf, password, memory);
            renderPages(another);
        }
    });
    return allRan ? Result(std::move(pages)) : LoadFailure::unreadable;
}

} // namespace murkwell
