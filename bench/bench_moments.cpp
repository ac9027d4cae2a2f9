// How many impacts of 1,000 seeded drives of a minute each the shock finder finds at each rate, and how often
// it finds one that isn't there. Prints "figure<TAB>value<TAB>limit" lines; below 25 samples a second nothing
// is asked, since one sample can't tell a pothole from an impact.
#include <cstdio>

#include "support/seeded_drives.h"

int main() {
    constexpr int kDrives = 1000;
    for (const int rate : {5, 10, 20, 25, 50, 100, 200}) {
        const ql240::DriveScore score = ql240::scoreOfDrives(rate, kDrives);
        const bool isAsked = rate >= 25;
        std::printf("impacts found at %d samples a second, %%\t%.2f\t%s\t%d of %d\n", rate,
                    100.0 * score.found / score.impacts, isAsked ? ">=99" : "", score.found, score.impacts);
        std::printf("false impacts an hour at %d samples a second\t%.2f\t%s\n", rate,
                    60.0 * score.falseOnes / kDrives, isAsked ? "1" : "");
    }
    return 0;
}
