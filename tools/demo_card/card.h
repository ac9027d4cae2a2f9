// The demo card: the folders and files of the camera's memory card.
//
//   VIDEO/                the clips
//   setting/              setting.dat and a byte file for each setting
//   update/version.txt
//   IMAGE/
#pragma once

#include <QString>

#include "demo_card/clip_maker.h"

namespace ql240::demo {

inline constexpr char kClipFolderName[] = "VIDEO";

enum class CardState { Missing, EmptyFolder, DemoCard, SomethingElse };
CardState cardStateOf(const QString& folder);

// Writes everything except the clips into an existing folder.
bool writeCardFiles(const QString& folder);

// Makes a whole card in place of what is there, which stays untouched unless everything works. Returns an
// error text, empty on success.
[[nodiscard]] QString makeCard(const QString& folder, const QList<ClipPlan>& clips, Progress& progress);

} // namespace ql240::demo
