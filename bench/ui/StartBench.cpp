// How long the program takes from its start to its first paint, against a window of Qt's that is
// empty and of the same size. Needs a display; starts itself again for every turn:
//
//   StartBench
#include "app/MurkwellApp.h"
#include "bench/Measure.h"
#include "core/Localization.h"

#include <QApplication>
#include <QMainWindow>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace {

using namespace murkwell;

double now() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Ends the process once a window has been painted, and reports when.
class FirstPaint final : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        // The window's own comes first; all that is in it is painted before the loop goes on.
        const auto* const widget = qobject_cast<const QWidget*>(watched);
        if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow()) {
            QTimer::singleShot(0, qApp, [] {
                std::printf("%.6f\n", now());
                std::fflush(stdout);
                std::_Exit(0);
            });
        }
        return false;
    }
};

int show(bool isEmpty, int argc, char** argv) {
    QApplication application(argc, argv);
    FirstPaint firstPaint;
    QMainWindow empty;
    application.installEventFilter(&firstPaint);
    if (isEmpty) {
        empty.resize(960, 660);
        empty.show();
        return QApplication::exec();
    }
    useCatalogue(findCatalogue(catalogueFolder(), userLanguages()));
    MurkwellApp app;
    app.open({}, ActivationToken::fromEnvironment());
    return QApplication::exec();
}

// Seconds from before the start of the process to its first paint.
double timeToPaint(const char* program, const char* mode) {
    int ends[2];
    if (::pipe(ends) != 0) {
        std::abort();
    }
    const double start = now();
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::execl(program, program, mode, nullptr);
        std::_Exit(1);
    }
    ::close(ends[1]);
    char text[64] = {};
    const ssize_t length = ::read(ends[0], text, sizeof text - 1);
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (length <= 0 || status != 0) {
        std::fprintf(stderr, "no window came up\n");
        std::exit(1);
    }
    return std::atof(text) - start;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2) {
        return show(std::strcmp(argv[1], "--empty") == 0, argc, argv);
    }
    const char* const program = "/proc/self/exe";
    bench::Pair best;
    for (int turn = 0; turn < 15; ++turn) {
        best.reference = std::min(best.reference, timeToPaint(program, "--empty"));
        best.measured = std::min(best.measured, timeToPaint(program, "--window"));
    }
    std::printf("first paint of an empty window %.0f ms, of ours %.0f ms\n", best.reference * 1000,
                best.measured * 1000);
    bench::printRatio("first paint : 1.3 x an empty window's and 60 ms",
                      best.measured / (1.3 * best.reference + 0.06), 1);
    return 0;
}
