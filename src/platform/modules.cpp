#include "platform/modules.h"

#include "platform/host.h"
#include "platform/media_platform.h"
#include "platform/web_engine_setup.h"
#include "platform/web_pages.h"

#include <QDir>
#include <QLibrary>

#include <memory>
#include <utility>

namespace ql240 {

namespace {

// One module: the file, its factory, and the object that the factory made.
template <typename Interface>
struct Module {
    const char* file;
    const char* factory;
    bool tried = false;
    std::unique_ptr<Interface> made;

    Interface* require(const QString& folder) {
        if (!tried && !folder.isEmpty()) {
            tried = true;
            // The library stays loaded until the process ends: code of it may still be on the stack of other
            // threads.
            QLibrary library(folder + QLatin1Char('/') + QLatin1String(file));
            using Create = Interface* (*)();
            if (auto create = reinterpret_cast<Create>(library.resolve(factory)))
                made.reset(create());
        }
        return made.get();
    }
};

struct Modules {
    QString folder;
    std::function<void(MediaPlatform&)> mediaLoaded;
    Module<MediaPlatform> media{"libql240-media.so", kCreateMediaPlatform, false, nullptr};
    Module<WebPages> map{"libql240-map.so", kCreateWebPages, false, nullptr};
};

Modules& modules() {
    static Modules table;
    return table;
}

} // namespace

void setModuleFolder(const QString& path) {
    modules().folder = path;
}

QString moduleFolderOf(const QString& programFolder) {
    return QDir::cleanPath(programFolder + QLatin1String("/../lib/ql240"));
}

void setMediaLoadedHandler(std::function<void(MediaPlatform&)> handler) {
    modules().mediaLoaded = std::move(handler);
}

MediaPlatform* requireMediaPlatform() {
    Host& table = host();
    if (!table.media) {
        table.media = modules().media.require(modules().folder);
        if (table.media && modules().mediaLoaded)
            modules().mediaLoaded(*table.media);
    }
    return table.media;
}

WebPages* requireWebPages() {
    Host& table = host();
    if (!table.webPages && webEngineCanRun()) {
        provideShareContext();
        table.webPages = modules().map.require(modules().folder);
    }
    return table.webPages;
}

void releaseModules() {
    if (host().media == modules().media.made.get())
        host().media = nullptr;
    modules().media.made.reset();
    if (host().webPages == modules().map.made.get())
        host().webPages = nullptr;
    modules().map.made.reset();
}

} // namespace ql240
