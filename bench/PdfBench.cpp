// What loading and exporting PDFs cost, against the bare engine, plain Flate and one processor.
//
//   PdfBench TEXT.pdf MIXED.pdf...
//
// TEXT.pdf is loaded; of the others the first pages, 20 in all, are exported.
#include "bench/Measure.h"
#include "core/ParallelFor.h"
#include "io/FileAccess.h"
#include "platform/pdf/MuPdf.h"
#include "platform/pdf/PdfRendererMuPdf.h"
#include "platform/pdf/PdfWriterLibdeflate.h"

#include <cstdlib>
#include <zlib.h>

namespace {

using namespace murkwell;

constexpr int turns = 5;

std::vector<std::byte> read(const char* path) {
    const auto file = readFile(path);
    if (!file) {
        std::fprintf(stderr, "PdfBench: cannot read %s\n", path);
        std::exit(2);
    }
    return {file->bytes().begin(), file->bytes().end()};
}

std::vector<PackedBitmapRef> load(const std::vector<std::byte>& pdf) {
    const auto result = PdfRendererMuPdf().render(pdf, std::nullopt);
    std::vector<PackedBitmapRef> pages;
    for (const auto& page : std::get<std::vector<RenderedPage>>(result)) {
        pages.push_back(page.image);
    }
    return pages;
}

// Every page at scale 2 with nothing of ours around it.
void renderBare(const std::vector<std::byte>& pdf) {
    fz_context* const context = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
    fz_set_warning_callback(
        context, [](void*, const char*) {}, nullptr);
    fz_stream* const stream =
        fz_open_memory(context, reinterpret_cast<const unsigned char*>(pdf.data()), pdf.size());
    pdf_document* const document = pdf_open_document_with_stream(context, stream);
    const int count = pdf_count_pages(context, document);
    for (int i = 0; i < count; ++i) {
        pdf_page* const page = pdf_load_page(context, document, i);
        const fz_irect area =
            fz_round_rect(fz_transform_rect(pdf_bound_page(context, page), fz_scale(2, 2)));
        fz_pixmap* const pixmap =
            fz_new_pixmap_with_bbox(context, fz_device_rgb(context), area, nullptr, 0);
        fz_clear_pixmap_with_value(context, pixmap, 255);
        fz_device* const device = fz_new_draw_device(context, fz_identity, pixmap);
        pdf_run_page(context, page, device, fz_scale(2, 2), nullptr);
        fz_close_device(context, device);
        fz_drop_device(context, device);
        fz_drop_pixmap(context, pixmap);
        fz_drop_page(context, &page->super);
    }
    pdf_drop_document(context, document);
    fz_drop_stream(context, stream);
    fz_drop_context(context);
}

void measureLoading(const std::vector<std::byte>& pdf) {
    {
        const bench::OneProcessor one;
        const auto best = bench::takeTurns(
            turns, [&] { (void)load(pdf); }, [&] { renderBare(pdf); });
        bench::printRatio("load, one processor : the bare engine", best.measured / best.reference,
                          1.15);
    }
    const auto best = bench::takeTurns(
        turns, [&] { (void)load(pdf); },
        [&] {
            const bench::OneProcessor one;
            (void)load(pdf);
        });
    bench::printRatio("load, all processors : one processor", best.measured / best.reference, 0.65);
}

// The RGB samples of a page under zlib at level 6.
std::size_t plainFlateSize(const Bitmap& page) {
    std::vector<Bytef> rgb;
    rgb.reserve(page.pixels().size() * 3);
    for (const Rgba pixel : page.pixels()) {
        rgb.insert(rgb.end(), {pixel.r, pixel.g, pixel.b});
    }
    std::vector<Bytef> out(::compressBound(rgb.size()));
    uLongf size = out.size();
    ::compress2(out.data(), &size, rgb.data(), rgb.size(), 6);
    return size;
}

std::optional<std::vector<std::byte>> encode(const std::vector<PackedBitmapRef>& pages) {
    return PdfWriterLibdeflate().encode(pages.size(),
                                        [&](std::size_t i) { return pages[i]->unpack(); });
}

void measureExport(const std::vector<PackedBitmapRef>& pages) {
    std::size_t plain = 0;
    for (const PackedBitmapRef& page : pages) {
        plain += plainFlateSize(*page->unpack());
    }
    const auto file = encode(pages);
    bench::printRatio("export of " + std::to_string(pages.size()) + " pages, bytes : plain Flate",
                      static_cast<double>(file->size()) / static_cast<double>(plain), 0.65);
    const auto best = bench::takeTurns(
        3, [&] { (void)encode(pages); },
        [&] {
            const bench::OneProcessor one;
            (void)encode(pages);
        });
    bench::printRatio("export, all processors : one processor", best.measured / best.reference,
                      0.65);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: PdfBench TEXT.pdf MIXED.pdf...\n");
        return 2;
    }
    measureLoading(read(argv[1]));
    constexpr std::size_t exported = 20;
    std::vector<PackedBitmapRef> pages;
    for (int i = 2; i < argc; ++i) {
        for (const PackedBitmapRef& page : load(read(argv[i]))) {
            if (page && pages.size() < exported) {
                pages.push_back(page);
            }
        }
    }
    measureExport(pages);
}
