// For tests of the settings windows: drives with temporary cards, temporary preferences, the program's fonts.
#pragma once

#include <QApplication>
#include <QSemaphore>
#include <QTest>
#include <memory>

#include "base/language.h"
#include "base/preferences.h"
#include "platform/host.h"
#include "settings/config_window.h"
#include "support/fake_drives.h"
#include "support/made_card.h"
#include "widgets/fonts.h"

namespace ql240 {

// A camera's card with its version file.
inline void makeCamera(const MadeCard& card, const QByteArray& version = "QL240 1.02 1.00") {
    card.put("update/version.txt", version);
}

class SettingsFixture {
public:
    SettingsFixture() {
        host().drives = &m_drives;
        installFontSubstitutes();
        const QString ini = localIniPath();
        QFile::remove(ini);
        QDir().rmdir(QFileInfo(ini).path()); // the program makes it
        setCurrentLanguage("en");
    }
    ~SettingsFixture() { host().drives = nullptr; }
    Q_DISABLE_COPY_MOVE(SettingsFixture)

    void insert(const MadeCard& card, const QByteArray& label = "CAMERA") {
        m_drives.drives.append({card.drive(), label, "vfat"});
    }

    // From now on each query of the drives waits for one call of answer().
    void holdDrives() {
        m_drives.before = [answers = m_answers] { answers->acquire(); };
    }
    void answer() { m_answers->release(); }

    // A camera's card in the reader.
    const MadeCard& camera(const QByteArray& version = "QL240 1.02 1.00") {
        makeCamera(m_card, version);
        insert(m_card);
        return m_card;
    }

private:
    FakeDrives m_drives;
    std::shared_ptr<QSemaphore> m_answers = std::make_shared<QSemaphore>();
    MadeCard m_card;
};

inline void putByte(const MadeCard& card, const QString& key, int value) {
    card.put(QStringLiteral("setting/set%1.dat").arg(key), QByteArray(1, char(value)));
}

// −1 if there is no such file.
inline int byteOf(const MadeCard& card, const QString& key) {
    const auto bytes = card.bytes(QStringLiteral("setting/set%1.dat").arg(key));
    return bytes && bytes->size() == 1 ? int(uchar(bytes->at(0))) : -1;
}

// Waits longer than the dialog does, for a busy machine.
inline bool waitForCard(const ConfigWindow& window) {
    return QTest::qWaitFor([&] { return !window.settingFolder().isEmpty(); }, 10000);
}

// A dialog that can be edited: with a drive's values, or without a drive.
class ReadyWindow : public ConfigWindow {
public:
    ReadyWindow() {
        if (!QTest::qWaitFor([this] { return card().isEditable(); }, 10000))
            qFatal("the dialog has nothing to show");
    }
};

inline void openPage(ConfigWindow& window, int number) {
    const QByteArray slot = "OnSlotsBtn" + QByteArray::number(number);
    QMetaObject::invokeMethod(&window, slot.constData());
}

inline void click(QWidget& window, QPoint point) {
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, point);
}

} // namespace ql240
