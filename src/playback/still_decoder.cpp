#include "playback/still_decoder.h"

#include <QScopedValueRollback>

#include "platform/host.h"
#include "platform/media_platform.h"
#include "platform/waits.h"
#include "playback/player.h"

namespace ql240 {
namespace {

constexpr std::chrono::milliseconds kPollInterval{5};
constexpr int kMostPolls = 2 * waits::kSeek / kPollInterval;

} // namespace

StillDecoder::StillDecoder(QObject* parent) : QObject(parent) {
    m_poll.setInterval(kPollInterval);
    connect(&m_poll, &QTimer::timeout, this, &StillDecoder::look);
}

StillDecoder::~StillDecoder() = default;

void StillDecoder::read(const QString& path, std::int32_t ms, Then then) {
    m_requests.push_back({path, ms, std::move(then)});
    if (m_requests.size() == 1)
        QTimer::singleShot(0, this, &StillDecoder::begin);
}

void StillDecoder::forget() {
    m_requests.clear();
    m_poll.stop();
    m_player.reset();
    m_clip.reset();
}

void StillDecoder::begin() {
    if (m_requests.empty() || m_poll.isActive())
        return;
    const Request& next = m_requests.front();
    if (!openClip(next.path)) {
        finish({});
        return;
    }
    m_player->pause();
    m_player->seek(next.ms);
    m_polls = 0;
    m_poll.start();
}

bool StillDecoder::openClip(const QString& path) {
    if (m_clip && m_clip->file().filePath() == path)
        return true;
    if (!host().media->opensSeveral())
        return false;
    // The number belongs to the clip that the user watches.
    const QScopedValueRollback streams(Player::videoStreamCount);
    m_player = std::make_unique<Player>();
    m_clip = std::make_unique<Clip>(QFileInfo(path));
    if (m_player->open(m_clip.get(), {}, {}))
        return true;
    m_clip.reset();
    return false;
}

void StillDecoder::look() {
    if (!m_player->isSettled() && ++m_polls < kMostPolls)
        return;
    m_poll.stop();
    Pictures pictures;
    for (int i = 0; i < Player::kStreams; ++i) {
        if (!m_player->videoSize(i).isEmpty())
            pictures[static_cast<std::size_t>(i)] = m_player->frame(i, true).copy();
    }
    finish(pictures);
}

// Closes the clip if nothing else is wanted of it.
void StillDecoder::finish(const Pictures& pictures) {
    const Then then = std::move(m_requests.front().then);
    m_requests.pop_front();
    if (m_requests.empty())
        forget();
    else
        QTimer::singleShot(0, this, &StillDecoder::begin);
    then(pictures);
}

} // namespace ql240
