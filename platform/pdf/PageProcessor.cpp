#include "platform/pdf/PageProcessor.h"

#include "platform/pdf/OptionalContent.h"

#include <string_view>

namespace murkwell {

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
                                   fz_default_colorspaces* colorspaces, fz_cookie* cookie) {
    markedContent = {};
    pageResources = resources;
    leaveOutHidden(resources);
    // Without a usage MuPDF takes all optional content for visible.
    pdf_processor* const processor =
        pdf_new_run_processor(context, device, transform, nullptr, nullptr, colorspaces, cookie);
    original = *processor;
    install(processor);
    if (errors == Errors::SkipOperator) {
        guardPainting(device);
    }
    return processor;
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
            pdf_obj* const nothing =
                pdf_dict_put_dict(context, objects, pdf_dict_get_key(context, objects, i), 1);
            pdf_dict_put_name(context, nothing, PDF_NAME(Subtype), "PS");
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
