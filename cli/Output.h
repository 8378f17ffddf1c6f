// What the program says: results as JSON lines on standard output, trouble and progress on standard
// error.
#pragma once

#include "io/DocumentIO.h"

#include <cstddef>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace murkwell::cli {

// Keys keep their order. Bytes of a file name that are no UTF-8 come out as U+FFFD. A message when
// the line could not be written.
[[nodiscard]] std::optional<std::string> printJson(const nlohmann::ordered_json& line);

// Whether results still reach somebody. Once they do not, they never will.
[[nodiscard]] bool resultsAreRead();

// In one line, whatever the message holds.
void printFailure(std::string_view message);

// On standard error, each with the file's name.
void printRemarks(const std::filesystem::path& file, const DocumentIO::Document& document);

// Messages that the model does not have, in the user's language.
[[nodiscard]] std::string noPasswordIn(const std::filesystem::path& file);
[[nodiscard]] std::string alreadyThere(const std::filesystem::path& file);
[[nodiscard]] std::string wouldBeLost(const std::filesystem::path& target);
[[nodiscard]] std::string boxTooSmall(const std::filesystem::path& file);
[[nodiscard]] std::string ofFile(const std::filesystem::path& file, std::string_view message);
// The same where the message does not name it already.
[[nodiscard]] std::string namingFile(const std::filesystem::path& file, const std::string& message);
[[nodiscard]] std::string noKindToWrite(const std::filesystem::path& file);
[[nodiscard]] std::string noSuchPage(const std::filesystem::path& file, int page,
                                     std::size_t pageCount);

// Takes the progress off the terminal, for something else to be written there.
void clearProgress();

// "[2/5] scan.pdf" on standard error while several files are worked on, where somebody watches.
class Progress {
public:
    explicit Progress(std::size_t fileCount);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void begin(const std::filesystem::path& file);

private:
    std::size_t count;
    std::size_t begun = 0;
    bool watched;
};

} // namespace murkwell::cli
