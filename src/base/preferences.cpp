#include "base/preferences.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QVariant>

namespace ql240 {
namespace {

constexpr QLatin1StringView kKilometres("km");
constexpr QLatin1StringView kMiles("mph");

// QSettings reads an unquoted comma, as in a file edited by hand, as a list.
QString asText(const QVariant& value) {
    return value.typeId() == QMetaType::QStringList ? value.toStringList().join(QStringLiteral(", "))
                                                    : value.toString();
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

bool readPreference(const char* key, QString& value) {
    const QString path = localIniPath();
    if (path.isEmpty())
        return false;
    const QSettings settings(path, QSettings::IniFormat);
    const QVariant stored = settings.value(QLatin1StringView(key));
    if (!stored.isValid())
        return false;
    value = asText(stored);
    return true;
}

void writePreference(const char* key, const QString& value) {
    const QString path = localIniPath();
    if (path.isEmpty())
        return;
    QSettings settings(path, QSettings::IniFormat);
    settings.setValue(QLatin1StringView(key), value);
    settings.sync();
}

SpeedUnit storedSpeedUnit() {
    QString unit;
    return !readSpeedUnit(unit) || unit == kKilometres ? SpeedUnit::Kmh : SpeedUnit::Mph;
}
void storeSpeedUnit(SpeedUnit unit) {
    writeSpeedUnit(unit == SpeedUnit::Kmh ? kKilometres : kMiles);
}

} // namespace ql240
