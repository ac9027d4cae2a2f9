#include "platform/webengine/engine_pages.h"

#include "platform/webengine/engine_page.h"

#include <QQuickWindow>
#include <QStandardPaths>
#include <QWebEngineProfile>
#include <algorithm>
#include <array>

namespace ql240 {

namespace {

constexpr int kCacheBytes = 64 << 20;

// Tile servers require an identifying user agent and block fake browser names.
constexpr char kUserAgent[] = "QL240-Viewer/" QL240_VERSION " (Linux desktop)";

QtMessageHandler g_forward = nullptr;

// Start-up messages about the choice of a renderer and the missing graphics driver, which was switched off on
// purpose. Qt 6.8 tries OpenGL, then Vulkan. All other messages are passed on.
bool isChatter(const QMessageLogContext& context, const QString& text) {
    constexpr std::array beginnings{
        "No suitable graphics backend found",
        "QXcbIntegration: Cannot create platform",
        "This plugin does not support createPlatform",
        "QRhiGles2: Failed to create",
        "Failed to create Vulkan instance",
        "Failed to create platform Vulkan instance",
        "QVulkanInstance: Failed to initialize",
        "Unable to detect GPU vendor",
    };
    return qstrcmp(context.category, "qt.webenginecontext") == 0 ||
           std::any_of(beginnings.begin(), beginnings.end(),
                       [&](const char* beginning) { return text.startsWith(QLatin1String(beginning)); });
}

void dropChatter(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!isChatter(context, text))
        g_forward(type, context, text);
}

std::unique_ptr<QWebEngineProfile> makeProfile() {
    auto profile = std::make_unique<QWebEngineProfile>(QStringLiteral("map"));
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    profile->setCachePath(cache + QLatin1String("/QL240/map"));
    profile->setPersistentStoragePath(cache + QLatin1String("/QL240/map-state"));
    profile->setHttpCacheType(QWebEngineProfile::DiskHttpCache);
    profile->setHttpCacheMaximumSize(kCacheBytes);
    profile->setPersistentCookiesPolicy(QWebEngineProfile::NoPersistentCookies);
    profile->setHttpUserAgent(QLatin1String(kUserAgent));
    return profile;
}

} // namespace

EnginePages::EnginePages() {
    // Drawing by the CPU takes a quarter less time and 15 to 25 MB less where there is no GPU, and a map of
    // this size never needs one.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    MapFiles::registerScheme();
    g_forward = qInstallMessageHandler(dropChatter);
    m_profile = makeProfile();
    m_profile->installUrlSchemeHandler(MapFiles::scheme(), &m_files);
    m_profile->setUrlRequestInterceptor(&m_requests);
}

EnginePages::~EnginePages() {
    qInstallMessageHandler(g_forward);
}

std::unique_ptr<WebPage> EnginePages::createPage(QWidget* parent, WebPageEvents events) {
    m_requests.setNetwork(network);
    return std::make_unique<EnginePage>(*m_profile, parent, std::move(events));
}

} // namespace ql240
