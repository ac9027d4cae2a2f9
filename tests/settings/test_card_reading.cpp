// Which drive is the card, its version text, and what a record reads from its files, well-formed or hostile.
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <QTest>

#include "platform/limits.h"
#include "settings/card.h"
#include "settings/card_jobs.h"
#include "settings/device_settings.h"
#include "support/fake_drives.h"
#include "support/made_card.h"

using namespace ql240;

class TestCardReading : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The last drive with a version file is the card; the first with a settings folder adjusts the picture.
    void rules() {
        const MadeCard stick, first, second, empty;
        stick.put("Setting/other.txt", {});
        first.put("UPDATE/Version.TXT", {});
        first.put("setting/setting.dat", {});
        second.put("update/version.txt", "QL240");
        QDir().mkpath(empty.path("update/version.txt"));
        m_drives.drives.clear();
        for (const MadeCard* card : {&stick, &first, &second, &empty})
            m_drives.drives.append({card->drive(), "LABEL", "vfat"});

        QCOMPARE(listRemovableDrives(&m_drives).size(), 4);
        QCOMPARE(findCardDrive(&m_drives), second.drive());
        QCOMPARE(firstSettingFolder(&m_drives), stick.path("Setting"));
        QCOMPARE(settingFolder(second.drive()), second.path("setting"));
        QCOMPARE(updateFolder(first.drive()), first.path("UPDATE"));
        QCOMPARE(openVersionText(updateFolder(first.drive())), std::optional<QString>(QString()));
        QCOMPARE(openVersionText(updateFolder(empty.drive())), std::nullopt);
        QCOMPARE(readVersionText(updateFolder(stick.drive())), QString());
        QCOMPARE(cardVersionText(&m_drives), std::optional<QString>("QL240"));
        m_drives.drives.clear();
        QCOMPARE(findCardDrive(&m_drives), QString());
        QCOMPARE(firstSettingFolder(&m_drives), QString());
        QVERIFY(listRemovableDrives(nullptr).isEmpty() && !cardVersionText(nullptr));
    }

    void versionText() {
        const std::pair<QByteArray, const char*> rows[] = {{"QL240 1.02\n", "QL240 1.02"},
                                                           {"QL240\r\n1.02\r\n", "QL240\n1.02"},
                                                           {"\nQL240\n\n", "\nQL240\n"},
                                                           {"QL240  1.02", "QL240  1.02"},
                                                           {"\xef\xbb\xbfQL240 1.02", "QL240 1.02"}};
        for (const auto& [file, text] : rows) {
            const MadeCard card;
            card.put("update/version.txt", file);
            QCOMPARE(readVersionText(card.path("update")), text);
        }
    }

    void uuidOfTheDevice() {
        const MadeCard udev;
        udev.put("b8:17", "S:disk/by-uuid/x\nE:ID_FS_UUID_ENC=x\nE:ID_FS_UUID=A1B2-C3D4\nG:systemd\n");
        QCOMPARE(fileSystemUuid(makedev(8, 17), udev.drive()), "A1B2-C3D4");
        QCOMPARE(fileSystemUuid(makedev(8, 18), udev.drive()), "");
    }

    void textLines() {
        // The values that aren't at their defaults: "key value key value".
        const std::pair<QByteArray, const char*> rows[] = {
            {"framevalue:1", "framevalue 1"},
            {"RESOLUTIONVALUE:1\r\n", "resolutionvalue 1"},
            {"qualityvalue: \t2  \nframevalue:1", "qualityvalue 2 framevalue 1"},
            {"framevalue 2\n", ""},
            {":framevalue:2\n", ""},
            {"speedValue:abc\n", "speedValue 0"},
            {"speedValue:\n", "speedValue 0"},
            {"speedValue:1 2\n", "speedValue 0"},
            {"speedValue of the car:2\n", "speedValue 2"},
            {"speedValue:2:1\n", "speedValue 0"},
            {"batteryvalue1:-5\n", "batteryvalue1 -5"},
            {"batteryvalue1:2147483647\n", "batteryvalue1 2147483647"},
            {"batteryvalue1:2147483648\n", "batteryvalue1 0"},
            {"batteryvalue1:99999999999999999999\n", "batteryvalue1 0"},
            {"batteryvalue1:000000000000000000000000000000119\n", "batteryvalue1 119"},
            {QByteArray("batteryvalue1:11\0 9\n", 20), "batteryvalue1 0"},
            {"sensitivityvalue2:5\n",
             "sensitivityvalue 5 sensitivityvalue2 5"}, // a key may be followed by more letters
            {"hourvalue:5\nhourvalue:9\n", "hourvalue 9"},
            {"reversalvalue:1\nsharpnessvalue:1\n", ""}, // keys of bytes only
            {"\n\nfoo:1\n brightvalue:1\nmutevalue:1\n", "mutevalue 1"},
            {"encodingvalue:1\ntempoffvalue:0", "encodingvalue 1 tempoffvalue 0"},
        };
        for (const auto& [file, changed] : rows) {
            const MadeCard card;
            card.put("setting/setting.dat", file);
            const DeviceSettings settings(card.path("setting"));
            const QByteArrayList words = QByteArray(changed).split(' ');
            for (const SettingKey& key : kSettingKeys) {
                const auto at = words.indexOf(key.name);
                const int expected = at < 0 ? SettingValues().*key.value : words[at + 1].toInt();
                QVERIFY2(settings.*key.value == expected, file + ": " + key.name);
            }
        }
    }

    // The first byte counts; whether it is signed depends on the key.
    void byteFiles() {
        const std::tuple<int, QByteArray, int> rows[] = {{1, "\x79", 121},
                                                         {1, "\xf2", -14},
                                                         {2, "\xf6", 246},
                                                         {2, "\xe8\xf6\n", 232},
                                                         {2, QByteArray(1, '\0'), 0},
                                                         {2, "", 242}};
        for (const auto& [number, bytes, value] : rows) {
            const MadeCard card;
            card.put(QStringLiteral("setting/setbatteryvalue%1.dat").arg(number), bytes);
            const DeviceSettings settings(card.path("setting"));
            QCOMPARE(number == 1 ? settings.batteryvalue1 : settings.batteryvalue2, value);
        }
    }

    // Without the brightness, the contrast isn't read.
    void loadBytesResult() {
        for (const auto& [bright, contrast, contrastRead] :
             {std::tuple(false, false, 4), {true, false, 4}, {false, true, 4}, {true, true, 7}}) {
            const MadeCard card;
            card.put("setting/setframevalue.dat", "\x01");
            if (bright)
                card.put("setting/setbrightvalue.dat", {});
            if (contrast)
                card.put("setting/setcontrastvalue.dat", "\x07");
            DeviceSettings settings(card.path("setting"));
            QCOMPARE(settings.loadBytes(), bright && contrast);
            QCOMPARE(settings.contrastvalue, contrastRead);
            QCOMPARE(settings.framevalue, 1);
        }
    }

    // No card, an empty folder, folders and a pipe in place of files: all defaults, and no wait for a writer.
    void withoutFiles() {
        const MadeCard card;
        QDir().mkpath(card.path("odd/setting.dat"));
        QCOMPARE(::mkfifo(QFile::encodeName(card.path("odd/setframevalue.dat")).constData(), 0600), 0);
        QDir().mkpath(card.path("odd/setbrightvalue.dat"));
        const QStringList folders = {QString(), card.path("none"), card.drive(), card.path("odd")};
        for (const QString& folder : folders) {
            DeviceSettings settings(folder);
            QVERIFY(static_cast<SettingValues&>(settings) == SettingValues());
            QVERIFY(!settings.loadText() && !settings.loadBytes() && !settings.setsClock());
            const auto clock = QDateTime::fromString(settings.clockText(), "yyyy-MM-dd-hh-mm-ss");
            QVERIFY(qAbs(clock.secsTo(QDateTime::currentDateTime())) < 60);
        }
    }

    void namesInAnyCase() {
        const MadeCard card;
        card.put("SETTING/Setting.DAT", "framevalue:1\nspeedValue:2\nbrightvalue:6\n");
        card.put("SETTING/SETBRIGHTVALUE.DAT", "\x01");
        card.put("SETTING/SETCONTRASTVALUE.DAT", "\x02");
        card.put("SETTING/setcontrastvalue.dat", "\x03");
        const DeviceSettings settings(card.path("setting"));
        QCOMPARE(settings.framevalue, 1);
        QCOMPARE(settings.speedValue, 2);
        QCOMPARE(settings.brightvalue, 1); // a byte file overrides the text
        QCOMPARE(settings.contrastvalue, 3);
    }

    // Nothing past the limit is read, and a line that it cuts off doesn't count.
    void hugeText() {
        const std::tuple<QByteArray, QByteArray, QByteArray, int> rows[] = {
            {"framevalue", "x", ":1\n", 3},
            {"framevalue:", "0", "1\n", 3},
            {"", "framevalue:2\n", "framevalue:1\n", 2}};
        const MadeCard card;
        for (const auto& [begin, repeated, end, frame] : rows) {
            card.put("setting/setting.dat", begin + repeated.repeated(1 << 20) + end);
            QCOMPARE(DeviceSettings(card.path("setting")).framevalue, frame);
        }
        // A text of exactly the limit is read whole.
        const QByteArray last = "\nframevalue:1";
        card.put("setting/setting.dat", QByteArray(limits::kSettingFileBytes - last.size(), 'x') + last);
        QCOMPARE(DeviceSettings(card.path("setting")).framevalue, 1);
    }

private:
    FakeDrives m_drives;
};

QTEST_GUILESS_MAIN(TestCardReading)

#include "test_card_reading.moc"
