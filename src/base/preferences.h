// The viewer's preferences: a few strings in the user's ini file (UTF-8). Every call opens the file again,
// and a write is on disk when the call returns. Callable from any thread; threads don't block each other.
#pragma once

#include <QString>
#include <cstdint>

namespace ql240 {

// <configuration folder>/QL240/local.ini. Creates the folder if it is missing; empty when that fails.
QString localIniPath();

// Reading sets `value` and returns true when the key is stored; otherwise it leaves `value` unchanged and
// returns false. The stored string is returned unchecked, even if it is not a known value. Writing stores
// nothing, silently, when the file cannot be written.
bool readPreference(const char* key, QString& value);
void writePreference(const char* key, const QString& value);

// The code of an interface language (base/ui_texts.h).
inline bool readLanguage(QString& value) {
    return readPreference("global/language", value);
}
inline void writeLanguage(const QString& value) {
    writePreference("global/language", value);
}

// "km" or "mph".
inline bool readSpeedUnit(QString& value) {
    return readPreference("global/speedkm", value);
}
inline void writeSpeedUnit(const QString& value) {
    writePreference("global/speedkm", value);
}

inline bool readLastFolder(QString& value) {
    return readPreference("storage/lastfolder", value);
}
inline void writeLastFolder(const QString& value) {
    writePreference("storage/lastfolder", value);
}

// The URL template of the map's street tiles. There is no writer: users edit the file.
inline bool readTileUrl(QString& value) {
    return readPreference("map/tileurl", value);
}

// The unit of the speeds shown: kilometres if the key is missing or "km", miles for any other value.
enum class SpeedUnit : std::int32_t { Kmh = 1, Mph = 2 };
SpeedUnit storedSpeedUnit();
void storeSpeedUnit(SpeedUnit unit);

} // namespace ql240
