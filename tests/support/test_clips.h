#pragma once

// Makes small clips whose frames carry their number as a bar code (frame_code.h), through the ffmpeg command
// line. A clip is made once for each spec and kept: in $QL240_TEST_CLIPS, else in the build folder's
// tests/clips. Several test programs may ask for the same clip at the same time. Copy or link a clip to give
// it another name.

#include <QtCore/QByteArray>
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
    int rate = 30;   // frames a second
    int keyframeInterval = 30;
    int bFrames = 0;
    bool variableRate = false; // MP4: intervals of 20, 40 and 90 ms in turn in place of the rate
    int firstTimeMs = 0;       // MP4: all streams begin this much later (an empty edit)
    bool editLists = true;     // MP4: without, the times keep the delay that B-frames cause
    bool faststart = true;     // MP4: index before the media
    bool fullRange = false;    // Motion-JPEG is always full range
    bool sound = true;         // MP4: AAC; AVI: 16-bit PCM
    QString soundCodec;        // in place of that
    int toneHz = 440;
    QByteArray trailer; // put behind the finished file as it is
};

// The usual AVI clip of the camera: Motion-JPEG, 15 frames a second, with PCM sound.
TestClipSpec aviTestClip();

// The path of the clip, made if need be; empty (with a warning that says why) when ffmpeg fails.
QString makeTestClip(const TestClipSpec& spec);

// When each frame of the first stream begins, from the start of the clip.
QList<std::chrono::nanoseconds> testClipFrameTimes(const TestClipSpec& spec);

} // namespace ql240
