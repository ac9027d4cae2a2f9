#include "platform/gstreamer/source_filters.h"

#include <QFile>
#include <QString>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "platform/gstreamer/c_border.h"
#include "platform/gstreamer/gst_log.h"
#include "platform/limits.h"

namespace ql240::gstreamer {

namespace {

constexpr auto kPadsMessage = "ql240-pads";

// open() alone isn't enough: it succeeds on directories, which can't be read.
bool isReadableFile(const QByteArray& path) {
    struct stat status {};
    // Check first: opening a device can have side effects.
    if (::stat(path.constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    // Check again, since the entry may have been replaced; O_NONBLOCK because opening a FIFO waits for a
    // writer.
    const int file = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool isRegular = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    ::close(file);
    return isRegular;
}

GstPadProbeReturn holdBack(GstPad*, GstPadProbeInfo*, gpointer) {
    return GST_PAD_PROBE_OK;
}

std::u16string pinName(Container container, GstPad* pad, std::size_t index) {
    if (container == Container::Avi)
        return QString::asprintf("Stream %02zu", index).toStdU16String();
    const CapsHandle caps(gst_pad_get_current_caps(pad));
    const QString type =
        caps ? QString::fromLatin1(gst_structure_get_name(gst_caps_get_structure(caps.get(), 0))) : QString();
    if (type.startsWith(QLatin1String("video/")) || type.startsWith(QLatin1String("image/")))
        return u"vide";
    return type.startsWith(QLatin1String("audio/")) ? u"soun" : u"other";
}

} // namespace

FileSource::FileSource() {
    GstElement* source = addElement("filesrc");
    if (!source)
        return;
    PadHandle pad = staticPad(source, "src");
    m_readFile = GST_PAD_GETRANGEFUNC(pad.get());
    gst_pad_set_getrange_function_full(pad.get(), read, this, nullptr);
    addPin(u"Output", PinDirection::Output).setPad(std::move(pad));
}

// Stops the thread that calls read() before the members are destroyed.
FileSource::~FileSource() {
    leavePipeline();
}

// The splitter allocates buffers of the sizes that the file states, however large.
GstFlowReturn FileSource::read(GstPad* pad, GstObject* parent, guint64 offset, guint length, GstBuffer** to) {
    auto* source = static_cast<FileSource*>(pad->getrangedata);
    if (length > limits::kPieceBytes ||
        (source->m_opens && (source->m_opening += length) > limits::kOpeningBytes))
        return GST_FLOW_EOS;
    const bool isCallers = *to;
    const GstFlowReturn flow = source->m_readFile(pad, parent, offset, length, to);
    if (flow != GST_FLOW_OK || source->mayGoOn(offset, *to))
        return flow;
    if (!isCallers)
        gst_buffer_unref(std::exchange(*to, nullptr));
    return GST_FLOW_EOS;
}

bool FileSource::mayGoOn(std::uint64_t place, GstBuffer* piece) {
    GstMapInfo map;
    if (!gst_buffer_map(piece, &map, GST_MAP_READWRITE))
        return false;
    const bool fits = m_index.tidy(place, {map.data, map.size});
    gst_buffer_unmap(piece, &map);
    return fits;
}

Status FileSource::Load(const char16_t* path, const MediaType*) {
    const QByteArray local = QFile::encodeName(QString::fromUtf16(path));
    if (!isReadableFile(local))
        return kStatusFileNotFound;
    g_object_set(element(), "location", local.constData(), nullptr);
    return kStatusOk;
}

Splitter::Splitter(Container container) : m_container(container) {
    GstElement* demuxer = addElement(container == Container::Avi ? "avidemux" : "qtdemux");
    if (!demuxer)
        return;
    addPin(container == Container::Avi ? u"Input pin" : u"Input", PinDirection::Input)
        .setPad(staticPad(demuxer, "sink"));
    g_signal_connect(demuxer, "pad-added", G_CALLBACK(padAdded), this);
    g_signal_connect(demuxer, "no-more-pads", G_CALLBACK(noMorePads), this);
}

// Stops the demuxer's thread before m_streams is destroyed.
Splitter::~Splitter() {
    letGo();
    leavePipeline();
}

// padAdded and noMorePads run on the demuxer's thread.
void Splitter::padAdded(GstElement*, GstPad* pad, gpointer self) {
    answerToC(true, [pad, splitter = static_cast<Splitter*>(self)] {
        splitter->addStream(pad);
        return true;
    });
}

void Splitter::addStream(GstPad* pad) {
    const std::scoped_lock lock(m_mutex);
    Stream& added = m_streams.emplace_back(Stream{share(pad), 0});
    if (m_holds)
        added.blockProbe =
            gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BLOCK_DOWNSTREAM, holdBack, nullptr, nullptr);
}

void Splitter::noMorePads(GstElement* demuxer, gpointer) {
    gst_element_post_message(
        demuxer, gst_message_new_application(GST_OBJECT(demuxer), gst_structure_new_empty(kPadsMessage)));
}

Status Splitter::inputJoined(Pin& input) {
    GstElement* demuxer = elements().front().get();
    auto* upstream = dynamic_cast<FileSource*>(&input.peer()->filter());
    if (!upstream)
        return kStatusCannotConnect;
    gst_element_set_state(demuxer, GST_STATE_PAUSED);
    gst_element_set_state(upstream->element(), GST_STATE_PAUSED);
    const bool arePadsThere = waitForPads();
    upstream->setOpen();
    if (!arePadsThere)
        return kStatusCannotConnect;
    makeOutputPins();
    return kStatusOk;
}

bool Splitter::waitForPads() {
    const BusHandle bus(gst_element_get_bus(pipeline()));
    const auto wanted =
        static_cast<GstMessageType>(GST_MESSAGE_APPLICATION | GST_MESSAGE_ERROR | GST_MESSAGE_EOS);
    const GstClockTime limit = static_cast<GstClockTime>(kTimeLimit.count()) * GST_MSECOND;
    const MessageHandle message(gst_bus_timed_pop_filtered(bus.get(), limit, wanted));
    if (message)
        logError("clip:", message.get());
    return message && GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_APPLICATION;
}

void Splitter::makeOutputPins() {
    const std::scoped_lock lock(m_mutex);
    for (std::size_t i = 0; i < m_streams.size(); ++i) {
        GstPad* pad = m_streams[i].pad.get();
        addPin(pinName(m_container, pad, i), PinDirection::Output).setPad(share(pad));
    }
}

void Splitter::letGo() {
    const std::scoped_lock lock(m_mutex);
    m_holds = false;
    for (auto& stream : m_streams) {
        if (stream.blockProbe)
            gst_pad_remove_probe(stream.pad.get(), std::exchange(stream.blockProbe, 0));
    }
}

std::int64_t Splitter::durationNs() const {
    const std::scoped_lock lock(m_mutex);
    gint64 longest = 0;
    for (const auto& stream : m_streams) {
        gint64 duration = 0;
        if (gst_pad_query_duration(stream.pad.get(), GST_FORMAT_TIME, &duration))
            longest = std::max(longest, duration);
    }
    return longest;
}

bool Splitter::sendSeek(GstEvent* event) const {
    for (const auto& pin : pins()) {
        if (pin->direction() == PinDirection::Output && gst_pad_is_linked(pin->pad()))
            return gst_pad_send_event(pin->pad(), event);
    }
    gst_event_unref(event);
    return false;
}

} // namespace ql240::gstreamer
