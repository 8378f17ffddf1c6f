// The process-wide state of libvips, and what every call into it needs around it.
#pragma once

#include <chrono>
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

// Stops the computation of an image, and of all that is made from it later, when time runs out:
// when it has taken so long and this process has used as much of the processors. A picture is thus
// not lost to other programs that keep the machine busy, nor to other work of this one. Must
// outlive the computation.
class VipsDeadline {
public:
    using Duration = std::chrono::nanoseconds;

    VipsDeadline(vips::VImage& watched, Duration allowed);
    ~VipsDeadline();
    VipsDeadline(const VipsDeadline&) = delete;
    VipsDeadline& operator=(const VipsDeadline&) = delete;
    VipsDeadline(VipsDeadline&&) = delete;
    VipsDeadline& operator=(VipsDeadline&&) = delete;

private:
    static Duration processorTime();
    static void check(VipsImage* image, VipsProgress* progress, void* deadline);

    vips::VImage image;
    std::chrono::steady_clock::time_point end;
    Duration processorTimeAtEnd;
    gulong connection;
};

} // namespace murkwell
