// Rows of decoded frames, and shrinking rows of pixels.
#include <QTest>

#include <algorithm>
#include <random>
#include <vector>

#include "platform/gstreamer/frame_row.h"
#include "platform/gstreamer/shrink_row.h"
#include "platform/limits.h"

using namespace ql240::gstreamer;

namespace {

// Times in ms.
struct Row : FrameRow {
    void put(int begin, int duration = 100, int wanted = 0, gsize size = 4) {
        static std::uint8_t bytes[4]; // never read
        GstBuffer* frame =
            gst_buffer_new_wrapped_full(GST_MEMORY_FLAG_READONLY, bytes, size, 0, size, nullptr, nullptr);
        GST_BUFFER_PTS(frame) = begin * GST_MSECOND;
        GST_BUFFER_DURATION(frame) = duration * GST_MSECOND;
        add(BufferHandle(frame), wanted * GST_MSECOND);
    }
    QString shownAt(int ms) const {
        const auto shown = at(ms * GST_MSECOND);
        return shown
                   ? QStringLiteral("%1 to %2").arg(shown->begin / GST_MSECOND).arg(shown->end / GST_MSECOND)
                   : QStringLiteral("to come");
    }
    bool reaches(int ms) const { return reachesBackTo(ms * GST_MSECOND); }
};

} // namespace

class TestFrameRows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { gst_init(nullptr, nullptr); }

    void frameLastsUntilTheNextOne() {
        Row row;
        QCOMPARE(row.shownAt(0), "to come");
        for (const int begin : {100, 200, 301, 600})
            row.put(begin);
        const std::pair<int, const char*> shown[] = {
            {50, "100 to 200"},  {100, "100 to 200"}, {199, "100 to 200"}, {300, "301 to 401"},
            {450, "301 to 600"}, {600, "600 to 700"}, {700, "to come"}};
        for (const auto& [ms, expected] : shown)
            QCOMPARE(row.shownAt(ms), QLatin1String(expected));
        QCOMPARE(row.last(9).begin, GstClockTime(600 * GST_MSECOND));
        QCOMPARE(row.last(9).end, GstClockTime(9));
    }

    void oldestGoFirst() {
        Row row;
        QVERIFY(!row.reaches(1000));
        for (int i = 0; i < 10; ++i)
            row.put(100 * i);
        QVERIFY(row.reaches(200) && !row.reaches(199));
        for (const int begin : {1000, 1100, 1200}) // each as large as the limit of the row
            row.put(begin, 100, 0, ql240::limits::kFrameRowBytes);
        QVERIFY(row.reaches(1100) && !row.reaches(1099));
    }

    void onlyTheNewestStaysFarBeforeWhatIsWanted() {
        Row row;
        row.put(0, 100, 900);
        row.put(100, 100, 900);
        QVERIFY(row.reaches(0));
        row.put(200, 100, 1101);
        QVERIFY(row.reaches(200) && !row.reaches(199));
    }

    void shrunkRowIsTheScalarOne() {
        std::mt19937 random(5);
        std::vector<std::uint8_t> upper(800);
        std::vector<std::uint8_t> lower(upper.size());
        for (auto* row : {&upper, &lower})
            std::generate(row->begin(), row->end(), [&] { return static_cast<std::uint8_t>(random()); });
        for (const RgbMatrix& matrix : {kStudio601, kStudio709, kFull601, kFull709}) {
            for (int width = 1; width < 70; ++width) {
                std::vector<std::int32_t> pairs(static_cast<std::size_t>(width));
                std::generate(pairs.begin(), pairs.end(), [&] { return static_cast<int>(random() % 200); });
                std::vector<std::uint32_t> vector(pairs.size() + 1, 7); // one more, which must not change
                std::vector<std::uint32_t> scalar = vector;
                shrinkRow(upper.data(), lower.data(), pairs.data(), width, matrix, vector.data());
                shrinkRowScalar(upper.data(), lower.data(), pairs.data(), width, matrix, scalar.data());
                QCOMPARE(vector, scalar);
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestFrameRows)
#include "test_frame_rows.moc"
