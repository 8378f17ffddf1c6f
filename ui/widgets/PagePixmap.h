// A page as the screen wants it.
#pragma once

#include "core/Bitmap.h"

#include <QImage>
#include <QPixmap>
#include <QSize>

namespace murkwell {

// Looks at the bitmap's own pixels, which have to outlive the image.
[[nodiscard]] QImage viewOf(const Bitmap& page);

// The page stretched to so many device pixels.
[[nodiscard]] QPixmap scaledPage(const Bitmap& page, const QSize& size);

// The page on white, as large as fits into the frame, in device pixels. Samples a large page
// instead of reading all of it.
[[nodiscard]] QPixmap thumbnail(const Bitmap& page, const QSize& frame);

} // namespace murkwell
