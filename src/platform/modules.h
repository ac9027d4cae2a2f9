// Stand-ins for what the program's modules make: shared objects of their own, because what they link is slow
// to load. A stand-in takes its place in the host table from the start and loads its module when it is first
// used; that is tried once, and without the module every use fails. Interface thread only; gone before the
// application object, after everything that came from them.
#pragma once

#include <QLoggingCategory>
#include <QString>

#include <memory>
#include <utility>

#include "platform/media_platform.h"
#include "platform/wave_out.h"
#include "platform/web_pages.h"

namespace ql240 {

// The folder of the modules that belong to a program in `programFolder`: in the build tree as installed,
// lib/ql240 beside the program's own folder.
QString moduleFolderOf(const QString& programFolder);

// What the factory of a module makes when it is first asked for.
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

// The sound output's volume, too: that of the program's own clips.
class MediaModule final : public MediaPlatform, public WaveOut {
public:
    explicit MediaModule(const QString& folder);

    // kStatusClassNotRegistered without the module.
    Status CoCreateInstance(const Guid& classId, IUnknown* outer, ClassContext context, const Guid& iid,
                            void** object) override;
    void warmUp() override;
    // Loads nothing: until the module is there, the volume is kept for it.
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
