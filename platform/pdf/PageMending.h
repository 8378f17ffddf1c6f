// Takes from a page, in memory, what MuPDF cannot load and would end the page at.
#pragma once

#include "platform/pdf/MuPdf.h"

#include <set>
#include <vector>

namespace murkwell {

// For a page that broke off, before it is drawn again. The objects stay as they have become, for
// other pages too.
class PageMending {
public:
    // Gives up with an error once the cookie is aborted, when nothing loads any more.
    PageMending(fz_context* usedContext, pdf_document* usedDocument, const fz_cookie& pageCookie)
        : context(usedContext), document(usedDocument), cookie(pageCookie) {}

    // False when memory ran out or the cookie was aborted.
    [[nodiscard]] bool mend(pdf_page* page);

    // Something was taken out that ought to be drawn.
    [[nodiscard]] bool hasTakenOut() const { return takenOut; }

private:
    struct Stream {
        int number; // of the object
        int user;   // the stream that it was found through; 0: the page
    };

    void mendResources(pdf_obj* resources);
    void inherit(pdf_obj* resources, pdf_obj* outer);
    pdf_obj* resourcesOf(int number);
    template <typename IsUsable>
    void keepUsable(pdf_obj* resources, pdf_obj* category, IsUsable&& isUsable);
    void mendAppearances(pdf_obj* annotation);
    void mendStream(Stream pendingStream);
    template <typename Replace>
    void withMended(pdf_obj* content, pdf_obj* resources, Replace&& replace);
    fz_buffer* readContent(pdf_obj* content);
    void mendLater(pdf_obj* stream);
    [[nodiscard]] bool isUsableObject(pdf_obj* object);
    [[nodiscard]] bool isUsablePattern(pdf_obj* pattern);
    template <typename Load>
    [[nodiscard]] bool loads(Load&& load);
    void requireData(bool isThere);

    fz_context* context;
    pdf_document* document;
    const fz_cookie& cookie;
    pdf_obj* pageResources = nullptr;
    std::set<int> seen;          // object numbers of streams
    std::vector<Stream> pending; // of those seen, the ones not yet mended
    int current = 0;             // the stream being mended
    bool isReadable = true;      // the content that was read last
    bool takenOut = false;
};

} // namespace murkwell
