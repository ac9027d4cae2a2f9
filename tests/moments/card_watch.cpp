#include "moments/card_watch.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QComboBox>
#include <QDirIterator>
#include <QFile>
#include <algorithm>
#include <utility>

#include "moments/world.h"
#include "settings/config_window.h"
#include "support/hostile_card.h"

namespace ql240::moments {
namespace {

const SettingKey* keyOf(int RowValues::*value) {
    for (const SettingKey& key : kSettingKeys) {
        if (static_cast<int RowValues::*>(key.value) == value)
            return &key;
    }
    return nullptr;
}

// "setKEY.dat": the key, or null for other files.
const SettingKey* keyOf(const QString& path) {
    const QString name = QFileInfo(path).fileName();
    for (const SettingKey& key : kSettingKeys) {
        if (name == QStringLiteral("set%1.dat").arg(QLatin1String(key.name)))
            return &key;
    }
    return nullptr;
}

int byteOf(const QByteArray& bytes) {
    return bytes.size() == 1 ? static_cast<uchar>(bytes[0]) : -1;
}

} // namespace

bool CardWatch::Dialog::maySave(const QString& path, const QByteArray& before, const QByteArray& now) const {
    if (path.endsWith(QLatin1String("/settime.dat")))
        return chosen.contains({QStringLiteral("time"), 0});
    const SettingKey* key = keyOf(path);
    if (!key)
        return false;
    constexpr int SettingValues::*kDerived[] = {&SettingValues::sensitivityvalue,
                                                &SettingValues::reversalvalue, &SettingValues::sharpnessvalue,
                                                &SettingValues::mutevalue};
    if (std::ranges::find(kDerived, key->value) != std::end(kDerived))
        return true;
    const int value = byteOf(now);
    if (value != (shown.*key->value & 0xFF))
        return false;
    // A drive without settings gets the defaults that were shown.
    const bool muted = key->value == &SettingValues::speakervalue && value == 0;
    // The timer's page has no mark for 0 and returns 1.
    const bool fromNoTimer = key->value == &SettingValues::timeoffvalue && byteOf(before) < 1 && value == 1;
    return before.isNull() || muted || fromNoTimer || value == byteOf(before) ||
           chosen.contains({QLatin1String(key->name), value});
}

CardWatch::CardWatch(World& world) : m_world(world), m_notes(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    listen();
    m_files = readAll();
}

CardWatch::~CardWatch() {
    ::close(m_notes);
}

// Called again after each change, to watch new folders.
void CardWatch::listen() {
    constexpr auto kChanges = IN_CREATE | IN_DELETE | IN_MODIFY | IN_MOVE | IN_ATTRIB;
    const auto add = [this](const QString& folder) {
        if (::inotify_add_watch(m_notes, QFile::encodeName(folder).constData(), kChanges) < 0)
            qFatal("cannot watch %s", qPrintable(folder));
    };
    add(m_world.root.path());
    QDirIterator all(m_world.root.path(), QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (all.hasNext())
        add(all.next());
}

bool CardWatch::isTouched() const {
    char notes[4096];
    bool touched = false;
    while (::read(m_notes, notes, sizeof notes) > 0)
        touched = true;
    return touched;
}

void CardWatch::look(const ConfigWindow* dialog) {
    const bool isNew = dialog != std::exchange(m_open, dialog);
    if (!dialog)
        return;
    if (isNew)
        m_dialogs.emplace_back();
    m_dialogs.back().folder = dialog->settingFolder();
    m_dialogs.back().shown = dialog->values();
    const auto isSecretValue = [&](const SettingKey& key) {
        return dialog->values().*key.value == HostileCard::kSecret;
    };
    const auto isSecretText = [](const QComboBox* list) { return list->currentText().contains(u"SECRET"); };
    if (std::ranges::any_of(kSettingKeys, isSecretValue) ||
        std::ranges::any_of(dialog->findChildren<QComboBox*>(), isSecretText))
        m_world.fail(QStringLiteral("the dialog shows what no card holds"));
}

void CardWatch::chose(int RowValues::*value, int choice) {
    auto& chosen = m_dialogs.back().chosen;
    if (const SettingKey* key = keyOf(value))
        chosen.emplace(QLatin1String(key->name), choice);
    if (value == &RowValues::setsClock)
        chosen.emplace(QStringLiteral("time"), 0);
    if (value == &RowValues::sensitivityvalue) {
        chosen.emplace(QStringLiteral("sensitivityvalue1"), 4 + 2 * choice);
        chosen.emplace(QStringLiteral("sensitivityvalue2"), 3 + 2 * choice);
    }
    if (value == &RowValues::speakervalue)
        chosen.emplace(QStringLiteral("mutevalue"), choice == 0);
}

CardWatch::Files CardWatch::readAll() const {
    Files files;
    QDirIterator all(m_world.root.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext()) {
        QString path = all.next();
        struct stat status {};
        if (path.contains(QLatin1String("/out/")) ||
            ::stat(QFile::encodeName(path).constData(), &status) != 0)
            continue;
        const qint64 stamp =
            status.st_mtim.tv_sec * 1000000000 + status.st_mtim.tv_nsec + qint64(status.st_ino);
        const QString name = QString(path).remove(QStringLiteral(".away")); // a card taken out
        const auto known = m_files.find(name);
        if (known != m_files.end() && known->second.stamp == stamp) {
            files.emplace(name, known->second);
            continue;
        }
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            files.emplace(name, File{stamp, file.readAll()});
    }
    return files;
}

bool CardWatch::mayChange(const QString& path, const QByteArray& before, const QByteArray& now) const {
    return std::any_of(m_dialogs.begin(), m_dialogs.end(), [&](const Dialog& dialog) {
        return dialog.confirmed && !dialog.folder.isEmpty() &&
               path.startsWith(dialog.folder + QLatin1Char('/')) && dialog.maySave(path, before, now);
    });
}

void CardWatch::check() {
    if (!isTouched())
        return;
    listen();
    Files now = readAll();
    for (const auto& [path, file] : now) {
        const auto before = m_files.find(path);
        if (before != m_files.end() && before->second.bytes == file.bytes)
            continue;
        if (!mayChange(path, before == m_files.end() ? QByteArray() : before->second.bytes, file.bytes))
            m_world.fail(
                QStringLiteral("%1 was written, now %2").arg(path, QString::fromLatin1(file.bytes.toHex())));
    }
    for (const auto& [path, file] : m_files) {
        if (!now.contains(path) && m_world.indexOfClip(path) < 0)
            m_world.fail(path + QStringLiteral(" is gone"));
    }
    m_files = std::move(now);
}

} // namespace ql240::moments
