// What a record takes from the card's files, well-formed and hostile.
#include <sys/stat.h>

#include <QTest>

#include "platform/limits.h"
#include "settings/device_settings.h"
#include "support/made_card.h"

using namespace ql240;

class TestDeviceSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textLine_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("changed"); // "key value key value", all others at their defaults

        const auto row = [](const char* name, const QByteArray& file, const char* changed) {
            QTest::newRow(name) << file << QByteArray(changed);
        };
        row("plain", "framevalue:1\n", "framevalue 1");
        row("no line end", "framevalue:1", "framevalue 1");
        row("letter case, CR LF", "RESOLUTIONVALUE:1\r\n", "resolutionvalue 1");
        row("white space", "qualityvalue: \t2  \nframevalue:1", "qualityvalue 2 framevalue 1");
        row("no colon", "framevalue 2\n", "");
        row("colon first", ":framevalue:2\n", "");
        row("no number", "speedValue:abc\n", "speedValue 0");
        row("empty value", "speedValue:\n", "speedValue 0");
        row("two numbers", "speedValue:1 2\n", "speedValue 0");
        row("text before the colon", "speedValue of the car:2\n", "speedValue 2");
        row("second colon", "speedValue:2:1\n", "speedValue 0");
        row("negative", "batteryvalue1:-5\n", "batteryvalue1 -5");
        row("largest", "batteryvalue1:2147483647\n", "batteryvalue1 2147483647");
        row("past 32 bits", "batteryvalue1:2147483648\n", "batteryvalue1 0");
        row("past 64 bits", "batteryvalue1:99999999999999999999\n", "batteryvalue1 0");
        row("leading zeros", "batteryvalue1:000000000000000000000000000000119\n", "batteryvalue1 119");
        row("NUL in the value", QByteArray("batteryvalue1:11\0 9\n", 20), "batteryvalue1 0");
        row("prefix key", "sensitivityvalue2:5\n", "sensitivityvalue 5 sensitivityvalue2 5");
        row("last line wins", "hourvalue:5\nhourvalue:9\n", "hourvalue 9");
        row("keys of bytes only", "reversalvalue:1\nsharpnessvalue:1\n", "");
        row("unknown and empty lines", "\n\nfoo:1\n brightvalue:1\nmutevalue:1\n", "mutevalue 1");
        row("text only", "encodingvalue:1\ntempoffvalue:0", "encodingvalue 1 tempoffvalue 0");
    }
    void textLine() {
        QFETCH(QByteArray, file);
        QFETCH(QByteArray, changed);
        const MadeCard card;
        card.put("setting/setting.dat", file);
        const DeviceSettings settings(card.path("setting"));
        const QByteArrayList words = changed.split(' ');
        for (const SettingKey& key : kSettingKeys) {
            const auto at = words.indexOf(key.name);
            const int expected = at < 0 ? SettingValues().*key.value : words[at + 1].toInt();
            QVERIFY2(settings.*key.value == expected,
                     qPrintable(QStringLiteral("%1 is %2").arg(key.name).arg(settings.*key.value)));
        }
    }

    void byteFile_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("battery1");
        QTest::addColumn<int>("battery2");

        QTest::newRow("12 V") << "setbatteryvalue1.dat" << QByteArray("\x79") << 121 << 242;
        QTest::newRow("signed") << "setbatteryvalue1.dat" << QByteArray("\xf2") << -14 << 242;
        QTest::newRow("unsigned") << "setbatteryvalue2.dat" << QByteArray("\xf6") << 121 << 246;
        QTest::newRow("first byte counts")
            << "setbatteryvalue2.dat" << QByteArray("\xe8\xf6\n") << 121 << 232;
        QTest::newRow("NUL") << "setbatteryvalue2.dat" << QByteArray(1, '\0') << 121 << 0;
        QTest::newRow("empty") << "setbatteryvalue2.dat" << QByteArray() << 121 << 242;
    }
    void byteFile() {
        QFETCH(QString, file);
        QFETCH(QByteArray, bytes);
        const MadeCard card;
        card.put("setting/" + file, bytes);
        const DeviceSettings settings(card.path("setting"));
        QTEST(settings.batteryvalue1, "battery1");
        QTEST(settings.batteryvalue2, "battery2");
    }

    void loadBytesResult_data() {
        QTest::addColumn<bool>("bright");
        QTest::addColumn<bool>("contrast");
        QTest::addColumn<int>("contrastRead");

        QTest::newRow("neither") << false << false << 4;
        QTest::newRow("brightness only") << true << false << 4;
        QTest::newRow("contrast only, which is then not opened") << false << true << 4;
        QTest::newRow("both") << true << true << 7;
    }
    void loadBytesResult() {
        QFETCH(bool, bright);
        QFETCH(bool, contrast);
        const MadeCard card;
        card.put("setting/setframevalue.dat", "\x01");
        if (bright)
            card.put("setting/setbrightvalue.dat", {});
        if (contrast)
            card.put("setting/setcontrastvalue.dat", "\x07");
        DeviceSettings settings(card.path("setting"));
        QCOMPARE(settings.loadBytes(), bright && contrast);
        QTEST(settings.contrastvalue, "contrastRead");
        QCOMPARE(settings.framevalue, 1);
    }

    // No card, an empty folder, and names that are no files: the defaults stand, and nothing waits for a
    // pipe's writer.
    void withoutFiles() {
        const MadeCard card;
        QDir().mkpath(card.path("odd/setting.dat"));
        QCOMPARE(::mkfifo(QFile::encodeName(card.path("odd/setframevalue.dat")).constData(), 0600), 0);
        QDir().mkpath(card.path("odd/setbrightvalue.dat"));
        const QStringList folders = {QString(), card.path("none"), card.drive(), card.path("odd")};
        for (const QString& folder : folders) {
            DeviceSettings settings(folder);
            QVERIFY(static_cast<SettingValues&>(settings) == SettingValues());
            QVERIFY(!settings.loadText());
            QVERIFY(!settings.loadBytes());
            QVERIFY(!settings.setsClock());
            const auto clock =
                QDateTime::fromString(settings.clockText(), QStringLiteral("yyyy-MM-dd-hh-mm-ss"));
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
        QCOMPARE(settings.brightvalue, 1); // a byte file goes over the text
        QCOMPARE(settings.contrastvalue, 3);
    }

    // What lies past the limit isn't read, and what it cuts off counts for nothing.
    void hugeText_data() {
        QTest::addColumn<QByteArray>("begin");
        QTest::addColumn<QByteArray>("repeated");
        QTest::addColumn<int>("frame");

        QTest::newRow("line before the colon") << QByteArray("framevalue") << QByteArray("x") << 3;
        QTest::newRow("line after it") << QByteArray("framevalue:") << QByteArray("0") << 3;
        QTest::newRow("lines") << QByteArray() << QByteArray("framevalue:2\n") << 2;
    }
    void hugeText() {
        QFETCH(QByteArray, begin);
        QFETCH(QByteArray, repeated);
        const MadeCard card;
        const QByteArray end = begin.endsWith(':') ? "1\n" : begin.isEmpty() ? "framevalue:1\n" : ":1\n";
        card.put("setting/setting.dat", begin + repeated.repeated(1 << 20) + end);
        const DeviceSettings settings(card.path("setting"));
        QTEST(settings.framevalue, "frame");
        // As much as is read to its end is whole.
        const QByteArray last = "\nframevalue:1";
        card.put("setting/setting.dat", QByteArray(limits::kSettingFileBytes - last.size(), 'x') + last);
        QCOMPARE(DeviceSettings(card.path("setting")).framevalue, 1);
    }
};

QTEST_GUILESS_MAIN(TestDeviceSettings)
#include "test_device_settings.moc"
