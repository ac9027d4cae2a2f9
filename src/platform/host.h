// The table of interfaces to the host system. `app/` fills it at start-up, tests fill it with fakes;
// everything else only reads it. The program's table is complete before its first window opens and doesn't
// change until the last one has closed. Interface thread only. Pointers are not owned.
#pragma once

#include <functional>
#include <memory>

namespace ql240 {

class Drives;
class FolderDialogs;
class Inhibitor;
class MediaPlatform;
class SensorLibrary;
class UrlOpener;
class WaveOut;
class WebPages;

struct Host {
    Drives* drives = nullptr;
    FolderDialogs* folderDialogs = nullptr;
    Inhibitor* inhibitor = nullptr;
    MediaPlatform* media = nullptr;
    // Makes a library for one clip. It shares nothing, since the thread that reads the clip may outlive all
    // else.
    std::function<std::shared_ptr<SensorLibrary>()> makeSensorLibrary;
    UrlOpener* urlOpener = nullptr;
    WaveOut* waveOut = nullptr;
    WebPages* webPages = nullptr;
};

Host& host();

} // namespace ql240
