#include "platform/image/VipsSession.h"

#include "core/ParallelFor.h"

#include <gmodule.h>

namespace murkwell {
namespace {

void drop(const char* /*domain*/, GLogLevelFlags /*level*/, const char* /*text*/, void* /*data*/) {}

// libvips loads every module that lies in its folder: parsers of PDFs, of slides, of a hundred more
// formats. Of them all we want one, so it is sent elsewhere to look for them.
bool startWithoutModules() {
    constexpr gboolean overwrite = TRUE;
    g_setenv("VIPSHOME", "/nonexistent", overwrite);
    return vips_init("murkwell") == 0;
}

// Absent where HEIF is built in, and where it cannot be read.
void loadHeifModule() {
    g_module_open(MURKWELL_VIPS_MODULES "/vips-heif.so", G_MODULE_BIND_LAZY);
}

bool start() {
    g_log_set_handler("VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK), drop, nullptr);
    if (!startWithoutModules()) {
        return false;
    }
    loadHeifModule();
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
