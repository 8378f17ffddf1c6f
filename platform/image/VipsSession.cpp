#include "platform/image/VipsSession.h"

#include "core/ParallelFor.h"

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

VipsDeadline::VipsDeadline(vips::VImage& watched, const TimeLimit& timeLimit)
    : image(watched), limit(timeLimit),
      connection(g_signal_connect(image.get_image(), "eval", G_CALLBACK(check), this)) {
    vips_image_set_progress(image.get_image(), TRUE);
}

VipsDeadline::~VipsDeadline() {
    g_signal_handler_disconnect(image.get_image(), connection);
}

void VipsDeadline::check(VipsImage* image, VipsProgress* /*progress*/, void* deadline) {
    if (static_cast<const VipsDeadline*>(deadline)->limit.isOver()) {
        vips_image_set_kill(image, TRUE);
    }
}

} // namespace murkwell
