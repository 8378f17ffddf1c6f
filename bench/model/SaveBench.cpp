// What saving and reopening work with a 500 MB source costs, in time and in memory, against writing
// and reading the same bytes.
#include "bench/Measure.h"
#include "bench/model/Workbench.h"
#include "io/FileAccess.h"

#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace murkwell;

constexpr std::size_t sourceSize = std::size_t{500} << 20;
constexpr int turns = 5;

struct PlainCopy {
    std::filesystem::path file;
    std::size_t size;

    // Written and made safe, as a saved file is.
    void write(std::span<const std::byte> bytes) const {
        const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        for (std::size_t done = 0; done < bytes.size();) {
            done += static_cast<std::size_t>(std::max<ssize_t>(
                ::write(descriptor, bytes.data() + done, bytes.size() - done), 0));
        }
        ::fsync(descriptor);
        ::close(descriptor);
    }

    void read() const {
        const auto bytes = std::make_unique_for_overwrite<std::byte[]>(size);
        const int descriptor = ::open(file.c_str(), O_RDONLY);
        for (std::size_t done = 0; done < size;) {
            done += static_cast<std::size_t>(
                std::max<ssize_t>(::read(descriptor, bytes.get() + done, size - done), 0));
        }
        ::close(descriptor);
        bench::keep(*bytes.get());
    }
};

void addBoxes(RedactModel& model) {
    for (int page = 0; page < 20; ++page) {
        model.goToPage(page);
        for (int i = 0; i < 50; ++i) {
            (void)model.addRedaction({0.01 * i, 0.2, 0.1, 0.1});
        }
    }
}

// In MB, as the kernel counts them in /proc/self/status; "VmHWM" is the most since it was reset.
double memory(const std::string& field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field + ":")) {
            return std::stod(line.substr(field.size() + 1)) * 1024 / 1e6;
        }
    }
    return 0;
}

void resetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

// In a process of its own, so that nothing from before counts.
template <typename Work>
void inChild(Work work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        std::fflush(stdout);
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
}

void printPeak(const char* what, double peak) {
    const double fileSize = static_cast<double>(sourceSize) / 1e6;
    bench::printRatio(what, peak - fileSize, 32);
}

} // namespace

int main() {
    inChild([] {
        bench::Workbench bench(20, sourceSize);
        addBoxes(bench.model);
        const PlainCopy plain{bench.folder / "plain", sourceSize};
        const auto source = readFile(bench.folder / "scan.pdf");
        const auto write = bench::takeTurns(
            turns, [&] { bench.model.saveSession(); }, [&] { plain.write(source->bytes()); });
        bench::printRatio("saving 500 MB : writing the same bytes",
                          write.measured / write.reference, 2);
        const auto read = bench::takeTurns(
            turns,
            [&] {
                bench.model.closeDocument();
                bench.model.open({bench.desktop.saved});
            },
            [&] { plain.read(); });
        bench::printRatio("reopening 500 MB : reading the same bytes",
                          read.measured / read.reference, 2);
    });
    bench::Workbench files(20, sourceSize);
    addBoxes(files.model);
    files.model.saveSession();
    files.model.closeDocument();
    inChild([&] {
        ::malloc_trim(0);
        resetPeak();
        const double before = memory("VmHWM");
        files.model.open({files.desktop.saved});
        printPeak("peak memory of reopening beyond the file, MB", memory("VmHWM") - before);
        resetPeak();
        files.model.saveSession();
        printPeak("peak memory of saving beyond the file, MB", memory("VmHWM") - before);
    });
}
