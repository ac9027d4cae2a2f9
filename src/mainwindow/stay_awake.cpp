#include "mainwindow/stay_awake.h"

#include "platform/host.h"
#include "platform/inhibitor.h"

namespace ql240 {

StayAwake::StayAwake(ClipSession& session) : QObject(&session) {
    connect(&session, &ClipSession::phaseChanged, this, &StayAwake::follow);
}

void StayAwake::follow(ClipSession::Phase phase) {
    Inhibitor* inhibitor = host().inhibitor;
    if (phase == ClipSession::Phase::Playing && inhibitor)
        m_hold = inhibitor->keepAwake(tr("A clip is playing"));
    else
        m_hold.reset();
}

} // namespace ql240
