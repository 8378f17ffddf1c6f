// The whole road from a source to an export, again and again, with the n-th call of any library or
// desktop service failing: whatever fails, the user's work is there and can be finished.
#include "model/RedactModel.h"

#include "tests/support/ModelUnderTest.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

// Counts the calls of all services together.
struct Plan {
    int failing;
    int calls = 0;

    bool failsNow() { return calls++ == failing; }
    [[nodiscard]] bool wasReached() const { return calls > failing; }
};

class FailingRenderer final : public PdfRenderer {
public:
    FailingRenderer(Plan& shared, PdfRenderer& real) : plan(shared), inner(real) {}
    Result render(std::span<const std::byte> pdf,
                  const std::optional<std::string>& password) override {
        return plan.failsNow() ? LoadFailure::unreadable : inner.render(pdf, password);
    }

private:
    Plan& plan;
    PdfRenderer& inner;
};

class FailingWriter final : public PdfWriter {
public:
    FailingWriter(Plan& shared, PdfWriter& real) : plan(shared), inner(real) {}
    std::optional<std::vector<std::byte>> encode(std::size_t pageCount,
                                                 const PageSource& pageAt) override {
        return plan.failsNow() ? std::nullopt : inner.encode(pageCount, pageAt);
    }

private:
    Plan& plan;
    PdfWriter& inner;
};

class FailingCodec final : public ImageCodec {
public:
    FailingCodec(Plan& shared, ImageCodec& real) : plan(shared), inner(real) {}
    std::optional<DecodedImage> decode(std::span<const std::byte> file) override {
        return plan.failsNow() ? std::nullopt : inner.decode(file);
    }
    std::vector<std::string> encodableTypes() const override {
        return plan.failsNow() ? std::vector<std::string>{} : inner.encodableTypes();
    }
    std::optional<std::vector<std::byte>> encode(const Bitmap& picture, const ContentType& type,
                                                 std::optional<double> quality) override {
        return plan.failsNow() ? std::nullopt : inner.encode(picture, type, quality);
    }

private:
    Plan& plan;
    ImageCodec& inner;
};

class FailingRecognition final : public TextRecognizer, public FaceDetector {
public:
    explicit FailingRecognition(Plan& shared) : plan(shared) {}
    RecognizedText recognize(const Bitmap&) override {
        return plan.failsNow() ? RecognizedText{{}, Outcome::failed}
                               : RecognizedText{{asciiLine("mail a@bc.de now")}, Outcome::whole};
    }
    Readiness readiness() override { return {}; }
    std::optional<std::vector<RecognizerRect>> detectFaces(const Bitmap&) override {
        return plan.failsNow() ? std::nullopt
                               : std::optional(std::vector<RecognizerRect>{{0.4, 0.8, 0.1, 0.1}});
    }

private:
    Plan& plan;
};

// A panel fails by being cancelled.
class FailingPanels final : public Panels {
public:
    FailingPanels(Plan& shared, Panels& real) : plan(shared), inner(real) {}
    std::vector<fs::path> run(const OpenPanel& panel) override {
        return plan.failsNow() ? std::vector<fs::path>{} : inner.run(panel);
    }
    std::optional<Destination> run(const SavePanel& panel) override {
        return plan.failsNow() ? std::nullopt : inner.run(panel);
    }
    std::size_t run(const Alert& alert) override {
        return plan.failsNow() ? alert.buttons.size() - 1 : inner.run(alert);
    }
    std::optional<Secret> run(const PasswordPanel& panel) override {
        return plan.failsNow() ? std::nullopt : inner.run(panel);
    }

private:
    Plan& plan;
    Panels& inner;
};

class FailingPreferences final : public Preferences {
public:
    explicit FailingPreferences(Plan& shared) : plan(shared) {}
    bool boolean(std::string_view) const override { return !plan.failsNow() && stored; }
    void setBoolean(std::string_view, bool value) override {
        if (!plan.failsNow()) {
            stored = value;
        }
    }

private:
    Plan& plan;
    bool stored = false;
};

class Road {
public:
    explicit Road(int failing) : plan{failing} { bench.preferences.isReadOnly = true; }

    // Each step is tried again until it is done: a failure is one call, so twice is enough.
    void walk(const std::string& source) {
        const fs::path file = bench.folder.write(source, "the source");
        repeat([&] { model.open({file}); }, [&] { return model.document().has_value(); });
        const Uuid drawn = model.addRedaction({0.1, 0.1, 0.3, 0.3}).value();
        model.applyToAllPages = true;
        const std::size_t pages = model.redactionsByPage().size();
        repeat(
            [&] {
                model.autoDetect();
                bench.executor.runAll();
            },
            [&] { return model.totalRedactionCount() == 1 + 2 * pages; });
        EXPECT_EQ(model.currentRedactions().front().id, drawn);
        const auto lists = model.redactionsByPage().toVector();

        const fs::path saved = bench.folder / "work.murkwell";
        bench.panels.saved = saved;
        repeat([&] { model.saveSession(); }, [&] { return !model.isDirty(); });
        bench.panels.saved = bench.folder / "out";
        repeat([&] { model.exportDocument(); }, [&] { return model.lastExportURL().has_value(); });
        EXPECT_EQ(model.redactionsByPage().toVector(), lists);
        EXPECT_TRUE(fs::exists(bench.folder / "out"));

        model.updateRedaction(drawn, {0.2, 0.2, 0.3, 0.3});
        model.undo(); // so that a reopening can be told from the work before
        bench.panels.opened = {saved};
        repeat([&] { model.openPanel(); }, [&] { return !model.canRedo(); });
        EXPECT_EQ(model.totalRedactionCount(), 1 + 2 * pages);
    }

    Plan plan;

private:
    template <typename Step, typename Done>
    void repeat(Step step, Done done) {
        for (int attempt = 0; attempt < 2; ++attempt) {
            const bool hadDocument = model.document().has_value();
            const std::size_t boxes = model.totalRedactionCount();
            step();
            if (done()) {
                return;
            }
            EXPECT_EQ(model.document().has_value(), hadDocument);
            EXPECT_GE(model.totalRedactionCount(), boxes);
        }
        ADD_FAILURE() << "still not done, failing call " << plan.failing;
    }

    ModelUnderTest bench{2};
    FailingRenderer renderer{plan, bench.engines.renderer};
    FailingWriter writer{plan, bench.engines.writer};
    FailingCodec codec{plan, bench.engines.codec};
    FailingRecognition recognition{plan};
    FailingPanels panels{plan, bench.panels};
    FailingPreferences preferences{plan};
    RedactModel model{{bench.executor,
                       panels,
                       preferences,
                       bench.fileManager,
                       {renderer, writer, codec, bench.engines.random},
                       {recognition, recognition, bench.engines.random}}};
};

TEST(FailingServices, NoFailingCallLosesWork) {
    for (const char* source : {"scan.pdf", "photo.png"}) {
        int failing = 0;
        for (bool reached = true; reached; ++failing) {
            Road road(failing);
            road.walk(source);
            reached = road.plan.wasReached();
        }
        EXPECT_GT(failing, 8) << source;
    }
}

} // namespace
} // namespace murkwell
