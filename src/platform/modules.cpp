#include "platform/modules.h"

#include <QDir>
#include <QLibrary>

#include "platform/logging.h"
#include "platform/web_engine_setup.h"

namespace ql240 {

namespace {

constexpr std::uint32_t kNoError = 0;
constexpr std::uint32_t kBadDevice = 2;

} // namespace

QString moduleFolderOf(const QString& programFolder) {
    return QDir::cleanPath(programFolder + QLatin1String("/../lib/ql240"));
}

template <typename Interface>
Interface* LazyModule<Interface>::get() {
    if (!std::exchange(m_tried, true)) {
        // Never unloaded before the process ends: other threads may still be running its code.
        QLibrary library(m_file);
        using Create = Interface* (*)();
        if (auto create = reinterpret_cast<Create>(library.resolve(m_factory)))
            m_made.reset(create());
        else
            qCWarning(m_log) << "no module:" << library.errorString();
    }
    return m_made.get();
}

MediaModule::MediaModule(const QString& folder)
    : m_module(folder + QLatin1String("/libql240-media.so"), kCreateMediaPlatform, lcMedia) {}

MediaPlatform* MediaModule::loaded() {
    if (!m_loaded) {
        m_loaded = m_module.get();
        if (m_loaded)
            m_loaded->setOutputVolume(m_left, m_right);
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
    m_left = left;
    m_right = right;
    if (m_loaded)
        m_loaded->setOutputVolume(left, right);
}

std::uint32_t MediaModule::waveOutGetVolume(std::uint32_t device, std::uint32_t* volume) {
    if (device != 0)
        return kBadDevice;
    *volume = static_cast<std::uint32_t>(m_right) << 16 | m_left;
    return kNoError;
}

std::uint32_t MediaModule::waveOutSetVolume(std::uint32_t device, std::uint32_t volume) {
    if (device != 0)
        return kBadDevice;
    setOutputVolume(static_cast<std::uint16_t>(volume & 0xFFFF), static_cast<std::uint16_t>(volume >> 16));
    return kNoError;
}

MapModule::MapModule(const QString& folder)
    : m_module(folder + QLatin1String("/libql240-map.so"), kCreateWebPages, lcMap) {}

std::unique_ptr<WebPage> MapModule::createPage(QWidget* parent, WebPageEvents events) {
    if (!webEngineCanRun()) {
        qCWarning(lcMap) << "the system refuses what the engine's sandbox is made of";
        return nullptr;
    }
    provideShareContext();
    WebPages* pages = m_module.get();
    if (!pages)
        return nullptr;
    pages->network = network;
    return pages->createPage(parent, std::move(events));
}

} // namespace ql240
