// Keeps the desktop awake while the session's clip plays, whatever the window shows. Owned by the session;
// interface thread only.
#pragma once

#include <memory>

#include "clips/clip_session.h"

namespace ql240 {

class StayAwake : public QObject {
    Q_OBJECT
public:
    explicit StayAwake(ClipSession& session);

private:
    void follow(ClipSession::Phase phase);

    std::shared_ptr<void> m_hold;
};

} // namespace ql240
