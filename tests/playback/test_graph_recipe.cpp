// The two recipes step by step, and what is left when a step fails.
#include <QTest>

#include "playback/graph_recipe.h"
#include "support/fake_media.h"

using namespace ql240;

Q_DECLARE_METATYPE(ql240::FakeClip)

namespace {

// "|" and line ends part the steps.
constexpr char16_t kAviSteps[] =
    u"create file source|add File Source (Async.)|load /c/\uB179\uD654 1.avi|"
    uR"(create AVI splitter|add AVI Splitter
create video decoder|add ffdshow Video Decoder|create video renderer|add Video Renderer
create grabber|add SampleGrabber|grabber 0 media type|grabber 0 buffers|create converter|add AVI Decompressor
join File Source (Async.):Output > AVI Splitter:Input pin
join AVI Splitter:Stream 00 > ffdshow Video Decoder:In
join ffdshow Video Decoder:Out > SampleGrabber:Input
join SampleGrabber:Output > AVI Decompressor:XForm In
join AVI Decompressor:XForm Out > Video Renderer:VMR Input0
render AVI Splitter:Stream 01)";

constexpr char16_t kMp4FirstSteps[] =
    u"create file source|add File Source (Async.)|load /c/\uB179\uD654 1.avi|"
    uR"(create MP4 splitter|add B2 - Splitter
join File Source (Async.):Output > B2 - Splitter:Input)";

constexpr char16_t kMp4Steps[] =
    uR"(create audio decoder|add Audio Decoder|create sound output|add Default DirectSound Device
create video decoder|add ffdshow Video Decoder|create video decoder|add ffdshow Video Decoder
create video renderer|add Video Renderer|create video renderer|add Video Renderer 0003
create grabber|add SampleGrabber|grabber 0 media type|grabber 0 buffers|create converter|add AVI Decompressor
create grabber|add SampleGrabber|grabber 1 media type|grabber 1 buffers|create converter|add AVI Decompressor
join B2 - Splitter:soun > Audio Decoder:In
join Audio Decoder:Out > Default DirectSound Device:Audio Input pin (rendered)
join B2 - Splitter:vide > ffdshow Video Decoder:In
join ffdshow Video Decoder:Out > SampleGrabber:Input
join SampleGrabber:Output > AVI Decompressor:XForm In
join AVI Decompressor:XForm Out > Video Renderer:VMR Input0)";

constexpr char16_t kMp4SecondStream[] =
    uR"(join B2 - Splitter:VIDE > ffdshow Video Decoder 2:In
join ffdshow Video Decoder 2:Out > SampleGrabber 2:Input
join SampleGrabber 2:Output > AVI Decompressor 2:XForm In
join AVI Decompressor 2:XForm Out > Video Renderer 0003:VMR Input0)";

QStringList steps(const char16_t* text) {
    return QString::fromUtf16(text).replace(QLatin1Char('\n'), QLatin1Char('|')).split(QLatin1Char('|'));
}

enum class Container { Avi, Mp4 };

// A recipe and the graph that it fills.
struct Build {
    explicit Build(FakeMedia& platform) : media(platform), recipe(platform) {
        mayFail(media.CoCreateInstance(class_id::kFilterGraph, nullptr, ClassContext::InprocServer,
                                       IGraphBuilder::kIid, graph.putVoid()));
        media.takeLog();
    }
    Status run(Container container) {
        const std::u16string path = u"/c/\uB179\uD654 1.avi";
        return container == Container::Avi ? recipe.buildAvi(*graph.get(), path)
                                           : recipe.buildMp4(*graph.get(), path);
    }
    FakeMedia& media;
    ComPtr<IGraphBuilder> graph;
    GraphRecipe recipe;
};

} // namespace

