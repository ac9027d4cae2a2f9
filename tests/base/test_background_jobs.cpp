// Which answers count, and how long jobs may keep the interface thread waiting.
#include <QTest>

#include "support/held_jobs.h"

using namespace ql240;

namespace {

// Runs nothing, and lets the time of each wait pass.
class DeadReader : public JobRunner {
public:
    DeadReader() { setJobRunner(this); }
    ~DeadReader() override { setJobRunner(nullptr); }

    void run(std::function<void()>) override {}
    bool wait(QDeadlineTimer until, const std::function<bool()>& isDone) override {
        waited += until.remainingTime();
        while (!until.hasExpired())
            QThread::usleep(100);
        return isDone();
    }

    qint64 waited = 0;
};

} // namespace

class TestBackgroundJobs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void forgottenWhileDelivering() {
        HeldJobs held;
        BackgroundJobs jobs;
        int ended = 0;
        for (int i = 0; i < 2; ++i)
            jobs.start([] {},
                       [&] {
                           ++ended;
                           jobs.forget();
                       });
        held.answer();
        QCOMPARE(ended, 1);
    }
    void waitsOfOneTurnShareTheirTime() {
        DeadReader reader;
        std::array<BackgroundJobs, 3> askers;
        for (BackgroundJobs& asker : askers) {
            asker.start([] {}, [] {});
            QVERIFY(!asker.wait(std::chrono::milliseconds(80)));
        }
        QVERIFY2(reader.waited <= kLongestStandstill.count(), qPrintable(QString::number(reader.waited)));

        QCoreApplication::processEvents();
        QVERIFY(!askers[0].wait(std::chrono::milliseconds(80)));
        QVERIFY(reader.waited > kLongestStandstill.count());
    }
};

QTEST_GUILESS_MAIN(TestBackgroundJobs)
#include "test_background_jobs.moc"
