// Which drive is the card, which folder has the picture adjustment, and the version text.
#include <sys/sysmacros.h>

#include <QTest>

#include "settings/card.h"
#include "settings/card_jobs.h"
#include "support/fake_drives.h"
#include "support/made_card.h"

using namespace ql240;

class TestCard : public QObject {
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

private:
    FakeDrives m_drives;
};

QTEST_GUILESS_MAIN(TestCard)
#include "test_card.moc"
