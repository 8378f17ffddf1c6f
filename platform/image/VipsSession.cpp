#include "platform/image/VipsSession.h"

#include "core/ParallelFor.h"

#include <time.h>

namespace murkwell {
namespace {

void drop(const char* /*domain*/, GLogLevelFlags /*level*/, const char* /*text*/, void* /*data*/) {}

bool start() {
    g_log_set_handler("VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK), drop, nullptr);
    if (vips_init("murkwell") != 0) {
        return false;
    }
    vips_cache_set_max(0);
    vips_concurrency_set(static_cast<int>(availableProcessors()));
    vips_block_untrusted_set(TRUE);
    return true;
}

} // namespace

VipsSession::VipsSession() {
    static const bool started = start();
    if (!started) {
        throw vips::VError("libvips did not start");
    }
}

VipsSession::~VipsSession() {
    vips_error_clear();
    vips_thread_shutdown();
}

VipsDeadline::VipsDeadline(vips::VImage& watched, Duration allowed)
    : image(watched), end(std::chrono::steady_clock::now() + allowed),
      processorTimeAtEnd(processorTime() + allowed),
      connection(g_signal_connect(image.get_image(), "eval", G_CALLBACK(check), this)) {
    vips_image_set_progress(image.get_image(), TRUE);
}

VipsDeadline::~VipsDeadline() {
    g_signal_handler_disconnect(image.get_image(), connection);
}

// Of all threads: those of libvips are not known one by one.
VipsDeadline::Duration VipsDeadline::processorTime() {
    timespec used{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return std::chrono::seconds(used.tv_sec) + Duration(used.tv_nsec);
}

void VipsDeadline::check(VipsImage* image, VipsProgress* /*progress*/, void* deadline) {
    const auto& self = *static_cast<const VipsDeadline*>(deadline);
    if (std::chrono::steady_clock::now() > self.end && processorTime() > self.processorTimeAtEnd) {
        vips_image_set_kill(image, TRUE);
    }
}

} // namespace murkwell
