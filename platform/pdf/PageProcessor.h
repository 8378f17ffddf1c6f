// Draws content streams with MuPDF, under rules of ours: what optional content hides is left out
// by our own judgement, soft masks are put right before they are used, and, where asked, an
// operator that fails does not end the page.
#pragma once

#include "platform/pdf/MuPdf.h"

#include <set>

namespace murkwell {

class OptionalContent;

// Puts functions of ours in front of those of MuPDF's run processors, which draw forms, patterns
// and soft masks by themselves and so cannot be wrapped from outside. While it lives it is the
// context's user data; there is one at a time.
class PageProcessor {
public:
    enum class Errors {
        EndThePage,  // as MuPDF has it
        SkipOperator // all but those of memory
    };

    PageProcessor(fz_context* context, const OptionalContent& optionalContent, Errors errors);
    ~PageProcessor();
    PageProcessor(const PageProcessor&) = delete;
    PageProcessor& operator=(const PageProcessor&) = delete;

    // Before `content`, a stream or an array of them, is drawn. May longjmp out.
    void lookForEnd(pdf_document* document, pdf_obj* content);

    // A processor that draws; the caller owns a reference. `resources` are those that its content
    // will use. May longjmp out.
    pdf_processor* make(fz_device* device, fz_matrix transform, pdf_obj* resources,
                        fz_default_colorspaces* colorspaces, fz_cookie* cookie);

    // Something on the page was not drawn as it should be.
    [[nodiscard]] bool hasSkipped() const { return skipped; }

    // MuPDF makes less of something than other viewers do: it left out the rest of a content
    // stream, filled up an image with zeros, or took operands for others.
    [[nodiscard]] bool hasGivenUp() const { return givenUp; }

private:
    friend struct PageOperands;
    friend struct PageOperators;
    friend struct PagePainting;

    static PageProcessor& of(fz_context* context) {
        return *static_cast<PageProcessor*>(fz_user_context(context));
    }

    // Depths of BMC and BDC without their EMC. Content streams do not close what others opened.
    struct MarkedContent {
        int depth = 0;
        int outermost = 0;  // what was open when the stream began
        int hiddenFrom = 0; // 0: visible
    };

    void openMarkedContent(pdf_processor* processor, bool hidesContent);
    void closeMarkedContent(pdf_processor* processor);
    void leaveOutHidden(pdf_obj* resources);
    [[nodiscard]] bool isDecodable(fz_image* image, bool toTheEnd);
    static void noteWarning(void* self, const char* message);

    void install(pdf_processor* processor) const;
    void countOperands(pdf_processor* processor);
    void guardPainting(fz_device* device);

    // Only errors of memory get out.
    template <typename Call>
    void skipFailed(Call&& call) {
        if (!attempt(context, call)) {
            if (ranOut(context)) {
                fz_rethrow(context);
            }
            skipped = true;
        }
    }

    // Runs one of the processor's operators.
    template <typename Call>
    void run(pdf_processor* processor, Call&& call) {
        const MarkedContent before = markedContent;
        const int hidden = processor->hidden;
        markedContent.outermost = before.depth;
        if (errors == Errors::EndThePage) {
            call();
        } else {
            skipFailed(call);
        }
        markedContent = before;
        processor->hidden = hidden;
    }

    fz_context* context;
    const OptionalContent& optionalContent;
    Errors errors;
    pdf_processor original{};     // MuPDF's functions
    fz_device painter{};          // and those of the device
    fz_device* guarded = nullptr; // the device that calls ours
    MarkedContent markedContent;
    pdf_obj* pageResources = nullptr;
    std::set<int> searched; // for what ends streams: object numbers
    const fz_cookie* cookie = nullptr;
    pdf_processor uncounted{}; // the functions before operands were counted
    int tokensBefore = 0;      // what MuPDF had read at the operator before
    bool isInPath = false;
    bool skipped = false;
    bool givenUp = false;
    fz_warning_cb* warn; // the context's before
    void* warned = nullptr;
};

} // namespace murkwell
