#include "platform/vision/OnnxSession.h"

#include "platform/vision/InstalledFiles.h"

#define ORT_API_MANUAL_INIT
#include <cstdlib>
#include <dlfcn.h>
#include <exception>
#include <onnxruntime_cxx_api.h>
#include <string>

namespace murkwell {
namespace {

// The library as its makers publish it counts what it is used for, in a database in the user's
// cache with an identifier of the device, and sends that home when it can. It asks the environment
// whether it may, once and while it is loaded. Set before main(), since the environment must not be
// changed any more once there are threads.
[[maybe_unused]] const int telemetryIsOff = ::setenv("ORT_DISABLE_TELEMETRY", "1", 1);

const OrtApi* loadApi() {
    using GetApiBase = const OrtApiBase* (*)();
    for (const auto& place : placesOfLibrary(MURKWELL_ONNXRUNTIME)) {
        // Never unloaded: its threads live as long as the process.
        void* const library = ::dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            continue;
        }
        const auto base = reinterpret_cast<GetApiBase>(::dlsym(library, "OrtGetApiBase"));
        const OrtApi* const api = base != nullptr ? base()->GetApi(ORT_API_VERSION) : nullptr;
        if (api != nullptr) {
            return api;
        }
    }
    return nullptr;
}

// The one environment of the process, null without the library. It outlives every session, so it
// is never given back.
Ort::Env* environment() {
    static Ort::Env* const shared = []() -> Ort::Env* {
        const OrtApi* const api = loadApi();
        if (api == nullptr) {
            return nullptr;
        }
        Ort::InitApi(api);
        auto* const made = new Ort::Env(ORT_LOGGING_LEVEL_FATAL, "murkwell");
        made->DisableTelemetryEvents();
        // One store of memory for all sessions, grown by what is asked for and not by doubling.
        constexpr int asRequested = 1;
        constexpr int byDefault = -1;
        const Ort::ArenaCfg growth(0, asRequested, byDefault, byDefault);
        made->CreateAndRegisterAllocator(
            Ort::MemoryInfo::CreateCpu(OrtArenaAllocator, OrtMemTypeDefault), growth);
        return made;
    }();
    return shared;
}

Ort::SessionOptions optionsFor(int threads) {
    Ort::SessionOptions options;
    options.SetIntraOpNumThreads(threads);
    options.SetInterOpNumThreads(1);
    // Waiting threads sleep: another reader may be at work on the same processors.
    options.AddConfigEntry("session.intra_op.allow_spinning", "0");
    options.AddConfigEntry("session.use_env_allocators", "1");
    // Pictures and lines come in every size, for which memory laid out ahead would be kept.
    options.DisableMemPattern();
    return options;
}

class LoadedSession final : public OnnxSession {
public:
    LoadedSession(Ort::Env& environment, const std::filesystem::path& model, int threads)
        : session(environment, model.c_str(), optionsFor(threads)) {
        Ort::AllocatorWithDefaultOptions allocator;
        for (std::size_t i = 0; i < session.GetInputCount(); ++i) {
            inputs.emplace_back(session.GetInputNameAllocated(i, allocator).get());
        }
        for (std::size_t i = 0; i < session.GetOutputCount(); ++i) {
            outputs.emplace_back(session.GetOutputNameAllocated(i, allocator).get());
        }
        for (const std::string& name : outputs) {
            outputNames.push_back(name.c_str());
        }
    }

    [[nodiscard]] bool fits(std::size_t outputCount) const {
        return inputs.size() == 1 && outputs.size() == outputCount;
    }

    std::optional<std::vector<Tensor>> run(const Tensor& input) override {
        try {
            const auto memory = Ort::MemoryInfo::CreateCpu(OrtDeviceAllocator, OrtMemTypeDefault);
            // The library takes a pointer to values that it may change, but leaves inputs alone.
            auto* const values = const_cast<float*>(input.values.data());
            const auto tensor = Ort::Value::CreateTensor<float>(
                memory, values, input.values.size(), input.shape.data(), input.shape.size());
            const char* const inputName = inputs.front().c_str();
            const auto results = session.Run(Ort::RunOptions(), &inputName, &tensor, 1,
                                             outputNames.data(), outputNames.size());
            std::vector<Tensor> tensors;
            for (const Ort::Value& result : results) {
                const auto info = result.GetTensorTypeAndShapeInfo();
                const float* const data = result.GetTensorData<float>();
                tensors.push_back({info.GetShape(), {data, data + info.GetElementCount()}});
            }
            return tensors;
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }

private:
    Ort::Session session;
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    std::vector<const char*> outputNames;
};

} // namespace

bool OnnxSession::hasLibrary() {
    try {
        return environment() != nullptr;
    } catch (const std::exception&) {
        return false;
    }
}

std::unique_ptr<OnnxSession> OnnxSession::load(const std::filesystem::path& model,
                                               std::size_t outputs, int threads) {
    try {
        Ort::Env* const shared = environment();
        if (shared == nullptr) {
            return nullptr;
        }
        auto session = std::make_unique<LoadedSession>(*shared, model, threads);
        return session->fits(outputs) ? std::move(session) : nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace murkwell
