// Decodes single pictures of clips, apart from the player that the user watches: at native size, without
// picture adjustment and without a sound. One request after the other; opening a clip takes as long as in the
// player. Interface thread only.
#pragma once

#include <QImage>
#include <QTimer>

#include <array>
#include <deque>
#include <functional>
#include <memory>

#include "clips/clip.h"

namespace ql240 {

class Player;

class StillDecoder : public QObject {
    Q_OBJECT
public:
    // Of both video streams; null for a stream that the clip doesn't have, or if it doesn't open.
    using Pictures = std::array<QImage, 2>;
    using Then = std::function<void(const Pictures&)>;

    explicit StillDecoder(QObject* parent = nullptr);
    ~StillDecoder() override;

    // `then` is called later with the pictures shown at this time, unless forget() is called first.
    void read(const QString& path, std::int32_t ms, Then then);
    void forget();
    bool isIdle() const { return m_requests.empty(); }

private:
    struct Request {
        QString path;
        std::int32_t ms;
        Then then;
    };

    void begin();
    bool openClip(const QString& path);
    void look();
    void finish(const Pictures& pictures);

    std::deque<Request> m_requests; // the first one is under way
    std::unique_ptr<Clip> m_clip;   // the one open
    std::unique_ptr<Player> m_player;
    QTimer m_poll;
    int m_polls = 0;
};

} // namespace ql240
