#pragma once

// Makes small clips whose frames carry their numbers (frame_code.h), with the ffmpeg command line. Each is
// made once and kept in $QL240_TEST_CLIPS, or else in the build folder. Several test programs may ask for the
// same clip at once. Copy or link a clip to give it another name.

#include <QtCore/QList>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <chrono>

namespace ql240 {

struct TestClipSpec {
    enum class Container { Mp4, Avi };
    enum class Codec { H264, H265, MotionJpeg };

    Container container = Container::Mp4;
    Codec codec = Codec::H264;
    int videoStreams = 1; // 1 or 2
    QSize size{640, 360}; // both sizes: even numbers
    QSize secondSize{480, 270};
    int frames = 60; // of each stream
    int rate = 30;   // frames per second
    int bFrames = 0;
    bool variableRate = false; // MP4: intervals of 20, 40 and 90 ms in turn instead of the rate
    int firstTimeMs = 0;       // MP4: all streams start this much later (an empty edit)
    bool editLists = true;     // MP4: without them, the times keep the delay caused by B-frames
    bool faststart = true;     // MP4: index before the media
    bool fullRange = false;    // Motion-JPEG is always full range
    bool sound = true;         // a tone of 440 Hz; MP4: AAC; AVI: 16-bit PCM
    QString soundCodec{};      // another codec
};

// The camera's usual AVI clip: Motion-JPEG at 15 frames per second, with PCM sound.
TestClipSpec aviTestClip();

// The path of the clip, made if necessary; empty (with a warning) when ffmpeg fails.
QString makeTestClip(const TestClipSpec& spec);

// The start of each frame of the first stream, from the start of the clip.
QList<std::chrono::nanoseconds> testClipFrameTimes(const TestClipSpec& spec);

} // namespace ql240
