// How long the program waits, and for what. Every folder may include this.
#pragma once

#include <chrono>

namespace ql240::waits {

using std::chrono::milliseconds;

// --- Waits of the interface thread, for jobs that usually finish at once ---
//
// What finishes in time shows without flicker, everything else when it finishes. Between two iterations of
// the event loop all of these together take at most 100 ms (kLongestStandstill).

// A folder of the folder dialog's tree, its top-level places, or a path typed there.
inline constexpr milliseconds kTreeFolder{15};
// Whether OK is enabled for the selected folder; waits after the one above in the same iteration.
inline constexpr milliseconds kRecordingsInFolder{30};
// Half of the 100 ms, since the folder's first clip opens in the same iteration.
inline constexpr milliseconds kFolderListing{50};
// Whether dragged data can be dropped, checked when the drag enters the window.
inline constexpr milliseconds kDroppedPaths{50};
// Half of the 100 ms: the model is one line on the dashboard, and the clip opens without it.
inline constexpr milliseconds kCardModel{50};
// The settings dialog's drives and their contents before it is first painted, and the end of a save.
inline constexpr milliseconds kCardAnswer{80};
// All that is left of the 100 ms: usually the dashboard's track is there with the clip's first picture.
inline constexpr milliseconds kSensorTrack{100};
// All that is left of the 100 ms: after that, the user sees the first picture change when it is adjusted.
inline constexpr milliseconds kPictureSettings{100};

// --- Waits until the program goes on without an answer ---

// A listing that takes longer shows a note with a Cancel button.
inline constexpr milliseconds kBusyNote{400};
// A move among decoded frames takes about 10 ms; one that hangs is repeated as a seek.
inline constexpr milliseconds kMove{1000};
// A drive that takes longer to read counts as not answering: OK no longer waits for it.
inline constexpr milliseconds kSilentDrive{2000};
// A seek or state change that never completes must not block later ones forever.
inline constexpr milliseconds kSeek{3000};

} // namespace ql240::waits
