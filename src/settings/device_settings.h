// The camera's settings on one card: a short-lived value, read from the card's settings folder, changed, and
// saved. Reading and saving block on the card (BackgroundJobs keeps that off the interface thread). Each
// object belongs to one thread at a time.
#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

#include "settings/setting_values.h"

namespace ql240 {

class CardFiles;
class CardFolder;
CardFiles& systemCardFiles();

class DeviceSettings : public SettingValues {
public:
    // Starts with the defaults; unless `folder` is empty, reads "setting.dat" and then the byte files over
    // them.
    explicit DeviceSettings(const QString& folder, CardFiles& files = systemCardFiles());
    // The same for the settings folder of a drive that is already open; the defaults if it isn't.
    explicit DeviceSettings(std::shared_ptr<CardFolder> drive, const QByteArray& name = "setting");

    // Reads "setting.dat"; false if it doesn't open.
    bool loadText();
    // Reads the byte files; true only if both the brightness and the contrast file opened.
    bool loadBytes();

    void setTime(bool set, const QString& clockText);

    // Writes the byte files and, if the clock is to be set, "settime.dat". At any moment each file on the
    // card is either the old or the new one; a file that can't be written is skipped. Returns whether
    // "settime.dat" opened.
    [[nodiscard]] bool save();

    bool setsClock() const { return m_setsClock; }
    const QString& clockText() const { return m_clockText; } // "yyyy-MM-dd-hh-mm-ss"
    QString folder() const;

private:
    bool loadText(CardFolder& folder);
    bool loadBytes(CardFolder& folder);
    CardFolder madeFolder();

    bool m_setsClock = false;
    QString m_clockText;
    std::shared_ptr<CardFolder> m_drive; // null without a card
    QByteArray m_name;
};

} // namespace ql240
