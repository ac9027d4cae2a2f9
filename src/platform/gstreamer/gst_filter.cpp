#include "platform/gstreamer/gst_filter.h"

#include <algorithm>

namespace ql240::gstreamer {

namespace {

constexpr Status kStatusNoMorePins{1};

// A snapshot of a filter's pins.
class PinList final : public ComObject<IEnumPins> {
public:
    explicit PinList(const std::vector<std::unique_ptr<Pin>>& pins) {
        for (const auto& pin : pins)
            m_pins.emplace_back(pin.get());
    }

    Status Next(std::uint32_t count, IPin** pins, std::uint32_t* fetched) override {
        std::uint32_t done = 0;
        for (; done < count && m_next < m_pins.size(); ++done, ++m_next) {
            pins[done] = m_pins[m_next].get();
            pins[done]->AddRef();
        }
        if (fetched)
            *fetched = done;
        return done == count ? kStatusOk : kStatusNoMorePins;
    }

private:
    std::vector<ComPtr<IPin>> m_pins;
    std::size_t m_next = 0;
};

} // namespace

Status Pin::QueryInterface(const Guid& iid, void** object) {
    const bool known = iid == IPin::kIid || iid == IUnknown::kIid;
    *object = known ? static_cast<IPin*>(this) : nullptr;
    if (!known)
        return kStatusNoInterface;
    AddRef();
    return kStatusOk;
}

std::uint32_t Pin::AddRef() {
    return m_filter.AddRef();
}

std::uint32_t Pin::Release() {
    return m_filter.Release();
}

Status Pin::QueryPinInfo(PinInfo* info) {
    *info = {m_name, m_direction};
    return kStatusOk;
}

CapsHandle Pin::caps() const {
    if (!m_pad)
        return {};
    return CapsHandle(gst_pad_get_current_caps(m_pad.get()));
}

void Pin::join(Pin& output, Pin& input) {
    output.m_peer = &input;
    input.m_peer = &output;
}

Filter::~Filter() {
    leavePipeline();
}

Status Filter::EnumPins(IEnumPins** pins) {
    *pins = new PinList(m_pins);
    (*pins)->AddRef();
    return kStatusOk;
}

Pin& Filter::addPin(std::u16string name, PinDirection direction) {
    return *m_pins.emplace_back(std::make_unique<Pin>(*this, std::move(name), direction));
}

Pin* Filter::inputPin() const {
    const auto it = std::find_if(m_pins.begin(), m_pins.end(),
                                 [](const auto& pin) { return pin->direction() == PinDirection::Input; });
    return it == m_pins.end() ? nullptr : it->get();
}

Pin* Filter::outputPin() const {
    const auto it = std::find_if(m_pins.begin(), m_pins.end(),
                                 [](const auto& pin) { return pin->direction() == PinDirection::Output; });
    return it == m_pins.end() ? nullptr : it->get();
}

void Filter::placeElement(GstElement* element) {
    gst_bin_add(GST_BIN(m_pipeline), element);
    gst_element_sync_state_with_parent(element);
}

bool Filter::enterPipeline(GstElement* pipeline) {
    m_pipeline = pipeline;
    for (const auto& element : m_elements)
        placeElement(element.get());
    const auto unlinked = std::exchange(m_unlinked, {});
    return std::all_of(unlinked.begin(), unlinked.end(), linkChain);
}

bool Filter::linkChain(const std::vector<GstElement*>& chain) {
    for (std::size_t i = 1; i < chain.size(); ++i) {
        if (!gst_element_link(chain[i - 1], chain[i]))
            return false;
    }
    return true;
}

// From the last element to the first: a streaming thread may wait in a later one while it holds the locks of
// the earlier ones.
void Filter::stopElements() {
    for (auto element = m_elements.rbegin(); element != m_elements.rend(); ++element) {
        gst_element_set_locked_state(element->get(), TRUE);
        gst_element_set_state(element->get(), GST_STATE_NULL);
    }
}

void Filter::leavePipeline() {
    stopElements();
    for (const auto& element : m_elements) {
        if (m_pipeline)
            gst_bin_remove(GST_BIN(m_pipeline), element.get());
    }
    m_elements.clear();
    m_pipeline = nullptr;
}

GstElement* Filter::addElement(const char* factory) {
    ElementHandle element = makeElement(factory);
    if (element && m_pipeline)
        placeElement(element.get());
    return element ? m_elements.emplace_back(std::move(element)).get() : nullptr;
}

std::vector<GstElement*> Filter::addChain(const std::vector<const char*>& factories) {
    std::vector<GstElement*> chain;
    for (const char* factory : factories) {
        GstElement* element = addElement(factory);
        if (!element)
            return {};
        chain.push_back(element);
    }
    if (!m_pipeline)
        m_unlinked.push_back(chain);
    else if (!linkChain(chain))
        return {};
    return chain;
}

Status Filter::prepareInput(Pin& input, const Pin&) {
    return input.pad() ? kStatusOk : kStatusCannotConnect;
}

Status Filter::inputJoined(Pin&) {
    return kStatusOk;
}

void Filter::beforeFirstRun(int) {}

} // namespace ql240::gstreamer
