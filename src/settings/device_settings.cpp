#include "settings/device_settings.h"

#include <QDateTime>
#include <QFile>
#include <algorithm>

#include "platform/limits.h"
#include "platform/logging.h"
#include "settings/card_folder.h"
#include "settings/setting_text.h"

namespace ql240 {
namespace {

QByteArray byteFileName(const SettingKey& key) {
    return QByteArray("set") + key.name + ".dat";
}

// True if the file opened, even if it is empty.
bool readByte(CardFolder& folder, const SettingKey& key, SettingValues& values) {
    CardFile file = folder.openForReading(byteFileName(key));
    char byte = 0;
    if (file.isOpen() && file.read(&byte, 1) == 1)
        values.*key.value = key.files & kByteUnsigned ? static_cast<int>(static_cast<unsigned char>(byte))
                                                      : static_cast<int>(static_cast<signed char>(byte));
    return file.isOpen();
}

// Overwrites an existing file in place and then truncates it, which needs no free space on a full card. A
// file that doesn't exist, or has another length when more than one byte is written, is replaced by a new
// file instead. True if the file opened.
bool writeFile(CardFolder& folder, const QByteArray& name, const QByteArray& bytes) {
    const auto replace = [&](CardFile& file) { return file.replaceBy(bytes); };
    const auto existing = folder.find(name);
    if (!existing && folder.isListed())
        return folder.replace(name, replace);
    const QByteArray spelled = existing.value_or(name);
    CardFile file = folder.openForWriting(spelled);
    if (!file.isOpen()) {
        folder.report(spelled, false);
        return false;
    }
    if (bytes.size() > 1 && file.size() != bytes.size())
        return folder.replace(spelled, replace);
    folder.report(spelled, file.replaceBy(bytes));
    folder.removeRest(name);
    return true;
}

std::shared_ptr<CardFolder> driveOf(const QByteArray& folder, CardFiles& files) {
    if (folder.isEmpty())
        return nullptr;
    return std::make_shared<CardFolder>(files, folder.left(std::max<qsizetype>(1, folder.lastIndexOf('/'))));
}

} // namespace

DeviceSettings::DeviceSettings(const QString& folder, CardFiles& files)
    : DeviceSettings(driveOf(QFile::encodeName(folder), files),
                     QFile::encodeName(folder.mid(folder.lastIndexOf(u'/') + 1))) {}

DeviceSettings::DeviceSettings(std::shared_ptr<CardFolder> drive, const QByteArray& name)
    : m_clockText(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-hh-mm-ss"))),
      m_drive(std::move(drive)),
      m_name(name) {
    if (!m_drive)
        return;
    CardFolder folder = m_drive->folder(m_name);
    loadText(folder);
    loadBytes(folder);
}

QString DeviceSettings::folder() const {
    return m_drive ? QFile::decodeName(m_drive->path() + '/' + m_name) : QString();
}

bool DeviceSettings::loadText() {
    if (!m_drive)
        return false;
    CardFolder folder = m_drive->folder(m_name);
    return loadText(folder);
}

bool DeviceSettings::loadBytes() {
    if (!m_drive)
        return false;
    CardFolder folder = m_drive->folder(m_name);
    return loadBytes(folder);
}

bool DeviceSettings::loadText(CardFolder& folder) {
    CardFile file = folder.openForReading("setting.dat");
    if (!file.isOpen())
        return false;
    bool whole = false;
    SettingTextReader reader(*this);
    reader.feed(file.readStart(limits::kSettingFileBytes, &whole));
    // If the file was cut off at the limit, its last line may lack digits.
    if (whole)
        reader.finish();
    return true;
}

bool DeviceSettings::loadBytes(CardFolder& folder) {
    bool brightOpened = false;
    bool contrastOpened = false;
    for (const SettingKey& key : kSettingKeys) {
        const bool isContrast = key.value == &SettingValues::contrastvalue;
        if (!(key.files & kByteRead) || (isContrast && !brightOpened))
            continue;
        const bool opened = readByte(folder, key, *this);
        if (key.value == &SettingValues::brightvalue)
            brightOpened = opened;
        if (isContrast)
            contrastOpened = opened;
    }
    return contrastOpened;
}

void DeviceSettings::setTime(bool set, const QString& clockText) {
    m_setsClock = set;
    m_clockText = clockText;
}

CardFolder DeviceSettings::madeFolder() {
    if (!m_drive->isOpen())
        m_drive->makeDrive();
    if (CardFolder there = m_drive->folder(m_name); there.isOpen())
        return there;
    m_drive->makeFolder(m_name);
    return m_drive->folder(m_name);
}

bool DeviceSettings::save() {
    if (!m_drive)
        return false;
    CardFolder folder = madeFolder();
    if (!folder.isOpen()) {
        qCWarning(lcCard) << "no settings folder at" << QFile::decodeName(folder.path());
        return false;
    }
    const SettingValues fixed;
    for (const SettingKey& key : kSettingKeys) {
        const SettingValues& source = key.files & kByteRead ? *this : fixed;
        if (!(key.files & kByteWritten))
            continue;
        qCDebug(lcCard) << key.name << "is" << source.*key.value;
        writeFile(folder, byteFileName(key),
                  QByteArray(1, static_cast<char>(static_cast<unsigned char>(source.*key.value))));
    }
    const bool clockOpened = m_setsClock && writeFile(folder, "settime.dat", m_clockText.toLocal8Bit());
    folder.sync();
    return clockOpened;
}

} // namespace ql240
