#include "platform/confinement/WorkerProcess.h"

#include <algorithm>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace murkwell {
namespace {

using namespace std::chrono_literals;
using Kind = Message::Kind;

std::unique_ptr<WorkerProcess> startProbe() {
    auto worker = WorkerProcess::start(MURKWELL_PROBE_WORKER, {"image", "root", "walls"});
    if (worker) {
        worker->allow(20s);
    }
    return worker;
}

std::optional<Message> ask(WorkerProcess& worker, Kind kind) {
    Message request;
    request.kind = kind;
    return worker.send(request) ? worker.answer() : std::nullopt;
}

// Within the frame, and beyond it: what is handed over.
TEST(WorkerProcess, WhatIsSentComesBack) {
    const auto worker = startProbe();
    ASSERT_TRUE(worker);
    std::uint8_t mark = 0;
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{3, 2}, {4096, 4097}, {612, 792}}) {
        const auto sent = Bitmap::create(width, height);
        ASSERT_TRUE(sent);
        std::ranges::fill(sent->pixels(), Rgba{++mark, 2, 3, 255});
        sent->pixels().back() = {0, 0, 0, mark};
        ASSERT_TRUE(worker->sendPicture(*sent));
        const auto decoded = ask(*worker, Kind::decode);
        ASSERT_TRUE(decoded);
        const auto bitmap = worker->takeBitmap(*decoded);
        ASSERT_TRUE(bitmap);
        EXPECT_TRUE(std::ranges::equal(bitmap->pixels(), sent->pixels())) << width;

        const auto bytes = std::as_bytes(sent->pixels());
        const auto file = SharedMemory::sealedCopy(bytes);
        ASSERT_TRUE(file && worker->sendSource(*file));
        const auto encoded = ask(*worker, Kind::encode);
        ASSERT_TRUE(encoded);
        const auto back = worker->takeBytes(*encoded);
        ASSERT_TRUE(back);
        EXPECT_TRUE(std::ranges::equal(*back, bytes)) << width;
    }
}

TEST(WorkerProcess, SeesNothingOfItsSurroundings) {
    ::setenv("MURKWELL_MODELS", "/nowhere", 1);
    ::setenv("SECRET", "4711", 1);
    const Descriptor open(::open("/dev/null", O_RDONLY)); // and not closed by exec
    const auto worker = startProbe();
    const auto answer = worker ? ask(*worker, Kind::isUsable) : std::nullopt;
    ASSERT_TRUE(answer);
    const auto bytes = worker->takeBytes(*answer).value();
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    EXPECT_THAT(text, testing::HasSubstr("MURKWELL_MODELS "));
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("SECRET")));
    EXPECT_THAT(text, testing::EndsWith(" 0 1 2 3 "));
}

TEST(WorkerProcess, TellsACrashFromWantOfMemoryAndFromBeingKilled) {
    struct Case {
        Kind request;
        bool isKilled;
        bool hasCrashed;
    };
    for (const auto& [request, isKilled, hasCrashed] :
         {Case{Kind::findFaces, false, true}, Case{Kind::readText, false, false},
          Case{Kind::open, true, false}}) {
        const auto worker = startProbe();
        ASSERT_TRUE(worker);
        std::jthread killer;
        if (isKilled) {
            killer = std::jthread([&] {
                std::this_thread::sleep_for(50ms);
                worker->interrupt();
            });
        }
        EXPECT_FALSE(ask(*worker, request));
        EXPECT_EQ(worker->hasCrashed(), hasCrashed) << static_cast<int>(request);
    }
}

TEST(WorkerProcess, OneThatWorksForTooLongHasFailed) {
    const auto worker = startProbe();
    ASSERT_TRUE(worker && ask(*worker, Kind::isUsable));
    worker->allow(100ms);
    EXPECT_FALSE(ask(*worker, Kind::open));
    EXPECT_TRUE(worker->isLate());
    EXPECT_FALSE(worker->hasCrashed());
}

TEST(WorkerProcess, NoneWithoutTheProgram) {
    EXPECT_FALSE(WorkerProcess::start("/nowhere/murkwell-pdf"));
}

} // namespace
} // namespace murkwell
