// A media module for tests: creates nothing; each attempt returns a record of the calls so far.
#include <QtGlobal>

#include "platform/media_platform.h"

namespace {

class RecordingMedia final : public ql240::MediaPlatform {
public:
    ql240::Status CoCreateInstance(const ql240::Guid&, ql240::IUnknown*, ql240::ClassContext,
                                   const ql240::Guid&, void** object) override {
        *object = nullptr;
        return static_cast<ql240::Status>(m_calls);
    }
    void warmUp() override { m_calls += 0x10000; }
    void setOutputVolume(std::uint16_t left, std::uint16_t right) override { m_calls = left * 0x100 + right; }

private:
    int m_calls = 0;
};

} // namespace

extern "C" Q_DECL_EXPORT ql240::MediaPlatform* ql240CreateMediaPlatform() {
    return new RecordingMedia;
}
