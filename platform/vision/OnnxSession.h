// A neural network, run on the processor by ONNX Runtime.
//
// The library is loaded at the first session and serves the whole process. Without it, with a
// version too old, or with a damaged model there is no session.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace murkwell {

struct Tensor {
    std::vector<std::int64_t> shape; // the last dimension varies fastest
    std::vector<float> values;       // as many as the shape says
};

class OnnxSession {
public:
    // What the library is called, for those who lack it.
    static constexpr const char* libraryName = "ONNX Runtime";

    virtual ~OnnxSession() = default;

    // Whether the library is there and can be used. Loads it.
    [[nodiscard]] static bool hasLibrary();

    // Null when the model cannot be loaded or does not have one input and that many outputs. Each
    // run is spread over that many threads.
    [[nodiscard]] static std::unique_ptr<OnnxSession> load(const std::filesystem::path& model,
                                                           std::size_t outputs, int threads);

    // All outputs in the order of the model; none when the input does not fit or memory runs out.
    // May be called from several threads at once.
    [[nodiscard]] virtual std::optional<std::vector<Tensor>> run(const Tensor& input) = 0;
};

} // namespace murkwell
