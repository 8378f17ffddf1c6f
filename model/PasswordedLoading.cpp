#include "model/PasswordedLoading.h"

#include "io/FileName.h"

namespace murkwell {

DocumentIO::LoadResult loadWithPassword(const std::filesystem::path& file, Panels& panels,
                                        const LoadWith& load) {
    auto result = load(std::nullopt);
    PasswordPanel panel{shownName(file)};
    while (needsPassword(result)) {
        const auto password = panels.run(panel);
        if (!password) {
            break;
        }
        result = load(password->asPassword());
        panel.wasWrong = true;
    }
    return result;
}

bool needsPassword(const DocumentIO::LoadResult& result) {
    const auto* const failure = std::get_if<LoadFailure>(&result);
    return failure != nullptr && *failure == LoadFailure::needsPassword;
}

} // namespace murkwell
