#include "playback/sample_handler.h"

namespace ql240 {

Status SampleHandler::QueryInterface(const Guid& iid, void** object) {
    const bool known = iid == ISampleGrabberCB::kIid;
    *object = known ? static_cast<ISampleGrabberCB*>(this) : nullptr;
    return known ? kStatusOk : kStatusNoInterface;
}

Status SampleHandler::SampleCB(double, void*) {
    return kStatusOk;
}

Status SampleHandler::BufferCB(double sampleTime, std::uint8_t* buffer, std::int32_t length) {
    if (m_target)
        m_target->filterSample(m_index, sampleTime, buffer, length);
    return kStatusOk;
}

} // namespace ql240
