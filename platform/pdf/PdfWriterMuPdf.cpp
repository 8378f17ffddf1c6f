#include "platform/pdf/PdfWriterMuPdf.h"

#include "core/ParallelFor.h"
#include "platform/pdf/MuPdf.h"
#include "platform/pdf/PageImage.h"

#include <new>
#include <span>

namespace murkwell {
namespace {

using Bytes = std::vector<std::byte>;

unsigned char* unsignedBytes(const std::byte* bytes) {
    // MuPDF takes shared data as non-const and only reads it.
    return reinterpret_cast<unsigned char*>(const_cast<std::byte*>(bytes));
}

// None when one of them cannot be made.
std::optional<std::vector<PageImage>> encodeImages(std::vector<BitmapRef> pages) {
    std::vector<std::optional<PageImage>> encoded(pages.size());
    const bool allRan = parallelFor(pages.size(), [&](std::size_t i) {
        encoded[i] = encodePageImage(*pages[i]);
        pages[i].reset();
    });
    if (!allRan) {
        return std::nullopt;
    }
    std::vector<PageImage> images;
    images.reserve(encoded.size());
    for (auto& image : encoded) {
        if (!image) {
            return std::nullopt;
        }
        images.push_back(std::move(*image));
    }
    return images;
}

// The functions below may longjmp out: they make no object that has a destructor.

void putColorSpace(fz_context* context, pdf_obj* dictionary, const PageImage& image) {
    pdf_obj* const device = image.components == 3 || !image.palette.empty() ? PDF_NAME(DeviceRGB)
                                                                            : PDF_NAME(DeviceGray);
    if (image.palette.empty()) {
        pdf_dict_put(context, dictionary, PDF_NAME(ColorSpace), device);
        return;
    }
    pdf_obj* const indexed = pdf_dict_put_array(context, dictionary, PDF_NAME(ColorSpace), 4);
    pdf_array_push(context, indexed, PDF_NAME(Indexed));
    pdf_array_push(context, indexed, device);
    pdf_array_push_int(context, indexed, static_cast<std::int64_t>(image.palette.size()) - 1);
    pdf_array_push_string(context, indexed, reinterpret_cast<const char*>(image.palette.data()),
                          image.palette.size() * sizeof(PageImage::Rgb));
}

void putFilters(fz_context* context, pdf_obj* dictionary, const PageImage& image) {
    if (image.packing == PageImage::Packing::runLengths) {
        pdf_obj* const filters = pdf_dict_put_array(context, dictionary, PDF_NAME(Filter), 2);
        pdf_array_push(context, filters, PDF_NAME(FlateDecode));
        pdf_array_push(context, filters, PDF_NAME(RunLengthDecode));
        return;
    }
    pdf_dict_put(context, dictionary, PDF_NAME(Filter), PDF_NAME(FlateDecode));
    if (image.packing == PageImage::Packing::rowFilters) {
        constexpr int anyPngFilter = 15;
        pdf_obj* const parameters =
            pdf_dict_put_dict(context, dictionary, PDF_NAME(DecodeParms), 4);
        pdf_dict_put_int(context, parameters, PDF_NAME(Predictor), anyPngFilter);
        pdf_dict_put_int(context, parameters, PDF_NAME(Colors), image.components);
        pdf_dict_put_int(context, parameters, PDF_NAME(BitsPerComponent), image.bitsPerComponent);
        pdf_dict_put_int(context, parameters, PDF_NAME(Columns), image.width);
    }
}

// The image object; the caller owns a reference.
pdf_obj* addImage(fz_context* context, pdf_document* document, const PageImage& image) {
    pdf_obj* dictionary = nullptr;
    fz_buffer* data = nullptr;
    pdf_obj* object = nullptr;
    const bool isAdded = attempt(context, [&] {
        dictionary = pdf_new_dict(context, document, 8);
        pdf_dict_put(context, dictionary, PDF_NAME(Type), PDF_NAME(XObject));
        pdf_dict_put(context, dictionary, PDF_NAME(Subtype), PDF_NAME(Image));
        pdf_dict_put_int(context, dictionary, PDF_NAME(Width), image.width);
        pdf_dict_put_int(context, dictionary, PDF_NAME(Height), image.height);
        pdf_dict_put_int(context, dictionary, PDF_NAME(BitsPerComponent), image.bitsPerComponent);
        putColorSpace(context, dictionary, image);
        putFilters(context, dictionary, image);
        data = fz_new_buffer_from_shared_data(context, unsignedBytes(image.data.data()),
                                              image.data.size());
        constexpr int alreadyCompressed = 1;
        object = pdf_add_stream(context, document, data, dictionary, alreadyCompressed);
    });
    fz_drop_buffer(context, data);
    pdf_drop_obj(context, dictionary);
    if (!isAdded) {
        fz_rethrow(context);
    }
    return object;
}

// A page of one point per pixel that shows the image and nothing else.
void addPage(fz_context* context, pdf_document* document, const PageImage& image) {
    pdf_obj* resources = nullptr;
    fz_buffer* content = nullptr;
    pdf_obj* page = nullptr;
    const bool isAdded = attempt(context, [&] {
        resources = pdf_new_dict(context, document, 1);
        pdf_obj* const objects = pdf_dict_put_dict(context, resources, PDF_NAME(XObject), 1);
        pdf_dict_puts_drop(context, objects, "Page", addImage(context, document, image));
        content = fz_new_buffer(context, 64);
        fz_append_printf(context, content, "%d 0 0 %d 0 0 cm /Page Do", image.width, image.height);
        const fz_rect mediaBox =
            fz_make_rect(0, 0, static_cast<float>(image.width), static_cast<float>(image.height));
        constexpr int upright = 0;
        page = pdf_add_page(context, document, mediaBox, upright, resources, content);
        constexpr int atTheEnd = -1;
        pdf_insert_page(context, document, atTheEnd, page);
    });
    pdf_drop_obj(context, page);
    fz_drop_buffer(context, content);
    pdf_drop_obj(context, resources);
    if (!isAdded) {
        fz_rethrow(context);
    }
}

void appendBytes(fz_context* context, void* state, const void* data, std::size_t size) {
    try {
        auto& bytes = *static_cast<Bytes*>(state);
        const auto* const start = static_cast<const std::byte*>(data);
        bytes.insert(bytes.end(), start, start + size);
        return;
    } catch (const std::bad_alloc&) {
        // Reported below: an exception must not be alive when longjmp passes it.
    }
    fz_throw(context, FZ_ERROR_MEMORY, "no memory for the file");
}

std::int64_t byteCount(fz_context*, void* state) {
    return static_cast<std::int64_t>(static_cast<const Bytes*>(state)->size());
}

void save(fz_context* context, pdf_document* document, Bytes& bytes) {
    fz_output* const output = fz_new_output(context, 0, &bytes, appendBytes, nullptr, nullptr);
    output->tell = byteCount;
    const bool isSaved = attempt(context, [&] {
        // Whatever MuPDF would note about the file beyond its pages is not wanted.
        pdf_dict_del(context, pdf_trailer(context, document), PDF_NAME(Info));
        pdf_dict_del(context, pdf_trailer(context, document), PDF_NAME(ID));
        pdf_write_options options = pdf_default_write_options;
        pdf_write_document(context, document, output, &options);
        fz_close_output(context, output);
    });
    fz_drop_output(context, output);
    if (!isSaved) {
        fz_rethrow(context);
    }
}

} // namespace

std::optional<Bytes> PdfWriterMuPdf::encode(std::vector<BitmapRef> pages) {
    const auto images = encodeImages(std::move(pages));
    MuPdfMemory memory;
    const MuPdfContext context(memory);
    fz_context* const fz = context.get();
    if (!images || fz == nullptr) {
        return std::nullopt;
    }
    Bytes bytes;
    pdf_document* document = nullptr;
    const bool written = attempt(fz, [&] {
        document = pdf_create_document(fz);
        for (const PageImage& image : *images) {
            addPage(fz, document, image);
        }
        save(fz, document, bytes);
    });
    pdf_drop_document(fz, document);
    if (!written) {
        return std::nullopt;
    }
    return bytes;
}

} // namespace murkwell
