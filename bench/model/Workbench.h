// A model without engines: any source loads as so many small pages.
#pragma once

#include "bench/Measure.h"
#include "core/RandomSource.h"
#include "model/RedactModel.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdlib.h>

namespace murkwell::bench {

class Pages final : public PdfRenderer {
public:
    explicit Pages(std::size_t wanted) : count(wanted) {}
    Result render(std::span<const std::byte> /*pdf*/,
                  const std::optional<std::string>& /*password*/) override {
        return std::vector<RenderedPage>(count, {PackedBitmap::pack(Bitmap::create(8, 8))});
    }

private:
    std::size_t count;
};

class NoEngines final : public PdfWriter,
                        public ImageCodec,
                        public TextRecognizer,
                        public FaceDetector {
public:
    std::optional<std::vector<std::byte>> encode(std::size_t, const PageSource&) override {
        return {};
    }
    std::optional<DecodedImage> decode(std::span<const std::byte>) override { return {}; }
    std::vector<std::string> encodableTypes() const override { return {}; }
    std::optional<std::vector<std::byte>> encode(const Bitmap&, const ContentType&,
                                                 std::optional<double>) override {
        return {};
    }
    RecognizedText recognize(const Bitmap&) override { return {}; }
    Readiness readiness() override { return {}; }
    std::optional<std::vector<RecognizerRect>> detectFaces(const Bitmap&) override { return {}; }
};

class NoDesktop final : public Executor, public Panels, public Preferences, public FileManager {
public:
    bool background(std::function<void()>) override { return true; }
    void onMain(std::function<void()>) override {}
    std::vector<std::filesystem::path> run(const OpenPanel&) override { return {}; }
    std::optional<Secret> run(const PasswordPanel&) override { return std::nullopt; }
    std::optional<Destination> run(const SavePanel&) override { return saved; }
    std::size_t run(const Alert&) override { return 0; }
    bool boolean(std::string_view) const override { return true; }
    void setBoolean(std::string_view, bool) override {}
    void reveal(const std::filesystem::path&) override {}

    std::filesystem::path saved;
};

class Workbench {
public:
    // The source is as many bytes long as given; the folder goes with this object.
    explicit Workbench(std::size_t pageCount, std::size_t sourceSize = 1000) : pages(pageCount) {
        std::string name = (std::filesystem::temp_directory_path() / "murkwell-XXXXXX").string();
        folder = ::mkdtemp(name.data());
        writeSource(sourceSize);
        desktop.saved = folder / "work.murkwell";
        model.open({folder / "scan.pdf"});
    }
    ~Workbench() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    void saveAndReopen() {
        model.saveSession();
        model.open({desktop.saved});
    }

    std::filesystem::path folder;
    Pages pages;
    NoEngines engines;
    NoDesktop desktop;
    SystemRandomSource random;
    RedactModel model{{desktop,
                       desktop,
                       desktop,
                       desktop,
                       {pages, engines, engines, random},
                       {engines, engines, random}}};

private:
    void writeSource(std::size_t size) const {
        std::ofstream stream(folder / "scan.pdf", std::ios::binary);
        std::vector<char> block(1 << 20);
        for (std::size_t i = 0; i < block.size(); ++i) {
            block[i] = static_cast<char>(i * 2654435761U >> 11);
        }
        for (std::size_t left = size; left > 0;) {
            const std::size_t now = std::min(left, block.size());
            stream.write(block.data(), static_cast<std::streamsize>(now));
            left -= now;
        }
    }
};

} // namespace murkwell::bench
