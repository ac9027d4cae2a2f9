#include <QSignalSpy>
#include <QTest>

#include "clips/clip.h"
#include "clips/clip_session.h"

using namespace ql240;
using Phase = ClipSession::Phase;

class TestClipSession : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void phasesFollowTheOpenClipOnly() {
        const Clip clip{QFileInfo("/c/REC_2013_04_05_12_30_00.mp4")};
        const Clip other{QFileInfo("/c/other.mp4")};
        ClipSession session;
        QList<Phase> phases;
        connect(&session, &ClipSession::phaseChanged, this, [&](Phase phase) {
            QCOMPARE(session.clip() != nullptr, phase != Phase::Closed);
            phases << phase;
        });
        const QSignalSpy opened(&session, &ClipSession::opened);
        const QSignalSpy closed(&session, &ClipSession::closed);
        const QSignalSpy tracks(&session, &ClipSession::trackFound);
        const QSignalSpy moved(&session, &ClipSession::moved);

        session.find(&clip, true, 5); // not open yet: the player is ahead
        session.findTrack(&clip);
        session.close();
        QVERIFY(phases.isEmpty());
        session.open(clip);
        QCOMPARE(session.start(), QDateTime(QDate(2013, 4, 5), QTime(12, 30)));
        for (const qint64 position : {0, 100, 100})
            session.find(&clip, true, position);
        session.find(&other, false, 7);
        session.find(nullptr, false, 7);
        session.findTrack(&other);
        session.findTrack(&clip);
        QCOMPARE(session.positionMs(), 100);
        session.find(&clip, false, 90);
        QCOMPARE(moved, (QList<QVariantList>{{100}, {90}}));
        session.open(other);
        QVERIFY(!session.start().isValid());
        QCOMPARE(session.positionMs(), 0);
        session.find(&clip, true, 50); // late
        session.close();
        session.close();
        session.find(&other, true, 50);
        QCOMPARE(phases, (QList{Phase::Paused, Phase::Playing, Phase::Paused, Phase::Closed, Phase::Paused,
                                Phase::Closed}));
        QCOMPARE(tracks.count(), 1);
        QCOMPARE(opened.count(), 2);
        QCOMPARE(closed.count(), 2);
    }
};

QTEST_GUILESS_MAIN(TestClipSession)
#include "test_clip_session.moc"
