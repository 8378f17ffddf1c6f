// The process-wide state of libvips, and what every call into it needs around it.
#pragma once

#include "platform/image/TimeLimit.h"

#include <vips/vips8>

namespace murkwell {

// Starts libvips at the first one; keeps it quiet about bad input, without its operation cache, and
// with no loader in reach that is not hardened against hostile files. At the end of its life the
// memory that libvips holds for the calling thread is given back, and its error text forgotten.
// The constructor throws vips::VError when libvips cannot be started.
class VipsSession {
public:
    VipsSession();
    ~VipsSession();
    VipsSession(const VipsSession&) = delete;
    VipsSession& operator=(const VipsSession&) = delete;
    VipsSession(VipsSession&&) = delete;
    VipsSession& operator=(VipsSession&&) = delete;
};

// Stops the computation of an image, and of all that is made from it later, when time runs out.
// Must outlive the computation.
class VipsDeadline {
public:
    VipsDeadline(vips::VImage& watched, const TimeLimit& limit);
    ~VipsDeadline();
    VipsDeadline(const VipsDeadline&) = delete;
    VipsDeadline& operator=(const VipsDeadline&) = delete;
    VipsDeadline(VipsDeadline&&) = delete;
    VipsDeadline& operator=(VipsDeadline&&) = delete;

private:
    static void check(VipsImage* image, VipsProgress* progress, void* deadline);

    vips::VImage image;
    TimeLimit limit;
    gulong connection;
};

} // namespace murkwell
