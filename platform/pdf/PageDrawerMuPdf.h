// PageDrawer on MuPDF.
#pragma once

#include "platform/pdf/MuPdf.h"
#include "platform/pdf/PageDrawer.h"

namespace murkwell {

// The bytes and the memory outlive the drawer.
[[nodiscard]] OpenedDrawer openDrawerMuPdf(std::span<const std::byte> pdf,
                                           const std::optional<std::string>& password,
                                           const PageLimits& limits, FileReading reading,
                                           MuPdfMemory& memory);

} // namespace murkwell
