#include "settings/device_settings.h"

#include <fcntl.h>

#include <QDateTime>
#include <QFile>
#include <vector>

#include "settings/card_files.h"
#include "settings/setting_text.h"

namespace ql240 {
namespace {

QByteArray byteFileName(const SettingKey& key) {
    return QByteArray("set") + key.name + ".dat";
}

// True if the file opened, whether or not it holds a byte.
bool readByte(CardFolder& folder, const SettingKey& key, SettingValues& values) {
    CardFile file = folder.openForReading(byteFileName(key));
    char byte = 0;
    if (file.isOpen() && file.read(&byte, 1) == 1)
        values.*key.value =
            key.files & kByteUnsigned ? int(uchar(byte)) : int(static_cast<signed char>(byte));
    return file.isOpen();
}

// Where a new file is written before it takes its name; a rest from an interrupted save is overwritten or
// removed by the next one.
QByteArray asideName(const QByteArray& name) {
    return name.chopped(4) + ".new";
}

// True if the file aside opened. On the disk before it takes its name: a card pulled out in between must not
// show an empty file.
bool writeAside(CardFolder& folder, const QByteArray& name, const QByteArray& bytes) {
    const QByteArray aside = folder.pathOf(asideName(name));
    bool written = false;
    {
        CardFile file(folder.files(), aside, O_WRONLY | O_CREAT | O_TRUNC);
        if (!file.isOpen())
            return false;
        written = file.replaceBy(bytes) && file.sync();
    }
    if (!written || folder.files().rename(aside, folder.pathOf(name)) != 0)
        folder.files().remove(aside);
    return true;
}

// An existing file is overwritten in place, which needs no room on a full card, and only then cut; one whose
// length a single byte can't put right and a new one are written aside. True if the file opened.
bool writeFile(CardFolder& folder, const QByteArray& name, const QByteArray& bytes) {
    const auto existing = folder.find(name);
    if (!existing && folder.isListed())
        return writeAside(folder, name, bytes);
    const QByteArray spelled = existing.value_or(name);
    CardFile file(folder.files(), folder.pathOf(spelled), O_WRONLY);
    if (!file.isOpen())
        return false;
    if (bytes.size() > 1 && file.size() != bytes.size())
        return writeAside(folder, spelled, bytes);
    file.replaceBy(bytes);
    if (const auto rest = folder.find(asideName(name)))
        folder.files().remove(folder.pathOf(*rest));
    return true;
}

void makePath(CardFiles& files, const QByteArray& path) {
    if (path.isEmpty() || files.isFolder(path))
        return;
    const auto slash = path.lastIndexOf('/');
    if (slash > 0)
        makePath(files, path.left(slash));
    files.makeFolder(path);
}

} // namespace

DeviceSettings::DeviceSettings(const QString& folder, CardFiles& files)
    : m_clockText(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-hh-mm-ss"))),
      m_folder(folder),
      m_files(&files) {
    loadText();
    loadBytes();
}

CardFolder DeviceSettings::cardFolder() const {
    return CardFolder(*m_files, existingIgnoringCase(*m_files, QFile::encodeName(m_folder)), "set");
}

bool DeviceSettings::loadText() {
    if (m_folder.isEmpty())
        return false;
    CardFolder folder = cardFolder();
    CardFile file = folder.openForReading("setting.dat");
    if (!file.isOpen())
        return false;
    SettingTextReader reader(*this);
    std::vector<char> piece(64 * 1024);
    ssize_t count = 0;
    while ((count = file.read(piece.data(), piece.size())) > 0)
        reader.feed(QByteArrayView(piece.data(), count));
    // Where reading failed, the line that it cut off may lack digits.
    if (count == 0)
        reader.finish();
    return true;
}

bool DeviceSettings::loadBytes() {
    if (m_folder.isEmpty())
        return false;
    CardFolder folder = cardFolder();
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

bool DeviceSettings::save() {
    if (m_folder.isEmpty())
        return false;
    CardFolder folder = cardFolder();
    makePath(*m_files, folder.path());
    if (!m_files->isFolder(folder.path()))
        return false;
    const SettingValues fixed;
    for (const SettingKey& key : kSettingKeys) {
        const SettingValues& source = key.files & kByteRead ? *this : fixed;
        if (key.files & kByteWritten)
            writeFile(folder, byteFileName(key), QByteArray(1, char(uchar(source.*key.value))));
    }
    const bool clockOpened = m_setsClock && writeFile(folder, "settime.dat", m_clockText.toLocal8Bit());
    m_files->syncFolder(folder.path());
    return clockOpened;
}

} // namespace ql240
