#include "platform/pdf/PageProcessor.h"

#include "platform/pdf/OptionalContent.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace murkwell {
namespace {

// Whether there is a word in it that MuPDF takes for the end of the content. May longjmp out.
bool endsEarly(fz_context* context, fz_stream* content) {
    constexpr std::string_view word = "endstream";
    std::array<unsigned char, 4096> window;
    std::size_t kept = 0; // from the window before, which may end within the word
    while (const std::size_t size =
               fz_read(context, content, window.data() + kept, window.size() - kept)) {
        const std::size_t end = kept + size;
        if (fz_memmem(window.data(), end, word.data(), word.size()) != nullptr) {
            return true;
        }
        kept = std::min(end, word.size() - 1);
        std::memmove(window.data(), window.data() + end - kept, kept);
    }
    return false;
}

// The caller owns a reference. May longjmp out.
pdf_obj* emptyForm(fz_context* context, pdf_document* document) {
    fz_buffer* const content = fz_new_buffer(context, 1);
    pdf_obj* form = nullptr;
    const bool isMade = attempt(context, [&] {
        form = pdf_new_xobject(context, document, {0, 0, 0, 0}, fz_identity, nullptr, content);
    });
    fz_drop_buffer(context, content);
    if (!isMade) {
        fz_rethrow(context);
    }
    return form;
}

} // namespace

PageProcessor::PageProcessor(fz_context* usedContext, const OptionalContent& content,
                             Errors onErrors)
    : context(usedContext), optionalContent(content), errors(onErrors) {
    fz_set_user_context(context, this);
    warn = fz_warning_callback(context, &warned);
    fz_flush_warnings(context); // one that was given before is not given again
    fz_set_warning_callback(context, &noteWarning, this);
}

PageProcessor::~PageProcessor() {
    fz_flush_warnings(context);
    fz_set_warning_callback(context, warn, warned);
    fz_set_user_context(context, nullptr);
}

pdf_processor* PageProcessor::make(fz_device* device, fz_matrix transform, pdf_obj* resources,
                                   fz_default_colorspaces* colorspaces, fz_cookie* pageCookie) {
    markedContent = {};
    cookie = pageCookie;
    pageResources = resources;
    leaveOutHidden(resources);
    // Without a usage MuPDF takes all optional content for visible.
    pdf_processor* const processor = pdf_new_run_processor(context, device, transform, nullptr,
                                                           nullptr, colorspaces, pageCookie);
    original = *processor;
    install(processor);
    if (errors == Errors::SkipOperator) {
        guardPainting(device);
    } else {
        countOperands(processor);
    }
    return processor;
}

// What cannot be read to the end is judged by who draws it.
void PageProcessor::lookForEnd(pdf_document* document, pdf_obj* content) {
    const int number = pdf_to_num(context, content);
    if (errors == Errors::SkipOperator || givenUp ||
        (number != 0 && !searched.insert(number).second)) {
        return;
    }
    fz_stream* stream = nullptr;
    const bool isRead = attempt(context, [&] {
        stream = pdf_open_contents_stream(context, document, content);
        givenUp = endsEarly(context, stream);
    });
    fz_drop_stream(context, stream);
    if (!isRead && ranOut(context)) {
        fz_rethrow(context);
    }
}

// The text so far is drawn as it was begun.
void PageProcessor::openMarkedContent(pdf_processor* processor, bool hidesContent) {
    ++markedContent.depth;
    if (hidesContent && markedContent.hiddenFrom == 0) {
        original.op_END(context, processor);
        markedContent.hiddenFrom = markedContent.depth;
    }
    processor->hidden = markedContent.hiddenFrom == 0 ? 0 : 1; // MuPDF adds 1 to more than 0
}

void PageProcessor::closeMarkedContent(pdf_processor* processor) {
    if (markedContent.depth > markedContent.outermost) {
        if (markedContent.depth == markedContent.hiddenFrom) {
            original.op_END(context, processor);
            markedContent.hiddenFrom = 0;
        }
        --markedContent.depth;
    }
    processor->hidden = markedContent.hiddenFrom == 0 ? 0 : 2; // MuPDF takes 1 off again
}

// An image's optional content is looked at before any function of ours is called, so hidden ones
// give way to something that is not drawn.
void PageProcessor::leaveOutHidden(pdf_obj* resources) {
    if (optionalContent.isNone()) {
        return;
    }
    pdf_obj* const objects = pdf_dict_get(context, resources, PDF_NAME(XObject));
    for (int i = pdf_dict_len(context, objects) - 1; i >= 0; --i) {
        pdf_obj* const content =
            pdf_dict_get(context, pdf_dict_get_val(context, objects, i), PDF_NAME(OC));
        if (optionalContent.hides(context, content)) {
            pdf_dict_put_drop(context, objects, pdf_dict_get_key(context, objects, i),
                              emptyForm(context, pdf_get_bound_document(context, objects)));
        }
    }
}

// A mask must be there to the end. May longjmp out when there is no memory.
bool PageProcessor::isDecodable(fz_image* image, bool toTheEnd) {
    const bool givenUpBefore = givenUp;
    givenUp = false;
    fz_flush_warnings(context);
    const bool isDecoded = attempt(context, [&] {
        fz_drop_pixmap(
            context, fz_get_pixmap_from_image(context, image, nullptr, nullptr, nullptr, nullptr));
    });
    if (!isDecoded && ranOut(context)) {
        fz_rethrow(context);
    }
    const bool isToTheEnd = isDecoded && !givenUp;
    skipped = skipped || !isToTheEnd;
    givenUp = givenUpBefore;
    return isDecoded && (isToTheEnd || !toTheEnd);
}

// The words are those of the MuPDF that the project builds with; the tests see if they change.
void PageProcessor::noteWarning(void* self, const char* message) {
    const std::string_view text = message;
    auto& processor = *static_cast<PageProcessor*>(self);
    if (text.starts_with("too many syntax errors") || text == "padding truncated image") {
        processor.givenUp = true;
    }
    if (text.starts_with("Type3 glyph load failed") || text.starts_with("cannot render glyph") ||
        text.starts_with("cannot load content stream part") || text.starts_with("read error")) {
        processor.skipped = true;
    }
}

} // namespace murkwell
