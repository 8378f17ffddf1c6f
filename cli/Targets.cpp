#include "cli/Targets.h"

#include "cli/Output.h"
#include "io/DocumentIO.h"
#include "io/FileName.h"
#include "io/MurkwellDocument.h"

#include <compare>
#include <set>
#include <sys/stat.h>

namespace murkwell::cli {
namespace {

using std::filesystem::path;

// A file however it is spelled and through whatever links; one that is not there yet by its name in
// its folder.
struct FileIdentity {
    dev_t device;
    ino_t number;
    std::string nameInside; // empty when the number is the file's own

    auto operator<=>(const FileIdentity&) const = default;
};

// None for what cannot be written anyway: there is no such folder.
std::optional<FileIdentity> identityOf(const path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0) {
        return FileIdentity{status.st_dev, status.st_ino, {}};
    }
    const path folder = file.has_parent_path() ? file.parent_path() : path(".");
    if (::stat(folder.c_str(), &status) == 0) {
        return FileIdentity{status.st_dev, status.st_ino, file.filename().string()};
    }
    return std::nullopt;
}

bool isSavedDocument(const path& file) {
    return ContentType::fromExtension(pathExtension(file)) == ContentType::session;
}

// Going on with saved work in its own place, as the window does, loses nothing.
bool isSavedAgain(const path& source, const std::optional<path>& savedDocument) {
    return savedDocument && isSavedDocument(source) &&
           identityOf(source) == identityOf(*savedDocument);
}

// Beside a saved document, the name of the source in it counts.
std::optional<path> proposedTarget(const path& source) {
    if (!isSavedDocument(source)) {
        return DocumentIO::defaultOutputURL(source);
    }
    const auto file = readFile(source);
    const auto saved = file ? decode(*file) : std::nullopt;
    return saved ? DocumentIO::defaultOutputURL(nominalURL(*saved, source)) : std::nullopt;
}

std::optional<path> exportOf(const path& source, const RedactArguments& arguments) {
    if (!arguments.exports() || arguments.output) {
        return arguments.output;
    }
    const auto proposed = proposedTarget(source);
    return proposed && arguments.outputFolder ? *arguments.outputFolder / proposed->filename()
                                              : proposed;
}

} // namespace

std::vector<Targets> targetsOf(const RedactArguments& arguments) {
    std::vector<Targets> targets;
    for (const path& source : arguments.sources) {
        targets.push_back({arguments.savedDocument, exportOf(source, arguments)});
    }
    return targets;
}

std::vector<std::string> clashes(const std::vector<path>& sources,
                                 const std::vector<Targets>& targets) {
    std::set<FileIdentity> taken;
    for (const path& source : sources) {
        if (auto identity = identityOf(source)) {
            taken.insert(std::move(*identity));
        }
    }
    std::vector<std::string> messages;
    const auto take = [&](const std::optional<path>& target) {
        auto identity = target ? identityOf(*target) : std::nullopt;
        if (identity && !taken.insert(std::move(*identity)).second) {
            messages.push_back(wouldBeLost(*target));
        }
    };
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (!isSavedAgain(sources[i], targets[i].savedDocument)) {
            take(targets[i].savedDocument);
        }
        take(targets[i].exported);
    }
    return messages;
}

} // namespace murkwell::cli