class TestGraphRecipe : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stepsInOrder_data() {
        QTest::addColumn<Container>("container");
        QTest::addColumn<FakeClip>("clip");
        QTest::addColumn<Status>("status");
        QTest::addColumn<int>("streams");
        QTest::addColumn<QStringList>("log");
        const auto mp4 = [](std::vector<std::u16string> pins) {
            return FakeClip{.mp4Pins = std::move(pins)};
        };
        const QStringList one = steps(kMp4FirstSteps) + steps(kMp4Steps);
        const QStringList two = one + steps(kMp4SecondStream);
        const auto row = [](const char* name, Container container, const FakeClip& clip, Status status,
                            int streams, const QStringList& log) {
            QTest::newRow(name) << container << clip << status << streams << log;
        };
        row("avi", Container::Avi, {}, kStatusOk, 0, steps(kAviSteps));
        row("avi, capitals", Container::Avi, {.aviPins = {u"STREAM 00", u"STREAM 01"}}, kStatusOk, 0,
            steps(kAviSteps).replaceInStrings(QStringLiteral("Stream"), QStringLiteral("STREAM")));
        row("avi, no sound", Container::Avi, {.aviPins = {u"Stream 00"}}, kStatusInvalidPointer, 0,
            steps(kAviSteps).replaceInStrings(QStringLiteral("AVI Splitter:Stream 01"),
                                              QStringLiteral("nothing")));
        row("avi, no video", Container::Avi, {.aviPins = {u"Stream 01"}}, kStatusCannotConnect, 0,
            steps(kAviSteps).mid(0, 16) << QStringLiteral("join nothing > ffdshow Video Decoder:In"));
        row("mp4", Container::Mp4, {}, kStatusOk, 1, one);
        row("mp4, two", Container::Mp4, mp4({u"soun", u"vide", u"text", u"VIDE"}), kStatusOk, 2, two);
        row("mp4, three", Container::Mp4, mp4({u"vide", u"VIDE", u"soun", u"vide"}), kStatusOk, 3, two);
        row("mp4, no video", Container::Mp4, mp4({u"soun", u"video"}), kStatusFail, 0, steps(kMp4FirstSteps));
        row("mp4, no sound", Container::Mp4, mp4({u"vide"}), kStatusCannotConnect, 1,
            one.mid(0, one.size() - 6) << QStringLiteral("join nothing > Audio Decoder:In"));
    }

    void stepsInOrder() {
        QFETCH(Container, container);
        QFETCH(FakeClip, clip);
        FakeMedia media;
        media.clip = clip;
        Build build(media);
        QTEST(build.run(container), "status");
        QTEST(media.log, "log");
        QTEST(build.recipe.videoStreamCount(), "streams");
    }

    void everyFailingStepEndsTheRecipe_data() {
        QTest::addColumn<Container>("container");
        QTest::addColumn<QStringList>("log");
        QTest::newRow("avi") << Container::Avi << steps(kAviSteps);
        QTest::newRow("mp4") << Container::Mp4
                             << steps(kMp4FirstSteps) + steps(kMp4Steps) + steps(kMp4SecondStream);
    }

    void everyFailingStepEndsTheRecipe() {
        QFETCH(Container, container);
        QFETCH(QStringList, log);
        QStringList added;
        for (int i = 0; i < log.size(); ++i) {
            FakeMedia media;
            media.clip.mp4Pins = {u"vide", u"VIDE", u"soun"};
            {
                Build build(media);
                media.answerAt = i;
                media.answer = static_cast<Status>(0x80040300 + i);
                QCOMPARE(build.run(container), media.answer);
                QCOMPARE(media.log, log.mid(0, i + 1));
                QCOMPARE(media.filters.size(), added.size());
            }
            QCOMPARE(media.liveObjects, 0);
            if (log[i].startsWith(QLatin1String("add")))
                added += log[i];
        }
    }

    // Any status that isn't negative counts as success, and the graph alone keeps the filters.
    void successWithRemarkGoesOn() {
        FakeMedia media;
        media.answers[QString()] = 1;
        ComPtr<IGraphBuilder> graph;
        {
            Build build(media);
            graph = build.graph;
            QCOMPARE(build.run(Container::Mp4), kStatusOk);
            const auto renderer = build.recipe.takeRenderer(1);
            QVERIFY(renderer.as<IVideoWindow>());
            QVERIFY(!build.recipe.takeRenderer(1));
        }
        QCOMPARE(media.liveObjects, media.filters.size() + 1);
        graph.reset();
        QCOMPARE(media.liveObjects, 0);
    }

    void pinsThatCannotBeAskedForAreMissing() {
        FakeMedia media;
        media.answers[QStringLiteral("pins")] = kStatusFail;
        Build build(media);
        QCOMPARE(build.run(Container::Mp4), kStatusCannotConnect);
        QCOMPARE(media.log.last(), QStringLiteral("join nothing > nothing"));
    }
};

QTEST_GUILESS_MAIN(TestGraphRecipe)
#include "test_graph_recipe.moc"
