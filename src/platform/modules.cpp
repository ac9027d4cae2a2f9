#include "platform/modules.h"

#include <QDir>
#include <QLibrary>

#include "platform/web_engine_setup.h"

namespace ql240 {

QString moduleFolderOf(const QString& programFolder) {
    return QDir::cleanPath(programFolder + QLatin1String("/../lib/ql240"));
}

template <typename Interface>
Interface* LazyModule<Interface>::get() {
    if (!std::exchange(m_tried, true)) {
        // The library stays loaded until the process ends: code of it may still be on the stack of other
        // threads.
        QLibrary library(m_file);
        using Create = Interface* (*)();
        if (auto create = reinterpret_cast<Create>(library.resolve(m_factory)))
            m_made.reset(create());
    }
    return m_made.get();
}

MediaModule::MediaModule(const QString& folder)
    : m_module(folder + QLatin1String("/libql240-media.so"), kCreateMediaPlatform) {}

MediaPlatform* MediaModule::loaded() {
    if (!m_loaded) {
        m_loaded = m_module.get();
        if (m_loaded && m_volume)
            m_loaded->setOutputVolume(m_volume->first, m_volume->second);
    }
    return m_loaded;
}

Status MediaModule::CoCreateInstance(const Guid& classId, IUnknown* outer, ClassContext context,
                                     const Guid& iid, void** object) {
    if (MediaPlatform* media = loaded())
        return media->CoCreateInstance(classId, outer, context, iid, object);
    *object = nullptr;
    return kStatusClassNotRegistered;
}

void MediaModule::warmUp() {
    if (MediaPlatform* media = loaded())
        media->warmUp();
}

void MediaModule::setOutputVolume(std::uint16_t left, std::uint16_t right) {
    m_volume = {left, right};
    if (m_loaded)
        m_loaded->setOutputVolume(left, right);
}

MapModule::MapModule(const QString& folder)
    : m_module(folder + QLatin1String("/libql240-map.so"), kCreateWebPages) {}

std::unique_ptr<WebPage> MapModule::createPage(QWidget* parent, WebPageEvents events) {
    if (!webEngineCanRun())
        return nullptr;
    provideShareContext();
    WebPages* pages = m_module.get();
    if (!pages)
        return nullptr;
    pages->network = network;
    return pages->createPage(parent, std::move(events));
}

} // namespace ql240
