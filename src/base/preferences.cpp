#include "base/preferences.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QVariant>

namespace ql240 {
namespace {

constexpr QLatin1StringView kLanguageKey("global/language");
constexpr QLatin1StringView kSpeedUnitKey("global/speedkm");
constexpr QLatin1StringView kLastFolderKey("storage/lastfolder");
constexpr QLatin1StringView kTileUrlKey("map/tileurl");
constexpr QLatin1StringView kKilometres("km");
constexpr QLatin1StringView kMiles("mph");

// QSettings reads an unquoted comma, as in a file edited by hand, as a list.
QString asText(const QVariant& value) {
    return value.typeId() == QMetaType::QStringList ? value.toStringList().join(QStringLiteral(", "))
                                                    : value.toString();
}

bool readText(QLatin1StringView key, QString& value) {
    const QString path = localIniPath();
    if (path.isEmpty())
        return false;
    const QSettings settings(path, QSettings::IniFormat);
    const QVariant stored = settings.value(key);
    if (!stored.isValid())
        return false;
    value = asText(stored);
    return true;
}

void writeText(QLatin1StringView key, const QString& value) {
    const QString path = localIniPath();
    if (path.isEmpty())
        return;
    QSettings settings(path, QSettings::IniFormat);
    settings.setValue(key, value);
    settings.sync();
}

} // namespace

QString localIniPath() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (base.isEmpty())
        return {};
    const QString folder = base + QStringLiteral("/QL240");
    if (!QFileInfo(folder).isDir())
        QDir().mkpath(folder);
    return QFileInfo(folder).isDir() ? folder + QStringLiteral("/local.ini") : QString();
}

bool readLanguage(QString& value) {
    return readText(kLanguageKey, value);
}
bool readSpeedUnit(QString& value) {
    return readText(kSpeedUnitKey, value);
}
bool readLastFolder(QString& value) {
    return readText(kLastFolderKey, value);
}
bool readTileUrl(QString& value) {
    return readText(kTileUrlKey, value);
}

SpeedUnit storedSpeedUnit() {
    QString unit;
    return !readSpeedUnit(unit) || unit == kKilometres ? SpeedUnit::Kmh : SpeedUnit::Mph;
}
void storeSpeedUnit(SpeedUnit unit) {
    writeSpeedUnit(unit == SpeedUnit::Kmh ? kKilometres : kMiles);
}

void writeLanguage(const QString& value) {
    writeText(kLanguageKey, value);
}
void writeSpeedUnit(const QString& value) {
    writeText(kSpeedUnitKey, value);
}
void writeLastFolder(const QString& value) {
    writeText(kLastFolderKey, value);
}

} // namespace ql240
