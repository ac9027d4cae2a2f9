// Writes one clip file through a GStreamer pipeline: H.264 and AAC in MP4, or Motion-JPEG and 16-bit PCM in
// AVI. All the sound, if any, is added before the pictures. Used by one thread; addFrame() blocks while the
// encoder is busy.
#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>
#include <memory>

class QImage;

namespace ql240::demo {

struct ClipFormat {
    enum class Container { Mp4, Avi };
    struct Video {
        QSize size;       // even numbers
        int kilobits = 0; // per second; MP4 only
    };

    Container container = Container::Mp4;
    QList<Video> videos;
    int frameRate = 30;
    int soundRate = 0; // samples per second, mono; 0: no sound
};

class ClipEncoder {
public:
    ClipEncoder(const QString& path, const ClipFormat& format);
    ~ClipEncoder(); // an unfinished file stays on the disk

    // Each returns false once anything has failed; errorText() says what.
    bool addSound(const QByteArray& samples);        // 16 bits, the machine's byte order
    bool addFrame(int video, const QImage& picture); // Format_RGB32 of the video's size
    bool finish();

    QString errorText() const;

private:
    struct Pipeline;
    std::unique_ptr<Pipeline> m_pipeline;
};

} // namespace ql240::demo
