// The modules that are loaded on first use, installed and missing.
#include <QTest>

#include "platform/modules.h"

using namespace ql240;

class TestModules : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void volumeSetBeforeTheModuleIsLoadedHolds() {
        MediaModule media(QStringLiteral(QL240_TEST_MODULE));
        media.setOutputVolume(1, 2);
        media.setOutputVolume(3, 4);
        QCOMPARE(answerOf(media), 0x304);
        media.warmUp();
        QCOMPARE(answerOf(media), 0x10304);
        media.setOutputVolume(5, 6);
        QCOMPARE(answerOf(media), 0x506);
    }

    void missingModulesFailEveryTime() {
        const QString nowhere = QStringLiteral("/nonexistent");
        MediaModule media(nowhere);
        media.warmUp();
        media.setOutputVolume(1, 2);
        QCOMPARE(answerOf(media), kStatusClassNotRegistered);
        QCOMPARE(answerOf(media), kStatusClassNotRegistered);
        QVERIFY(!MapModule(nowhere).createPage(nullptr, {}));
    }

private:
    static Status answerOf(MediaPlatform& media) {
        void* object = &media;
        const Status answer = media.CoCreateInstance(class_id::kFilterGraph, nullptr,
                                                     ClassContext::InprocServer, Guid(), &object);
        return object ? kStatusFail : answer;
    }
};

QTEST_MAIN(TestModules)
#include "test_modules.moc"
