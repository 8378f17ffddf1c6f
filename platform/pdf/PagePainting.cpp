// The device's side of PageProcessor: MuPDF shuts a device for good when one of its functions
// fails, so those that paint are called through functions of ours that skip the failure.

#include "platform/pdf/PageProcessor.h"

namespace murkwell {

struct PagePainting {
    template <auto Function>
    struct Guarded;

    template <typename... Arguments,
              void (*fz_device::*Function)(fz_context*, fz_device*, Arguments...)>
    struct Guarded<Function> {
        static void call(fz_context* context, fz_device* device, Arguments... arguments) {
            PageProcessor& self = PageProcessor::of(context);
            self.skipFailed([&] { (self.painter.*Function)(context, device, arguments...); });
        }
    };

    template <auto... Functions>
    static void guard(fz_device* device) {
        ((device->*Functions = &Guarded<Functions>::call), ...);
    }
};

void PageProcessor::guardPainting(fz_device* device) {
    if (guarded == device) {
        return;
    }
    guarded = device;
    painter = *device;
    using D = fz_device;
    PagePainting::guard<&D::fill_path, &D::stroke_path, &D::fill_text, &D::stroke_text,
                        &D::fill_shade, &D::fill_image, &D::fill_image_mask>(device);
}

} // namespace murkwell
