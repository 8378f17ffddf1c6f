// The one object that owns the user's work: the open document, the boxes of every page, selection,
// settings, undo history, the running search and the messages. Main thread only.
//
// Rectangles are in page space. No operation throws or reports an error: one that cannot be done
// does nothing, and file operations leave a message.
#pragma once

#include "detect/PIIKind.h"
#include "io/DocumentIO.h"
#include "io/MurkwellDocument.h"
#include "model/PageLists.h"
#include "model/Published.h"
#include "model/SearchReport.h"
#include "model/Services.h"
#include "model/Turns.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace murkwell {

class RedactModel {
public:
    enum class Operation : std::uint8_t { autoDetect, find };

    // Smallest side of a box drawn by hand.
    static constexpr double minBox = 0.005;
    // Most steps that can be undone.
    static constexpr std::size_t maxUndo = 100;
    // Whether the notice before the first PDF export has been shown.
    static constexpr std::string_view pdfFlattenNoticeKey = "Murkwell.didShowPDFFlattenNotice";

    explicit RedactModel(const Services& services);
    RedactModel(const RedactModel&) = delete;
    RedactModel& operator=(const RedactModel&) = delete;

    // Calls back before every assignment to any of the fields below, for as long as the returned
    // object lives. The callback must not call the model's operations.
    [[nodiscard]] Observers::Observation observe(Observers::Callback callback) {
        return observers.add(std::move(callback));
    }

private:
    Observers observers;

public:
    Published<std::optional<DocumentIO::Document>> document{observers, {}};
    // One list per page of the document; none without. Later boxes lie on top.
    Published<PageLists> redactionsByPage{observers, {}};
    Published<std::int64_t> currentPage{observers, 0};
    // Of new boxes; applied to the selected one by applyToolToSelection().
    PublishedSetting<RedactionStyle> tool{observers, RedactionStyle::solidBlack};
    PublishedSetting<PIIKinds> detectKinds{observers, {allPIIKinds.begin(), allPIIKinds.end()}};
    // Whether searches go over every page rather than the current one.
    PublishedSetting<bool> applyToAllPages{observers, false};
    Published<std::optional<Operation>> activeOperation{observers, {}};
    // The saved document that the work was read from or last written to.
    Published<std::optional<std::filesystem::path>> sessionURL{observers, {}};
    Published<bool> isDirty{observers, false};
    // A box of the current page, or none. What the window writes is not checked.
    PublishedSetting<std::optional<Uuid>> selectedID{observers, {}};
    Published<std::optional<std::string>> errorMessage{observers, {}};
    Published<std::optional<std::string>> statusMessage{observers, {}};
    Published<std::optional<std::filesystem::path>> lastExportURL{observers, {}};
    // What searches can find on this computer; everything, until prepareSearch() has learned more.
    Published<SearchReadiness> searchReadiness{observers, {}};

    // Views of the state, computed when asked for.
    [[nodiscard]] const PageLists::Page& currentRedactions() const; // until the next change
    [[nodiscard]] PackedBitmapRef currentImage() const;
    [[nodiscard]] std::optional<PixelSize> currentPixelSize() const;
    [[nodiscard]] PackedBitmapRef image(std::int64_t page) const;
    [[nodiscard]] std::size_t redactionCount(std::int64_t page) const;
    [[nodiscard]] std::size_t totalRedactionCount() const;
    [[nodiscard]] bool hasSelection() const { return selectedID().has_value(); }
    [[nodiscard]] bool hasDetectedRedactions() const;
    [[nodiscard]] std::optional<std::string> fileName() const;

    // Editing. Rectangles are clamped to the page: one over its left or top edge is pushed inside
    // with its size kept, one over its right or bottom edge is cropped.
    void goToPage(std::int64_t index);
    // None when no page is shown or a side is below minBox; else the new box is selected.
    std::optional<Uuid> addRedaction(const PageRect& rect);
    // Records no undo step and has no smallest size: gestures call it many times a second.
    void updateRedaction(const Uuid& id, const PageRect& rect);
    void remove(const Uuid& id);
    void applyToolToSelection();
    void clearCurrentPage();
    void clearDetected(); // on all pages

    // History. An interactive change is one step: everything between its begin and its end.
    void undo();
    void redo();
    void beginInteractiveChange(const std::string& name); // the name in the user's language
    void endInteractiveChange();
    // A gesture of the pointer, during which file operations wait, as they do during an interactive
    // change. Undo, redo and another page end it first: they call `finish`, which is to leave the
    // gesture where it has come to and to call endGesture().
    void beginGesture(std::function<void()> finish);
    void endGesture();
    [[nodiscard]] bool canUndo() const { return !undoStack.empty(); }
    [[nodiscard]] bool canRedo() const { return !redoStack.empty(); }
    [[nodiscard]] std::string undoTitle() const;
    [[nodiscard]] std::string redoTitle() const;

