#include "model/RedactModel.h"

#include "core/Localization.h"
#include "io/FileAccess.h"
#include "io/FileName.h"
#include "model/DocumentRemarks.h"
#include "model/PasswordedLoading.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view couldNotOpen = translatable("Couldn’t open “%@”.");
constexpr std::string_view couldNotWrite = translatable("Couldn’t write to “%@”.");

bool isSession(const fs::path& file) {
    const auto extension = DocumentIO::sessionType().preferredFilenameExtension();
    return lowerCased(pathExtension(file)) == extension;
}

bool isSource(const fs::path& file) {
    const auto type = ContentType::fromExtension(pathExtension(file));
    const auto conforms = [&](const ContentType& accepted) { return type->conformsTo(accepted); };
    return type &&
           (std::ranges::any_of(DocumentIO::imageTypes(), conforms) || conforms(ContentType::pdf));
}

bool isSameFile(const fs::path& a, const fs::path& b) {
    std::error_code ignored;
    return fs::equivalent(a, b, ignored);
}

std::vector<std::vector<StoredRedaction>> stored(const PageLists& lists) {
    std::vector<std::vector<StoredRedaction>> pages(lists.size());
    for (std::size_t i = 0; i < lists.size(); ++i) {
        for (const Redaction& redaction : lists[i]) {
            pages[i].push_back({redaction.rect, redaction.style, redaction.detected});
        }
    }
    return pages;
}

PageLists restored(const std::vector<std::vector<StoredRedaction>>& pages, RandomSource& random) {
    std::vector<PageLists::Page> lists(pages.size());
    for (std::size_t i = 0; i < pages.size(); ++i) {
        for (const StoredRedaction& redaction : pages[i]) {
            lists[i].push_back(
                {Uuid::random(random), redaction.rect, redaction.style, redaction.detected});
        }
    }
    return PageLists(std::move(lists));
}

} // namespace

void RedactModel::openFiles(const std::vector<fs::path>& files) {
    if (files.empty()) {
        return;
    }
    const auto session = std::ranges::find_if(files, isSession);
    if (session != files.end()) {
        openSaved(*session);
        return;
    }
    const auto source = std::ranges::find_if(files, isSource);
    if (source == files.end()) {
        errorMessage = localized("No supported file found. Drop an image or a PDF.");
        return;
    }
    openSource(*source);
}

// The file is read once: what is saved later is what was shown, whatever becomes of the file.
void RedactModel::openSource(const fs::path& url) {
    auto file = readFile(url);
    if (!file) {
        fail(couldNotOpen, url);
        return;
    }
    auto result = loadWithPassword(url, services.panels, [&](const auto& password) {
        return DocumentIO::load(file->bytes(), url, services.documents, password);
    });
    if (needsPassword(result)) {
        return; // the user gave up
    }
    auto* const loaded = std::get_if<DocumentIO::Document>(&result);
    if (loaded == nullptr) {
        fail(couldNotOpen, url);
        return;
    }
    const PageLists empty(loaded->pages.size());
    replaceWork({std::move(*loaded), empty, std::move(file), lastPathComponent(url), std::nullopt});
}

void RedactModel::askAndOpen() {
    const auto& images = DocumentIO::imageTypes();
    OpenPanel panel{{images.begin(), images.end()}};
    panel.allowedTypes.push_back(ContentType::pdf);
    panel.allowedTypes.push_back(DocumentIO::sessionType());
    openFiles(services.panels.run(panel));
}

void RedactModel::openSaved(const fs::path& url) {
    const auto file = readFile(url);
    auto saved = file ? decode(*file) : std::nullopt;
    if (!saved) {
        fail(couldNotOpen, url);
        return;
    }
    const fs::path nominal = nominalURL(*saved, url);
    auto result = loadWithPassword(url, services.panels, [&](const auto& password) {
        return DocumentIO::load(saved->sourceData.bytes(), nominal, services.documents, password);
    });
    if (needsPassword(result)) {
        return; // the user gave up
    }
    auto* const loaded = std::get_if<DocumentIO::Document>(&result);
    // Boxes whose pages are not there would come to lie on others and leave theirs bare.
    if (loaded == nullptr || loaded->pages.size() != saved->pages.size()) {
        fail(couldNotOpen, url);
        return;
    }
    PageLists lists = restored(saved->pages, services.documents.random);
    replaceWork({std::move(*loaded), std::move(lists), std::move(saved->sourceData),
                 std::move(saved->sourceFilename), url});
}

