#include "demo_card/clip_encoder.h"

#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include <QFile>
#include <QImage>
#include <algorithm>

#include "demo_card/yuv.h"

namespace ql240::demo {
namespace {

constexpr int kQueuedFrames = 3;
constexpr int kAacFrame = 1024; // samples
constexpr int kJpegQuality = 76;
constexpr int kSoundChunks = 10; // per second; the multiplexer interleaves them with the pictures

QString videoCaps(const ClipFormat& format, const ClipFormat::Video& video) {
    return QStringLiteral(
               "video/x-raw,format=I420,width=%1,height=%2,framerate=%3/1,interlace-mode=progressive,"
               "pixel-aspect-ratio=1/1,colorimetry=%4")
        .arg(video.size.width())
        .arg(video.size.height())
        .arg(format.frameRate)
        .arg(QLatin1String(yuvMatrixFor(format, video.size).colorimetry));
}

QString videoBranch(const ClipFormat& format, int index) {
    const ClipFormat::Video& video = format.videos[index];
    const QString source =
        QStringLiteral(
            "appsrc name=v%1 format=time block=true max-bytes=0 max-time=0 max-buffers=%2 caps=\"%3\" ! ")
            .arg(index)
            .arg(kQueuedFrames)
            .arg(videoCaps(format, video));
    if (format.container == ClipFormat::Container::Avi)
        return source + QStringLiteral("jpegenc quality=%1 ! queue ! mux. ").arg(kJpegQuality);
    return source + QStringLiteral(
                        "openh264enc complexity=low rate-control=bitrate bitrate=%1 max-bitrate=%2 "
                        "enable-frame-skip=false scene-change-detection=false gop-size=%3 multi-thread=1 "
                        "! h264parse ! queue ! mux. ")
                        .arg(video.kilobits * 1000)
                        .arg(video.kilobits * 2000)
                        .arg(format.frameRate);
}

QString soundBranch(const ClipFormat& format) {
    const QString source = QStringLiteral(
                               "appsrc name=sound format=time max-bytes=0 caps=\"audio/x-raw,format=S16LE,"
                               "layout=interleaved,channels=1,rate=%1\" ! ")
                               .arg(format.soundRate);
    const QString encoder = QStringLiteral("audioconvert ! avenc_aac bitrate=64000 ! aacparse ! ");
    return source + (format.container == ClipFormat::Container::Mp4 ? encoder : QString()) +
           QStringLiteral("queue max-size-time=0 max-size-buffers=0 max-size-bytes=0 ! mux. ");
}

QString pipelineText(const ClipFormat& format) {
    QString text;
    for (int i = 0; i < format.videos.size(); ++i)
        text += videoBranch(format, i);
    if (format.soundRate > 0)
        text += soundBranch(format);
    return text +
           QLatin1String(format.container == ClipFormat::Container::Avi ? "avimux name=mux"
                                                                        : "mp4mux name=mux") +
           QLatin1String(" ! filesink name=file");
}

} // namespace

struct ClipEncoder::Pipeline {
    ClipFormat format;
    GstElement* bin = nullptr;
    QList<std::int64_t> frames; // given so far, for each video
    QString error;

