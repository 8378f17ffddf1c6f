#include "model/SearchReport.h"

#include "core/Localization.h"
#include "model/PageNumbers.h"

#include <string_view>

namespace murkwell {
namespace {

std::string joined(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
        list += (list.empty() ? "" : ", ") + name;
    }
    return list;
}

// Adds what is to be said of such pages, if there are some, to the end of the text.
void say(std::string& text, const std::vector<std::size_t>& pages, std::size_t pageCount,
         std::string_view ofThisPage, std::string_view ofSome) {
    if (pages.empty()) {
        return;
    }
    text += text.empty() ? "" : " ";
    text += pageCount > 1 ? localized(ofSome, {pages.size(), pageCount, listed(pages)})
                          : localized(ofThisPage);
}

} // namespace

void SearchReport::add(std::size_t page, const Detector::Findings& findings) {
    const bool lacksText = findings.text == Outcome::failed;
    const bool lacksFaces = findings.faces == Outcome::failed;
    const bool wasSearched = (findings.text && !lacksText) || (findings.faces && !lacksFaces);
    if ((lacksText || lacksFaces) && !wasSearched) {
        addUnsearched(page);
        return;
    }
    ++pageCount;
    if (lacksText) {
        withoutText.push_back(page + 1);
    }
    if (lacksFaces) {
        withoutFaces.push_back(page + 1);
    }
    if (findings.text == Outcome::partial) {
        readByOne.push_back(page + 1);
    }
}

void SearchReport::addUnsearched(std::size_t page) {
    ++pageCount;
    unsearched.push_back(page + 1);
}

std::string SearchReport::message() const {
    std::string text;
    say(text, unsearched, pageCount, translatable("Couldn’t search this page."),
        translatable("Couldn’t search %d of %d pages (%@)."));
    say(text, withoutText, pageCount, translatable("Couldn’t search this page for text."),
        translatable("Couldn’t search %d of %d pages for text (%@)."));
    say(text, withoutFaces, pageCount, translatable("Couldn’t search this page for faces."),
        translatable("Couldn’t search %d of %d pages for faces (%@)."));
    say(text, readByOne, pageCount,
        translatable("Only one of two readers read the text of this page."),
        translatable("Only one of two readers read the text of %d of %d pages (%@)."));
    return text;
}

std::string missingForText(const Readiness& text) {
    switch (text.outcome) {
    case Outcome::whole:
        return {};
    case Outcome::partial:
        return localized("More text than usual will be missed. Missing or damaged: %@.",
                         {joined(text.missing)});
    case Outcome::failed:
        return localized("Text cannot be found. Missing or damaged: %@.", {joined(text.missing)});
    }
    return {};
}

std::string missingForFaces(const Readiness& faces) {
    return faces.outcome == Outcome::whole
               ? std::string()
               : localized("Faces cannot be found. Missing or damaged: %@.",
                           {joined(faces.missing)});
}

} // namespace murkwell
