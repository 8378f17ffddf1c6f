#include "cli/EachSource.h"

#include "cli/Output.h"

namespace murkwell::cli {

bool forEachSource(const std::vector<std::filesystem::path>& sources,
                   const std::function<Failure(const std::filesystem::path&)>& work) {
    Progress progress(sources.size());
    bool allDone = true;
    for (const auto& source : sources) {
        if (!resultsAreRead()) {
            break; // which the source before has reported
        }
        progress.begin(source);
        if (const Failure failure = work(source)) {
            printFailure(*failure);
            allDone = false;
        }
    }
    return allDone;
}

} // namespace murkwell::cli