    // Searches. They return at once; what is found is added later, in one undo step.
    void autoDetect();
    void redactMatches(std::string_view query, bool fuzzy); // UTF-8
    // What the last search could not do; none before the first, and when it broke as a whole.
    [[nodiscard]] const std::optional<SearchReport>& lastSearch() const { return searchReport; }
    // Loads in the background what searches need, and learns what is missing.
    void prepareSearch();

    // Files. Work that is open is replaced without a question. One at a time: an operation that is
    // asked for while a panel is up runs when that panel's operation is over. It is dropped if that
    // could not write its file, as it might take the work away with the message.
    void open(const std::vector<std::filesystem::path>& files);
    void openPanel();
    void openSession(const std::filesystem::path& url);
    void closeDocument();
    void saveSession();
    void saveSessionAs();
    void exportDocument();
    void revealLastExport();
    [[nodiscard]] std::optional<std::string> documentTitle() const;

private:
    // The state before a change, or after one that was undone.
    struct Snapshot {
        std::string name; // of the step, in the user's language
        PageLists state;
        std::int64_t page;
        std::optional<Uuid> selection;
    };

    // All that belongs to the document that is open.
    struct Work {
        std::optional<DocumentIO::Document> document;
        PageLists redactionsByPage;
        std::optional<SharedBytes> sourceData;
        std::optional<std::string> sourceFilename;
        std::optional<std::filesystem::path> sessionURL;
    };

    struct PageMatches {
        std::size_t page;
        std::vector<Redaction> redactions;
    };
    struct SearchResults {
        std::vector<PageMatches> matches;
        SearchReport report;
    };
    using Search = std::function<Detector::Findings(const Bitmap&)>;

    // What a search needs until it ends, whatever happens to the model meanwhile.
    struct SearchRun {
        std::string name;
        std::vector<std::int64_t> targetPages;
        std::vector<PackedBitmapRef> images;
        Search search;
    };

    [[nodiscard]] bool isPage(std::int64_t index) const;
    [[nodiscard]] const Redaction* findOnCurrentPage(const Uuid& id) const;
    // The box must be on the current page.
    void changeRedaction(const Uuid& id, const std::function<void(Redaction&)>& change);
    void setStyle(RedactionStyle style, const Uuid& id);

    void checkpoint(const std::string& name);
    void finishGesture();
    void step(std::vector<Snapshot>& from, std::vector<Snapshot>& to);
    [[nodiscard]] Snapshot snapshot(std::string name) const;
    void apply(const Snapshot& snapshot);

    [[nodiscard]] std::vector<std::int64_t> targetPages() const;
    void runFind(std::string_view name, Operation operation, Search search);
    [[nodiscard]] static std::optional<SearchResults> searchPages(const SearchRun& run);
    void finishFind(const SearchRun& run, std::optional<SearchResults> results);
    // The message for what was added, in one undo step.
    [[nodiscard]] std::string add(const SearchRun& run, const std::vector<PageMatches>& additions);
    [[nodiscard]] std::vector<PageMatches>
    withoutDuplicates(const std::vector<PageMatches>& results) const;

    void openFiles(const std::vector<std::filesystem::path>& files);
    void askAndOpen();
    void openSource(const std::filesystem::path& url);
    void openSaved(const std::filesystem::path& url);
    void replaceWork(Work work);
    void askAndSave();
    void askAndExport();
    void writeSession(const Destination& destination);
    [[nodiscard]] std::string defaultSessionName() const;
    [[nodiscard]] bool confirmPDFFlattenIfNeeded();
    // Files that are there already and must not be replaced by an export or a saved document.
    [[nodiscard]] bool isOpenSession(const std::filesystem::path& file) const;
    [[nodiscard]] bool isOpenSource(const std::filesystem::path& file) const;
    // What keeps an export from being made, as a message; none when it can be.
    [[nodiscard]] std::optional<std::string> obstacleToExport() const;
    void fail(std::string_view englishFormat, const std::filesystem::path& file);
    void succeed(std::string_view englishFormat, const std::filesystem::path& file);

    Services services;
    std::vector<Snapshot> undoStack; // newest last
    std::vector<Snapshot> redoStack; // newest last
    bool interactiveActive = false;
    std::function<void()> finishOfGesture; // null without one
    Turns turns;
    bool isPreparingSearch = false;
    std::optional<SearchReport> searchReport;
    std::optional<SharedBytes> sourceData;
    std::optional<std::string> sourceFilename;
    // Searches hold it weakly: once it is gone, so is the model.
    std::shared_ptr<RedactModel*> liveness = std::make_shared<RedactModel*>(this);
};

} // namespace murkwell
