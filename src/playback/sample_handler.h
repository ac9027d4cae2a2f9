// Passes decoded frames from a sample grabber to the view that filters them. Called on streaming threads;
// owned by the view and not reference-counted.
#pragma once

#include <cstdint>

#include "platform/media_graph.h"

namespace ql240 {

class SampleFilter {
public:
    // One decoded YUY2 frame of stream `index`: `length` bytes, writable in place, at `sampleTime` seconds.
    // Streaming thread.
    virtual void filterSample(std::int32_t index, double sampleTime, std::uint8_t* buffer,
                              std::int32_t length) = 0;

protected:
    ~SampleFilter() = default;
};

class SampleHandler final : public ISampleGrabberCB {
public:
    explicit SampleHandler(SampleFilter* target) : m_target(target) {}
    void setIndex(std::int32_t index) { m_index = index; }

    Status QueryInterface(const Guid& iid, void** object) override;
    std::uint32_t AddRef() override { return 2; }
    std::uint32_t Release() override { return 1; }
    Status SampleCB(double sampleTime, void* sample) override;
    Status BufferCB(double sampleTime, std::uint8_t* buffer, std::int32_t length) override;

private:
    SampleFilter* m_target;
    std::int32_t m_index = -1;
};

} // namespace ql240
