#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "base/preferences.h"

using namespace ql240;

class TestPreferences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_config = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config->path()));
    }

    void handEditedFile() {
        const std::pair<QByteArray, const char*> files[] = {
            {"[global]\nspeedkm=knots\n", "knots"},
            {"[global]\nspeedkm=\n", ""},         // stored, but empty
            {"[global]\nspeedkm=a, b\n", "a, b"}, // not a list
            {"[global]\r\nspeedkm=km\r\n", "km"}};
        for (const auto& [content, expected] : files) {
            init(); // Qt doesn't read a file again that changed within a tick of the clock
            writeFile(content);
            QString unit = "before";
            QVERIFY(readSpeedUnit(unit));
            QCOMPARE(unit, expected);
        }
    }

    void absentKeyLeavesValueAlone() {
        QString value = "before";
        QVERIFY(!readLanguage(value));
        writeFile("\x00\xff[[[ not an ini file \n=\n");
        QVERIFY(!readSpeedUnit(value) && !readLastFolder(value));
        QCOMPARE(value, "before");
    }

    void keysAndEncodingInTheFile() {
        const QString folder = "/media/카드, \"Видео\"; 100%/DCIM\\x";
        writeLastFolder(folder);
        writeSpeedUnit("mph");
        writeLanguage("ru");
        QFile file(m_config->filePath("QL240/local.ini"));
        QVERIFY(file.open(QFile::ReadOnly));
        const QByteArray bytes = file.readAll();
        for (const char* part : {"카드", "[global]\nlanguage=ru\nspeedkm=mph", "[storage]\nlastfolder="})
            QVERIFY2(bytes.contains(part), part);
        QString stored;
        QVERIFY(readLastFolder(stored));
        QCOMPARE(stored, folder);
    }

    void unusableFolderStoresNothing() {
        QFile blocker(m_config->filePath("QL240"));
        QVERIFY(blocker.open(QFile::WriteOnly));
        QCOMPARE(localIniPath(), QString());
        writeLanguage("en");
        QString value;
        QVERIFY(!readLanguage(value));
        QCOMPARE(blocker.size(), 0);
    }

private:
    void writeFile(const QByteArray& content) const {
        QFile file(localIniPath());
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(content);
    }

    std::unique_ptr<QTemporaryDir> m_config;
};

QTEST_GUILESS_MAIN(TestPreferences)
#include "test_preferences.moc"
