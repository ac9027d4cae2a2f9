// The parts of the program that are shared objects of their own because what they link is slow to load: each
// is loaded when it is first asked for. Interface thread only.
#pragma once

#include <QString>

#include <functional>

namespace ql240 {

class MediaPlatform;
class WebPages;

// Says where the modules are. Until then nothing is loaded, so that tests run against what they put into the
// host table and nothing else.
void setModuleFolder(const QString& path);

// The folder of the modules that belong to a program in `programFolder`: in the build tree as installed,
// lib/ql240 beside the program's own folder.
QString moduleFolderOf(const QString& programFolder);

// The host table's entries; an empty one is filled from its module first. Null when the module is missing or
// doesn't load; that is tried once.
MediaPlatform* requireMediaPlatform();
WebPages* requireWebPages();

// Called once, when the media module has been loaded.
void setMediaLoadedHandler(std::function<void(MediaPlatform&)> handler);

// Deletes what the modules made, before the application object goes. Whatever came from them must be gone.
void releaseModules();

} // namespace ql240
