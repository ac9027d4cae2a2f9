// A transport's streams over a pipeline: seeks go to the splitter, moves to the frame clippers. Interface
// thread.
#pragma once

#include <vector>

#include "platform/gstreamer/gst_handles.h"
#include "platform/gstreamer/streams.h"

namespace ql240::gstreamer {

class FrameClipper;
class Splitter;

class PipelineStreams final : public Streams {
public:
    PipelineStreams(GstElement* pipeline, const Splitter& splitter, std::vector<FrameClipper*> clippers);

    std::int64_t duration() const override;
    std::optional<std::int64_t> position() const override;
    std::int64_t stoppedAt() const override;
    Answer setRunning(bool running, bool settled) override;
    Sent seek(std::int64_t target, double rate) override;
    Sent fetchLastPictures(std::int64_t target, double rate) override;
    Sent move(std::int64_t target) override;
    bool areOff(std::int64_t position) const override;
    bool areInStepAt(std::int64_t position) const override;

private:
    void awaitChange() const;
    void holdSinks() const;

    GstElement* m_pipeline;
    const Splitter& m_splitter;
    std::vector<FrameClipper*> m_clippers;
    std::int64_t m_sought = 0; // target of the last seek
    double m_rate = 1.0;       // playback rate since then
};

} // namespace ql240::gstreamer
