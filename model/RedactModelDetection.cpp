#include "model/RedactModel.h"

#include "core/Localization.h"
#include "model/NearDuplicates.h"
#include "model/WhiteSpace.h"

#include <exception>
#include <utility>

namespace murkwell {
namespace {

std::string nothingFoundMessage(std::size_t targetCount) {
    return targetCount > 1 ? localized("Found nothing to redact.")
                           : localized("Found nothing to redact on this page.");
}

// Speaks of pages when several were searched, however many of them were hit.
std::string addedMessage(std::size_t added, std::size_t pagesHit, std::size_t targetCount) {
    if (targetCount > 1) {
        return localized("Added %d redactions across %d pages.", {added, pagesHit});
    }
    return added == 1 ? localized("Added %d redaction.", {added})
                      : localized("Added %d redactions.", {added});
}

} // namespace

std::vector<std::int64_t> RedactModel::targetPages() const {
    if (!document()) {
        return {};
    }
    if (!applyToAllPages()) {
        return {currentPage()};
    }
    std::vector<std::int64_t> pages;
    for (std::size_t i = 0; i < document()->pages.size(); ++i) {
        pages.push_back(static_cast<std::int64_t>(i));
    }
    return pages;
}

void RedactModel::autoDetect() {
    if (!document() || activeOperation() || detectKinds().empty()) {
        return;
    }
    runFind(translatable("Auto-Detect"), Operation::autoDetect,
            [kinds = detectKinds(), style = tool(), engines = services.detection](
                const Bitmap& image) { return Detector::detect(image, kinds, style, engines); });
}

void RedactModel::redactMatches(std::string_view query, bool fuzzy) {
    const std::string_view trimmed = withoutOuterWhiteSpace(query);
    if (!document() || activeOperation() || trimmed.empty()) {
        return;
    }
    runFind(translatable("Redact Matches"), Operation::find,
            [text = std::string(trimmed), fuzzy, style = tool(),
             engines = services.detection](const Bitmap& image) {
                return Detector::findMatches(text, image, fuzzy, style, engines);
            });
}

void RedactModel::runFind(std::string_view name, Operation operation, Search search) {
    const auto run = std::make_shared<SearchRun>();
    run->name = localized(name);
    run->targetPages = targetPages();
    for (const DocumentIO::Page& page : document()->pages) {
        run->images.push_back(page.image);
    }
    run->search = std::move(search);

    activeOperation = operation;
    statusMessage = std::nullopt;
    errorMessage = std::nullopt;
    const bool isBegun = services.executor.background(
        [run, &executor = services.executor, alive = std::weak_ptr(liveness)] {
            executor.onMain([run, alive, results = searchPages(*run)] {
                if (const auto model = alive.lock()) {
                    (*model)->finishFind(*run, results);
                }
            });
        });
    if (!isBegun) {
        finishFind(*run, std::nullopt);
    }
}

// On a background thread: page after page, in order. A page that throws, for want of memory most
// likely, has failed alone. None when the search could not be finished.
std::optional<RedactModel::SearchResults> RedactModel::searchPages(const SearchRun& run) {
    const auto searched = [&](const PackedBitmap& page) -> std::optional<Detector::Findings> {
        try {
            const BitmapRef image = page.unpack();
            return image ? std::optional(run.search(*image)) : std::nullopt;
        } catch (const std::exception&) {
            return std::nullopt;
        }
    };
    try {
        SearchResults results;
        for (const std::int64_t page : run.targetPages) {
            if (page < 0 || static_cast<std::uint64_t>(page) >= run.images.size()) {
                continue;
            }
            const auto index = static_cast<std::size_t>(page);
            if (auto findings = searched(*run.images[index])) {
                results.report.add(index, *findings);
                results.matches.push_back({index, std::move(findings->redactions)});
            } else {
                results.report.addUnsearched(index);
            }
        }
        return results;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

// What was found goes to the work that is open now, judged by the boxes that are there now. What
// could not be searched is an error, whatever was found elsewhere; then nothing is said to have
// been found to be clean.
void RedactModel::finishFind(const SearchRun& run, std::optional<SearchResults> results) {
    activeOperation = std::nullopt;
    searchReport = results ? std::optional(std::move(results->report)) : std::nullopt;
    if (!results) {
        errorMessage = localized("The search could not be finished.");
        return;
    }
    const std::vector<PageMatches> additions = withoutDuplicates(results->matches);
    std::optional<std::string> done;
    if (!additions.empty()) {
        done = add(run, additions);
    } else if (searchReport->coversEverything()) {
        done = nothingFoundMessage(run.targetPages.size());
    }
    if (done) {
        statusMessage = done;
    }
    if (const std::string trouble = searchReport->message(); !trouble.empty()) {
        errorMessage = done ? *done + " " + trouble : trouble;
    }
}

std::string RedactModel::add(const SearchRun& run, const std::vector<PageMatches>& additions) {
    checkpoint(run.name);
    std::size_t added = 0;
    redactionsByPage.change([&](PageLists& lists) {
        for (const auto& [page, fresh] : additions) {
            auto& redactions = lists.edit(page);
            redactions.insert(redactions.end(), fresh.begin(), fresh.end());
            added += fresh.size();
        }
    });
    return addedMessage(added, additions.size(), run.targetPages.size());
}

// Pages that the open work does not have, and pages with nothing new, are left out.
std::vector<RedactModel::PageMatches>
RedactModel::withoutDuplicates(const std::vector<PageMatches>& results) const {
    std::vector<PageMatches> additions;
    for (const auto& [page, found] : results) {
        if (page < redactionsByPage().size()) {
            auto fresh = withoutNearDuplicates(found, redactionsByPage()[page],
                                               document()->pages[page].image->size());
            if (!fresh.empty()) {
                additions.push_back({page, std::move(fresh)});
            }
        }
    }
    return additions;
}

void RedactModel::prepareSearch() {
    if (activeOperation() || isPreparingSearch) {
        return;
    }
    isPreparingSearch = true;
    const bool isBegun = services.executor.background([engines = services.detection,
                                                       &executor = services.executor,
                                                       alive = std::weak_ptr(liveness)] {
        SearchReadiness ready{engines.textRecognizer.readiness(), engines.faceDetector.readiness()};
        executor.onMain([ready = std::move(ready), alive] {
            if (const auto model = alive.lock()) {
                (*model)->isPreparingSearch = false;
                (*model)->searchReadiness = ready;
            }
        });
    });
    if (!isBegun) {
        isPreparingSearch = false;
    }
}

} // namespace murkwell
