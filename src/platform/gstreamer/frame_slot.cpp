#include "platform/gstreamer/frame_slot.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

#include "platform/gstreamer/c_border.h"

namespace ql240::gstreamer {

namespace {

using SlotPointer = std::shared_ptr<FrameSlot>;

} // namespace

const int FrameSlot::kFrameReady = QEvent::registerEventType();

void FrameSlot::connectTo(const SlotPointer& slot, GstAppSink* sink) {
    GstAppSinkCallbacks callbacks{};
    const auto pull = [](GstAppSink* from, gpointer user, GstSample* (*take)(GstAppSink*)) {
        return answerToC(GST_FLOW_ERROR, [&] {
            if (SampleHandle sample{take(from)})
                (*static_cast<SlotPointer*>(user))->deliver(std::move(sample));
            return GST_FLOW_OK;
        });
    };
    static const auto pullAny = pull;
    callbacks.new_preroll = [](GstAppSink* from, gpointer user) {
        return pullAny(from, user, gst_app_sink_pull_preroll);
    };
    callbacks.new_sample = [](GstAppSink* from, gpointer user) {
        return pullAny(from, user, gst_app_sink_pull_sample);
    };
    gst_app_sink_set_callbacks(sink, &callbacks, new SlotPointer(slot),
                               [](gpointer user) { delete static_cast<SlotPointer*>(user); });
}

QSize FrameSlot::frameSize() const {
    const std::scoped_lock lock(m_mutex);
    return m_frameSize;
}

// Streaming thread. The first frame after a preroll arrives twice, as preroll and as sample; the second time
// it isn't converted again.
void FrameSlot::deliver(SampleHandle sample) {
    const std::scoped_lock converting(m_convertMutex);
    PictureTarget target;
    {
        const std::scoped_lock lock(m_mutex);
        const bool again =
            m_last && gst_sample_get_buffer(m_last.get()) == gst_sample_get_buffer(sample.get());
        m_last = std::move(sample);
        m_frameSize = FrameConverter::frameSize(m_last.get());
        if (again || m_isHeld || !m_window || m_target.visible.isEmpty())
            return;
        target = m_target;
        sample.reset(gst_sample_ref(m_last.get()));
    }
    if (!m_converter.convert(sample.get(), target.size, target.visible, &m_back))
        return;
    const std::scoped_lock lock(m_mutex);
    if (target == m_target && m_window && !m_isHeld)
        publish();
}

// With m_mutex and m_convertMutex held.
void FrameSlot::publish() {
    std::swap(m_ready, m_back);
    m_readyIsFresh = true;
    if (!std::exchange(m_isEventPosted, true))
        QCoreApplication::postEvent(m_window, new QEvent(static_cast<QEvent::Type>(kFrameReady)));
}

void FrameSlot::setTarget(QObject* window, const PictureTarget& target) {
    // The lock keeps an older frame from replacing this one.
    const std::scoped_lock converting(m_convertMutex);
    SampleHandle last;
    {
        const std::scoped_lock lock(m_mutex);
        if (m_window == window && m_target == target)
            return;
        if (m_window != window)
            m_isEventPosted = false;
        m_window = window;
        m_target = target;
        if (!m_last || m_isHeld || !window || target.visible.isEmpty())
            return;
        last.reset(gst_sample_ref(m_last.get()));
    }
    convertLast(std::move(last), target);
}

// With m_convertMutex held.
void FrameSlot::convertLast(SampleHandle last, const PictureTarget& target) {
    if (!m_converter.convert(last.get(), target.size, target.visible, &m_back))
        return;
    const std::scoped_lock lock(m_mutex);
    publish();
}

void FrameSlot::hold() {
    const std::scoped_lock lock(m_mutex);
    if (!m_front.isNull())
        return;
    m_isHeld = true;
    m_readyIsFresh = false;
}

void FrameSlot::release() {
    const std::scoped_lock converting(m_convertMutex);
    SampleHandle last;
    PictureTarget target;
    {
        const std::scoped_lock lock(m_mutex);
        if (!std::exchange(m_isHeld, false) || !m_last || !m_window || m_target.visible.isEmpty())
            return;
        target = m_target;
        last.reset(gst_sample_ref(m_last.get()));
    }
    convertLast(std::move(last), target);
}

const QImage& FrameSlot::takePicture() {
    const std::scoped_lock lock(m_mutex);
    m_isEventPosted = false;
    if (std::exchange(m_readyIsFresh, false))
        std::swap(m_front, m_ready);
    return m_front;
}

} // namespace ql240::gstreamer
