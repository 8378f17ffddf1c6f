// Built where the headers of ONNX Runtime are not to be had: there is never a session.
#include "platform/vision/OnnxSession.h"

namespace murkwell {

bool OnnxSession::hasLibrary() {
    return false;
}

std::unique_ptr<OnnxSession> OnnxSession::load(const std::filesystem::path& /*model*/,
                                               std::size_t /*outputs*/, int /*threads*/) {
    return nullptr;
}

} // namespace murkwell