    bool fail(const QString& text) {
        if (error.isEmpty())
            error = text;
        return false;
    }
    bool push(const QString& source, GstBuffer* buffer);
    bool end(const QString& source);
    bool waitForEnd();
};

bool ClipEncoder::Pipeline::push(const QString& source, GstBuffer* buffer) {
    GstElement* element = gst_bin_get_by_name(GST_BIN(bin), source.toLatin1().constData());
    const GstFlowReturn flow = gst_app_src_push_buffer(GST_APP_SRC(element), buffer);
    gst_object_unref(element);
    if (flow == GST_FLOW_OK)
        return true;
    waitForEnd();
    return fail(QStringLiteral("the encoder stopped"));
}

bool ClipEncoder::Pipeline::end(const QString& source) {
    GstElement* element = gst_bin_get_by_name(GST_BIN(bin), source.toLatin1().constData());
    const GstFlowReturn flow = gst_app_src_end_of_stream(GST_APP_SRC(element));
    gst_object_unref(element);
    return flow == GST_FLOW_OK;
}

bool ClipEncoder::Pipeline::waitForEnd() {
    GstBus* bus = gst_element_get_bus(bin);
    GstMessage* message =
        gst_bus_timed_pop_filtered(bus, 30 * GST_SECOND, GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    gst_object_unref(bus);
    if (!message)
        return fail(QStringLiteral("the encoder doesn't answer"));
    GError* problem = nullptr;
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        gst_message_parse_error(message, &problem, nullptr);
    gst_message_unref(message);
    if (!problem)
        return true;
    fail(QString::fromUtf8(problem->message));
    g_error_free(problem);
    return false;
}

ClipEncoder::ClipEncoder(const QString& path, const ClipFormat& format) : m_pipeline(new Pipeline) {
    gst_init(nullptr, nullptr);
    m_pipeline->format = format;
    m_pipeline->frames.resize(format.videos.size());
    GError* problem = nullptr;
    m_pipeline->bin = gst_parse_launch(pipelineText(format).toUtf8().constData(), &problem);
    if (problem) {
        m_pipeline->fail(QString::fromUtf8(problem->message));
        g_error_free(problem);
        return;
    }
    GstElement* file = gst_bin_get_by_name(GST_BIN(m_pipeline->bin), "file");
    g_object_set(file, "location", QFile::encodeName(path).constData(), nullptr);
    gst_object_unref(file);
    if (gst_element_set_state(m_pipeline->bin, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
        m_pipeline->waitForEnd();
}

ClipEncoder::~ClipEncoder() {
    if (!m_pipeline->bin)
        return;
    gst_element_set_state(m_pipeline->bin, GST_STATE_NULL);
    gst_object_unref(m_pipeline->bin);
}

bool ClipEncoder::addSound(const QByteArray& samples) {
    const int rate = m_pipeline->format.soundRate;
    const qsizetype chunk = rate / kSoundChunks * 2;
    // The AAC encoder puts a frame of its own in front; sound and pictures must end together.
    const bool aac = m_pipeline->format.container == ClipFormat::Container::Mp4;
    const qsizetype end = samples.size() - (aac ? kAacFrame * 2 : 0);
    for (qsizetype at = 0; at < end && m_pipeline->error.isEmpty(); at += chunk) {
        const gsize bytes = gsize(std::min(chunk, end - at));
        GstBuffer* buffer = gst_buffer_new_memdup(samples.constData() + at, bytes);
        GST_BUFFER_PTS(buffer) = gst_util_uint64_scale(guint64(at / 2), GST_SECOND, guint64(rate));
        GST_BUFFER_DURATION(buffer) = gst_util_uint64_scale(bytes / 2, GST_SECOND, guint64(rate));
        m_pipeline->push(QStringLiteral("sound"), buffer);
    }
    return m_pipeline->error.isEmpty() && m_pipeline->end(QStringLiteral("sound"));
}

bool ClipEncoder::addFrame(int video, const QImage& picture) {
    if (!m_pipeline->error.isEmpty())
        return false;
    const ClipFormat& format = m_pipeline->format;
    const QSize size = format.videos[video].size;
    const gsize bytes = gsize(size.width()) * gsize(size.height()) * 3 / 2;
    GstBuffer* buffer = gst_buffer_new_allocate(nullptr, bytes, nullptr);
    GstMapInfo map;
    if (!gst_buffer_map(buffer, &map, GST_MAP_WRITE))
        return m_pipeline->fail(QStringLiteral("out of memory"));
    convertToI420(picture, yuvMatrixFor(format, size), {map.data, map.size});
    gst_buffer_unmap(buffer, &map);
    const auto time = [&](std::int64_t frame) {
        return gst_util_uint64_scale(guint64(frame), GST_SECOND, guint64(format.frameRate));
    };
    const std::int64_t number = m_pipeline->frames[video]++;
    GST_BUFFER_PTS(buffer) = time(number);
    GST_BUFFER_DURATION(buffer) = time(number + 1) - time(number);
    return m_pipeline->push(QStringLiteral("v%1").arg(video), buffer);
}

bool ClipEncoder::finish() {
    if (!m_pipeline->error.isEmpty())
        return false;
    for (qsizetype video = 0; video < m_pipeline->frames.size(); ++video)
        m_pipeline->end(QStringLiteral("v%1").arg(video));
    return m_pipeline->waitForEnd();
}

QString ClipEncoder::errorText() const {
    return m_pipeline->error;
}

} // namespace ql240::demo
