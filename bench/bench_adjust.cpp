// The picture adjustment of a 1080p frame against the scalar loop, with the same compiler and options.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "playback/image_adjust.h"

using namespace ql240;

namespace {

constexpr std::size_t kFrameBytes = 1920 * 1080 * 2;
constexpr ImageAdjust kAdjust{20, 120};
constexpr int kRuns = 31;
constexpr double kAsked = 8;

using Adjust = void (*)(std::uint8_t*, std::size_t, const ImageAdjust&);

// Median time of one frame in ms.
double timed(Adjust adjust) {
    std::vector<std::uint8_t> frame(kFrameBytes);
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) {
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = static_cast<std::uint8_t>(i * 2654435761U >> 13);
        const auto start = std::chrono::steady_clock::now();
        adjust(frame.data(), frame.size(), kAdjust);
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + kRuns / 2, times.end());
    return times[kRuns / 2];
}

} // namespace

int main() {
    const double plain = timed(adjustYuy2Scalar);
    const double fast = timed(adjustYuy2);
    std::printf("adjusting a 1080p frame, plain loop / here\t%.1f\t>=%.0f\t%.2f, %.2f\n", plain / fast,
                kAsked, fast, plain);
    return 0;
}
