// Filters and their pins over GStreamer elements. A filter is one or more elements in the graph's pipeline; a
// pin is a name for the pad that leads in or out. Elements that depend on the stream are made when the input
// is joined. Interface thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/gstreamer/com_object.h"
#include "platform/gstreamer/gst_handles.h"
#include "platform/media_graph.h"

namespace ql240::gstreamer {

class Filter;

class Pin final : public IPin {
public:
    Pin(Filter& filter, std::u16string name, PinDirection direction)
        : m_filter(filter), m_name(std::move(name)), m_direction(direction) {}

    // Counted with its filter, which owns it.
    Status QueryInterface(const Guid& iid, void** object) override;
    std::uint32_t AddRef() override;
    std::uint32_t Release() override;
    Status QueryPinInfo(PinInfo* info) override;

    Filter& filter() const { return m_filter; }
    PinDirection direction() const { return m_direction; }
    Pin* peer() const { return m_peer; }
    GstPad* pad() const { return m_pad.get(); }
    void setPad(PadHandle pad) { m_pad = std::move(pad); }
    // An output pin's current or future caps; empty while they aren't known.
    CapsHandle caps() const;

    static void join(Pin& output, Pin& input);

private:
    Filter& m_filter;
    std::u16string m_name;
    PinDirection m_direction;
    PadHandle m_pad;
    Pin* m_peer = nullptr;
};

class Filter : public ComObject<IBaseFilter> {
public:
    ~Filter() override;

    Status EnumPins(IEnumPins** pins) override;

    // Adds the filter's elements to the pipeline; false if they can't be linked.
    bool enterPipeline(GstElement* pipeline);
    // Stops the elements, which then refuse further data.
    void stopElements();
    // Stops the elements, removes them from the pipeline and releases them.
    void leavePipeline();

    // Called before `input` is joined to `upstream`: makes the elements that the stream needs, and
    // input.pad().
    virtual Status prepareInput(Pin& input, const Pin& upstream);
    // Called after joining.
    virtual Status inputJoined(Pin& input);
    virtual bool isSource() const { return false; }
    virtual bool isSink() const { return false; }
    // Called once before the pipeline first runs; `videoStreams` streams are decoded at the same time.
    virtual void beforeFirstRun(int videoStreams);

    const std::vector<std::unique_ptr<Pin>>& pins() const { return m_pins; }
    Pin* inputPin() const;
    Pin* outputPin() const;

protected:
    Pin& addPin(std::u16string name, PinDirection direction);
    // Makes an element and adds it to the pipeline if the filter is in one; null if its plugin is missing.
    GstElement* addElement(const char* factory);
    // Makes the elements, linked in order once they are in the pipeline. Empty if a plugin is missing or two
    // elements have incompatible formats.
    std::vector<GstElement*> addChain(const std::vector<const char*>& factories);
    const std::vector<ElementHandle>& elements() const { return m_elements; }
    GstElement* pipeline() const { return m_pipeline; }

private:
    void placeElement(GstElement* element);
    static bool linkChain(const std::vector<GstElement*>& chain);

    std::vector<std::unique_ptr<Pin>> m_pins;
    std::vector<ElementHandle> m_elements;
    std::vector<std::vector<GstElement*>> m_unlinked; // adding to a pipeline unlinks an element
    GstElement* m_pipeline = nullptr;
};

// A filter with further interfaces.
template <typename... Extra>
class FilterWith : public Filter, public Extra... {
public:
    Status QueryInterface(const Guid& iid, void** object) override {
        *object = nullptr;
        (void)(find<Extra>(iid, object) || ...);
        if (!*object)
            return Filter::QueryInterface(iid, object);
        AddRef();
        return kStatusOk;
    }
    std::uint32_t AddRef() override { return Filter::AddRef(); }
    std::uint32_t Release() override { return Filter::Release(); }

private:
    template <typename Interface>
    bool find(const Guid& iid, void** object) {
        if (iid != Interface::kIid)
            return false;
        *object = static_cast<Interface*>(this);
        return true;
    }
};

} // namespace ql240::gstreamer
