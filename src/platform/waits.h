// How long the program waits, and for what. Every folder may include it.
#pragma once

#include <chrono>

namespace ql240::waits {

using std::chrono::milliseconds;

// --- The interface thread, for jobs that mostly answer at once ---
//
// What has answered by then shows without a flicker, anything else when it answers. Between two turns of the
// event loop all of these together take 100 ms at most (kLongestStandstill).

// A folder of the folder dialog's tree, its places and a path typed there.
inline constexpr milliseconds kTreeFolder{15};
// Follows the one above in the same turn: whether the folder selected may be confirmed.
inline constexpr milliseconds kRecordingsInFolder{30};
// Half a turn, since the folder's first clip opens in the same one.
inline constexpr milliseconds kFolderListing{50};
// What the pointer drags is looked at on entering the window.
inline constexpr milliseconds kDroppedPaths{50};
// Half a turn: the model is a line on the dashboard, the clip opens without it.
inline constexpr milliseconds kCardModel{50};
// The settings dialog's drives and contents, ahead of its first picture, and the end of a save.
inline constexpr milliseconds kCardAnswer{80};
// All that is left of the turn: later, the first picture is adjusted before the user's eyes.
inline constexpr milliseconds kPictureSettings{100};

// --- Until the program goes on without an answer ---

// A listing that lasts longer shows a note with a way to cancel it.
inline constexpr milliseconds kBusyNote{400};
// A move among the pictures takes some 10 ms; one that gets stuck may still arrive as a seek.
inline constexpr milliseconds kMove{1000};
// A drive that is read for longer counts as one that doesn't answer: OK no longer waits for it.
inline constexpr milliseconds kSilentDrive{2000};
// A seek or a change of state that never arrives doesn't hold later ones for ever.
inline constexpr milliseconds kSeek{3000};

} // namespace ql240::waits
