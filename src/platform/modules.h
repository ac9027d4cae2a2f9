// Stand-ins for the program's modules, which are separate shared objects because their dependencies are slow
// to load. A stand-in is in the host table from the start and loads its module on first use; that is tried
// once, and if it fails, so does every use. Interface thread only; destroyed before the application object,
// and after everything created through them.
#pragma once

#include <QLoggingCategory>
#include <QString>

#include <memory>
#include <utility>

#include "platform/media_platform.h"
#include "platform/wave_out.h"
#include "platform/web_pages.h"

namespace ql240 {

// The module folder of a program in `programFolder`: lib/ql240 next to it, both in the build tree and
// installed.
QString moduleFolderOf(const QString& programFolder);

// Calls the module's factory on first use.
template <typename Interface>
class LazyModule {
public:
    LazyModule(QString file, const char* factory, const QLoggingCategory& (*log)())
        : m_file(std::move(file)), m_factory(factory), m_log(log) {}

    // Null without the module.
    Interface* get();

private:
    QString m_file;
    const char* m_factory;
    const QLoggingCategory& (*m_log)();
    bool m_tried = false;
    std::unique_ptr<Interface> m_made;
};

// Also the sound output's volume, which is that of the program's clips.
class MediaModule final : public MediaPlatform, public WaveOut {
public:
    explicit MediaModule(const QString& folder);

    // kStatusClassNotRegistered without the module.
    Status CoCreateInstance(const Guid& classId, IUnknown* outer, ClassContext context, const Guid& iid,
                            void** object) override;
    void warmUp() override;
    // Doesn't load the module: the volume is kept until something else does.
    void setOutputVolume(std::uint16_t left, std::uint16_t right) override;
    std::uint32_t waveOutGetVolume(std::uint32_t device, std::uint32_t* volume) override;
    std::uint32_t waveOutSetVolume(std::uint32_t device, std::uint32_t volume) override;

private:
    MediaPlatform* loaded();

    LazyModule<MediaPlatform> m_module;
    MediaPlatform* m_loaded = nullptr;
    std::uint16_t m_left = 0xFFFF;
    std::uint16_t m_right = 0xFFFF;
};

class MapModule final : public WebPages {
public:
    explicit MapModule(const QString& folder);

    std::unique_ptr<WebPage> createPage(QWidget* parent, WebPageEvents events) override;

private:
    LazyModule<WebPages> m_module;
};

} // namespace ql240
