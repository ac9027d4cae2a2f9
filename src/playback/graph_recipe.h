// The two recipes for a clip's filter graph: every filter is created by class identifier, added under a fixed
// name and connected by pin names. Used only inside Player::open; the graph keeps the filters alive
// afterwards. Interface thread.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/media_graph.h"

namespace ql240 {

class MediaPlatform;

struct NamedPin {
    ComPtr<IPin> pin; // null if the filter has no pin of that name
    const char16_t* name;
};

class GraphRecipe {
public:
    static constexpr int kMaxStreams = 2;

    explicit GraphRecipe(MediaPlatform& platform) : m_platform(platform) {}

    // Both build the empty `graph` for the clip file `path` and return the status of the first step that
    // fails; filters added before that stay in the graph.
    Status buildAvi(IGraphBuilder& graph, const std::u16string& path);
    Status buildMp4(IGraphBuilder& graph, const std::u16string& path);

    // Number of video streams that buildMp4 found; only the first two are used.
    int videoStreamCount() const { return m_videoStreamCount; }

    // Hands over the filter of stream 0 or 1 and empties its slot; null if the slot is empty.
    ComPtr<IBaseFilter> takeGrabber(int index);
    ComPtr<IBaseFilter> takeRenderer(int index);

private:
    struct VideoChain {
        ComPtr<IBaseFilter> decoder;
        ComPtr<IBaseFilter> grabber;
        ComPtr<IBaseFilter> converter;
        ComPtr<IBaseFilter> renderer;
    };

    Status addFilter(IGraphBuilder& graph, const Guid& classId, const char16_t* name,
                     ComPtr<IBaseFilter>& slot);
    Status addSource(IGraphBuilder& graph, const std::u16string& path);
    Status addGrabber(IGraphBuilder& graph, int index);
    Status addMp4Filters(IGraphBuilder& graph);
    Status joinVideoChain(IGraphBuilder& graph, int index, const NamedPin& source);

    MediaPlatform& m_platform;
    ComPtr<IBaseFilter> m_source;
    ComPtr<IBaseFilter> m_splitter;
    ComPtr<IBaseFilter> m_audioDecoder;
    ComPtr<IBaseFilter> m_audioRenderer;
    std::array<VideoChain, kMaxStreams> m_video;
    int m_videoStreamCount = 0;
};

// The `skip`+1-th pin named `name` (case-insensitive) in the filter's own order; null if there is none.
ComPtr<IPin> findPinByName(IBaseFilter& filter, std::u16string_view name, int skip = 0);
int countPinsByName(IBaseFilter& filter, std::u16string_view name);

} // namespace ql240
