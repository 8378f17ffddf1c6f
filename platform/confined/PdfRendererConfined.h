// PdfRenderer by workers: one for each thread, which draws page after page. One that dies or takes
// too long is replaced, and what becomes of its page is PageSchedule's matter.
#pragma once

#include "core/ParallelFor.h"
#include "io/PdfRenderer.h"
#include "platform/confined/Workers.h"

namespace murkwell {

class PdfRendererConfined final : public PdfRenderer {
public:
    explicit PdfRendererConfined(Workers& used, std::size_t threads = availableProcessors())
        : workers(used), threadCount(threads) {}

    [[nodiscard]] Result render(std::span<const std::byte> pdf,
                                const std::optional<std::string>& password) override;

private:
    Workers& workers;
    std::size_t threadCount;
};

} // namespace murkwell