void RedactModel::replaceWork(Work work) {
    document = std::move(work.document);
    redactionsByPage = std::move(work.redactionsByPage);
    sourceData = std::move(work.sourceData);
    sourceFilename = std::move(work.sourceFilename);
    sessionURL = std::move(work.sessionURL);
    currentPage = 0;
    selectedID = std::nullopt;
    errorMessage = std::nullopt;
    statusMessage = std::nullopt;
    lastExportURL = std::nullopt;
    isDirty = false;
    undoStack.clear();
    redoStack.clear();
}

void RedactModel::askAndSave() {
    if (!document()) {
        return;
    }
    const SavePanel panel{DocumentIO::sessionType(), defaultSessionName(),
                          sessionURL().value_or(document()->url).parent_path()};
    if (const auto chosen = services.panels.run(panel)) {
        writeSession(*chosen);
    }
}

std::string RedactModel::defaultSessionName() const {
    std::string base = localized("Untitled");
    if (sourceFilename) {
        base = baseName(*sourceFilename);
    } else if (document()) {
        base = baseName(document()->url);
    }
    return base + "." + std::string(*DocumentIO::sessionType().preferredFilenameExtension());
}

void RedactModel::writeSession(const Destination& destination) {
    if (!sourceData || !sourceFilename) {
        errorMessage = localized("Nothing to save.");
        return;
    }
    const auto encoded = encode({MurkwellDocument::currentVersion, *sourceFilename, *sourceData,
                                 stored(redactionsByPage())});
    const fs::path& url = destination.location;
    const fs::path& contained = sessionURL() ? *sessionURL() : document()->url;
    if (isOpenSource(url) || !encoded ||
        !writeContainerAtomically(destination, contained, encoded->parts())) {
        turns.drop();
        fail(couldNotWrite, url);
        return;
    }
    sessionURL = url;
    isDirty = false;
    succeed(translatable("Saved %@"), url);
}

bool RedactModel::isOpenSession(const fs::path& file) const {
    return sessionURL() && isSameFile(file, *sessionURL());
}

// A saved document may have any source name, its own included.
bool RedactModel::isOpenSource(const fs::path& file) const {
    return !isOpenSession(file) && isSameFile(file, document()->url);
}

std::optional<std::string> RedactModel::obstacleToExport() const {
    if (!document()) {
        return localized("Nothing to export.");
    }
    if (totalRedactionCount() < 1) {
        return localized("Add at least one redaction first.");
    }
    return std::nullopt;
}

void RedactModel::askAndExport() {
    if (const auto obstacle = obstacleToExport()) {
        errorMessage = obstacle;
        return;
    }
    if (!confirmPDFFlattenIfNeeded()) {
        return;
    }
    const fs::path suggestion = DocumentIO::defaultOutputURL(*document());
    const SavePanel panel{document()->isPDF ? ContentType::pdf : document()->imageType,
                          lastPathComponent(suggestion), suggestion.parent_path()};
    const auto chosen = services.panels.run(panel);
    if (!chosen) {
        return;
    }
    // The boxes are those that are there now: a search may have ended, or an undo taken them away,
    // while a panel was up.
    if (const auto obstacle = obstacleToExport()) {
        errorMessage = obstacle;
        return;
    }
    const fs::path& url = chosen->location;
    if (isOpenSession(url) || !DocumentIO::write(*document(), redactionsByPage().toVector(),
                                                 *chosen, services.documents)) {
        turns.drop();
        fail(couldNotWrite, url);
        return;
    }
    lastExportURL = url;
    succeed(translatable("Redacted %@"), url);
    for (const std::string& remark : remarksOn(*document())) {
        statusMessage = *statusMessage() + " — " + remark;
    }
}

// The notice is shown once per user account, also when that one showing was cancelled.
bool RedactModel::confirmPDFFlattenIfNeeded() {
    if (!document()->isPDF || services.preferences.boolean(pdfFlattenNoticeKey)) {
        return true;
    }
    const Alert alert{
        localized("All text will be flattened"),
        localized("Exporting a PDF renders every page to an image. The content under your "
                  "redactions is destroyed for good — and the rest of the page’s text becomes "
                  "part of that image too, so it can no longer be selected, searched, or copied "
                  "in the exported file.\n\nYour original file is left untouched."),
        {localized("Export PDF"), localized("Cancel")}};
    const std::size_t pressed = services.panels.run(alert);
    services.preferences.setBoolean(pdfFlattenNoticeKey, true);
    return pressed == 0;
}

void RedactModel::revealLastExport() {
    if (lastExportURL()) {
        services.fileManager.reveal(*lastExportURL());
    }
}

void RedactModel::fail(std::string_view englishFormat, const fs::path& file) {
    errorMessage = localized(englishFormat, {shownName(file)});
}

void RedactModel::succeed(std::string_view englishFormat, const fs::path& file) {
    statusMessage = localized(englishFormat, {shownName(file)});
    errorMessage = std::nullopt;
}

} // namespace murkwell
