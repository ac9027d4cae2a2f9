// The viewer's own preferences: a few texts in an ini file of the user's (UTF-8). Every call opens the file
// afresh, and a write is on disk when the call returns. Any thread may call, none is kept waiting for
// another.
#pragma once

#include <QString>
#include <cstdint>

namespace ql240 {

// <configuration folder>/QL240/local.ini; makes the folder where it is missing. Empty when it cannot be made.
QString localIniPath();

// Readers fill `value` and return true when the key is stored; otherwise they leave it alone and return
// false. What is stored is handed out as it is, known value or not.
bool readLanguage(QString& value);
bool readSpeedUnit(QString& value);
bool readLastFolder(QString& value);
// The address of the map's street tiles; there is no writer, users edit the file.
bool readTileUrl(QString& value);

// Writers store nothing, silently, where the file cannot be written.
void writeLanguage(const QString& value);
void writeSpeedUnit(const QString& value);
void writeLastFolder(const QString& value);

// The unit of the speeds shown. Everything stored but "km" means miles an hour, nothing stored kilometres.
enum class SpeedUnit : std::int32_t { Kmh = 1, Mph = 2 };
SpeedUnit storedSpeedUnit();
void storeSpeedUnit(SpeedUnit unit);

} // namespace ql240
