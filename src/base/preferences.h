// The viewer's preferences: a few strings in the user's ini file (UTF-8). Every call opens the file again,
// and a write is on disk when the call returns. Callable from any thread; threads don't block each other.
#pragma once

#include <QString>
#include <cstdint>

namespace ql240 {

// <configuration folder>/QL240/local.ini. Creates the folder if it is missing; empty when that fails.
QString localIniPath();

// Each sets `value` and returns true when the key is stored; otherwise leaves `value` unchanged and returns
// false. The stored string is returned unchecked, even if it is not a known value.
bool readLanguage(QString& value);
bool readSpeedUnit(QString& value);
bool readLastFolder(QString& value);
// The URL template of the map's street tiles. There is no writer: users edit the file.
bool readTileUrl(QString& value);

// Each stores nothing, silently, when the file cannot be written.
void writeLanguage(const QString& value);
void writeSpeedUnit(const QString& value);
void writeLastFolder(const QString& value);

// The unit of the speeds shown: kilometres if the key is missing or "km", miles for any other value.
enum class SpeedUnit : std::int32_t { Kmh = 1, Mph = 2 };
SpeedUnit storedSpeedUnit();
void storeSpeedUnit(SpeedUnit unit);

} // namespace ql240
