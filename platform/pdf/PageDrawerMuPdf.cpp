#include "platform/pdf/PageDrawerMuPdf.h"

#include "core/Geometry.h"
#include "platform/pdf/OptionalContent.h"
#include "platform/pdf/PackedRgb.h"
#include "platform/pdf/PageDrawing.h"
#include "platform/pdf/PageTree.h"

#include <cmath>
#include <utility>

// MuPDF's own choice of the part of a picture to decode, which its headers leave out.
extern "C" void fz_default_image_decode(void* argument, int width, int height, int halvings,
                                        fz_irect* part);

namespace murkwell {
namespace {

using End = DrawnPdfPage::End;

// Pixels per point.
constexpr float scale = 2;

// Letter, for a page without a usable media box.
constexpr fz_rect defaultMediaBox{0, 0, 612, 792};

struct PageGeometry {
    fz_rect mediaBox;
    int rotation; // degrees clockwise: 0, 90, 180 or 270
};

// The functions below may longjmp out: they make no object that has a destructor.

bool isRectangle(fz_context* context, pdf_obj* object) {
    constexpr int corners = 4;
    for (int i = 0; i < corners; ++i) {
        if (pdf_is_number(context, pdf_array_get(context, object, i)) == 0) {
            return false;
        }
    }
    return true;
}

PageGeometry geometryOf(fz_context* context, pdf_obj* page) {
    pdf_obj* const box = pdf_dict_get_inheritable(context, page, PDF_NAME(MediaBox));
    const int degrees =
        pdf_to_int(context, pdf_dict_get_inheritable(context, page, PDF_NAME(Rotate)));
    // A rotation that is no multiple of 90 is taken for the nearest one, as MuPDF draws it.
    const int turned = (degrees % 360 + 360) % 360;
    return {isRectangle(context, box) ? pdf_to_rect(context, box) : defaultMediaBox,
            (turned + 45) / 90 * 90 % 360};
}

// Makes MuPDF draw the whole media box at one unit per point, in memory only.
void showWholeMediaBox(fz_context* context, pdf_obj* page, const PageGeometry& geometry) {
    pdf_dict_put_rect(context, page, PDF_NAME(MediaBox), geometry.mediaBox);
    pdf_dict_put_rect(context, page, PDF_NAME(CropBox), geometry.mediaBox);
    pdf_dict_put_int(context, page, PDF_NAME(Rotate), geometry.rotation);
    pdf_dict_del(context, page, PDF_NAME(UserUnit));
}

// An annotation that stands in the page's list itself becomes an object of its own: MuPDF would not
// find again how it has made one look.
void takeOutAnnotations(fz_context* context, pdf_document* document, pdf_obj* page) {
    pdf_obj* const list = pdf_dict_get(context, page, PDF_NAME(Annots));
    for (int i = 0; i < pdf_array_len(context, list); ++i) {
        pdf_obj* const annotation = pdf_array_get(context, list, i);
        if (pdf_is_indirect(context, annotation) == 0 && pdf_is_dict(context, annotation) != 0) {
            pdf_array_put_drop(context, list, i, pdf_add_object(context, document, annotation));
        }
    }
}

void repair(fz_context* context, pdf_document* document) {
    pdf_repair_xref(context, document);
    pdf_repair_obj_stms(context, document);
    pdf_repair_trailer(context, document);
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

bool canBeBitmap(PixelSize size) {
    return size.width > 0 && size.height > 0 &&
           std::int64_t{size.width} * size.height <= Bitmap::maxPixels;
}

class PageDrawerMuPdf final : public PageDrawer {
public:
    PageDrawerMuPdf(std::span<const std::byte> bytes, const std::optional<std::string>& given,
                    const PageLimits& within, FileReading how, MuPdfMemory& memory)
        : pdf(bytes), password(given), reading(how),
          context(memory, within.largestBlock, within.allLargeBlocks) {
        if (context.get() != nullptr) {
            fz_tune_image_decode(context.get(), noteDecoding, &hasDecodedPictures);
        }
    }
    ~PageDrawerMuPdf() override { pdf_drop_document(context.get(), document); }
    PageDrawerMuPdf(const PageDrawerMuPdf&) = delete;
    PageDrawerMuPdf& operator=(const PageDrawerMuPdf&) = delete;

    // Why the document cannot be used.
    std::optional<LoadFailure> open() {
        if (context.get() == nullptr) {
            return LoadFailure::unreadable;
        }
        const auto opened = context.open(pdf, password);
        document = opened.document;
        if (opened.needsPassword) {
            return LoadFailure::needsPassword;
        }
        if (document != nullptr) {
            findPages();
        }
        // Pages that memory did not suffice for are not all there.
        return count < 1 || context.wasStopped() ? std::optional(LoadFailure::unreadable)
                                                 : std::nullopt;
    }

    [[nodiscard]] std::size_t pageCount() const override { return count; }

    DrawnPdfPage draw(std::size_t index) override {
        if (!forgetEarlierPages()) {
            return {End::stopped};
        }
        const bool wasRepairedBefore = wasRepaired();
        fz_cookie cookie{};
        DrawnPdfPage drawn = draw(static_cast<int>(index), cookie);
        hasMendedPages = cookie.errors > 0;
        if (wasRepaired() && !wasRepairedBefore) {
            return {End::repaired};
        }
        return context.wasStopped() ? DrawnPdfPage{End::stopped} : drawn;
    }

private:
    void findPages() {
        if (reading == FileReading::repaired && !wasRepaired()) {
            (void)attempt(context.get(), [&] { repair(context.get(), document); });
        }
        optionalContent.emplace(context.get(), document);
        const bool wasRepairedBefore = wasRepaired();
        count = static_cast<std::size_t>(flattenPageTree(context.get(), document));
        if (wasRepaired() && !wasRepairedBefore) {
            optionalContent.emplace(context.get(), document);
        }
    }

    // False when the document cannot be had anew.
    bool forgetEarlierPages() {
        // A picture that is kept from when it was drawn large is not sampled anew to be drawn
        // small. Fonts stay: to read them for every page takes half as long again.
        if (std::exchange(hasDecodedPictures, false)) {
            fz_empty_store(context.get());
        }
        context.startAfresh();
        if (!std::exchange(hasMendedPages, false)) {
            return true;
        }
        pdf_drop_document(context.get(), std::exchange(document, nullptr));
        const std::size_t pagesBefore = count;
        return !open() && count == pagesBefore;
    }

    static void noteDecoding(void* hasDecoded, int width, int height, int halvings,
                             fz_irect* part) {
        *static_cast<bool*>(hasDecoded) = true;
        fz_default_image_decode(nullptr, width, height, halvings, part);
    }

    [[nodiscard]] bool wasRepaired() { return pdf_was_repaired(context.get(), document) != 0; }

    DrawnPdfPage draw(int index, fz_cookie& cookie) {
        fz_context* const fz = context.get();
        pdf_page* page = nullptr;
        PageGeometry geometry{};
        const bool loaded = attempt(fz, [&] {
            // Before it is loaded: a change afterwards makes MuPDF forget how annotations look that
            // do not say it themselves.
            pdf_obj* const object = pdf_lookup_page_obj(fz, document, index);
            geometry = geometryOf(fz, object);
            showWholeMediaBox(fz, object, geometry);
            takeOutAnnotations(fz, document, object);
            page = pdf_load_page(fz, document, index);
        });
        DrawnPdfPage drawn{End::drawn};
        if (loaded && canBeBitmap(pixelSizeOf(geometry))) {
            drawn = draw(page, pixelSizeOf(geometry), cookie);
        }
        fz_drop_page(fz, page == nullptr ? nullptr : &page->super);
        return drawn;
    }

    DrawnPdfPage draw(pdf_page* page, PixelSize size, fz_cookie& cookie) {
        fz_context* const fz = context.get();
        const auto bitmap = Bitmap::create(size.width, size.height);
        if (!bitmap) {
            return {End::stopped};
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
        expandPackedRgb(bitmap->pixels());
        // What asks for absurd amounts of memory fails for want of it on every machine: the page
        // goes without. Other memory has a limit, which the context knows of.
        const bool isWhole = drawing == PageDrawing::Whole && !context.sawAbsurdBlock();
        return {ready ? End::drawn : End::stopped, bitmap, isWhole};
    }

    std::span<const std::byte> pdf;
    std::optional<std::string> password;
    FileReading reading;
    MuPdfContext context;
    pdf_document* document = nullptr;
    std::optional<OptionalContent> optionalContent; // as soon as there is a document
    std::size_t count = 0;
    bool hasDecodedPictures = false;
    bool hasMendedPages = false; // which changes the document
};

} // namespace

OpenedDrawer openDrawerMuPdf(std::span<const std::byte> pdf,
                             const std::optional<std::string>& password, const PageLimits& limits,
                             FileReading reading, MuPdfMemory& memory) {
    auto drawer = std::make_unique<PageDrawerMuPdf>(pdf, password, limits, reading, memory);
    if (const auto failure = drawer->open()) {
        return *failure;
    }
    return drawer;
}

} // namespace murkwell
