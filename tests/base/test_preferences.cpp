#include <QDir>
#include <QFile>
#include <QSettings>
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

    void firstWriteMakesFolderAndFile() {
        QVERIFY(!QDir(m_config->filePath(QStringLiteral("QL240"))).exists());
        writeLanguage(QStringLiteral("ru"));
        QCOMPARE(readFile().trimmed(), QByteArray("[global]\nlanguage=ru"));
        QCOMPARE(localIniPath(), m_config->filePath(QStringLiteral("QL240/local.ini")));
    }

    void handEditedFile_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("unit");
        QTest::newRow("plain") << QByteArray("[global]\nspeedkm=mph\n") << "mph";
        QTest::newRow("unknown value is handed out") << QByteArray("[global]\nspeedkm=knots\n") << "knots";
        QTest::newRow("empty value is stored") << QByteArray("[global]\nspeedkm=\n") << "";
        QTest::newRow("comma is no list") << QByteArray("[global]\nspeedkm=a, b\n") << "a, b";
        QTest::newRow("line ends of another system") << QByteArray("[global]\r\nspeedkm=km\r\n") << "km";
    }
    void handEditedFile() {
        QFETCH(QByteArray, content);
        writeFile(content);
        QString unit = QStringLiteral("before");
        QVERIFY(readSpeedUnit(unit));
        QTEST(unit, "unit");
    }

    void absentKeyLeavesValueAlone() {
        QString value = QStringLiteral("before");
        QVERIFY(!readLanguage(value));
        writeFile("\x00\xff[[[ not an ini file \n=\n");
        QVERIFY(!readSpeedUnit(value));
        QVERIFY(!readLastFolder(value));
        QCOMPARE(value, QStringLiteral("before"));
    }

    void keysAndEncodingInTheFile() {
        const QString folder = QStringLiteral("/media/카드, \"Видео\"; 100%/DCIM\\x");
        writeLastFolder(folder);
        writeSpeedUnit(QStringLiteral("mph"));
        QVERIFY(readFile().contains("카드"));
        QVERIFY(readFile().contains("[global]\nspeedkm=mph"));
        QVERIFY(readFile().contains("[storage]\nlastfolder="));
        QString stored;
        QVERIFY(readLastFolder(stored));
        QCOMPARE(stored, folder);
    }

    void unusableFolderStoresNothing() {
        QFile blocker(m_config->filePath(QStringLiteral("QL240")));
        QVERIFY(blocker.open(QFile::WriteOnly));
        QCOMPARE(localIniPath(), QString());
        writeLanguage(QStringLiteral("en"));
        QString value = QStringLiteral("before");
        QVERIFY(!readLanguage(value));
        QCOMPARE(value, QStringLiteral("before"));
        QCOMPARE(blocker.size(), 0);
    }

private:
    void writeFile(const QByteArray& content) const {
        QFile file(localIniPath());
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(content);
    }

    QByteArray readFile() const {
        QFile file(m_config->filePath(QStringLiteral("QL240/local.ini")));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_config;
};

QTEST_GUILESS_MAIN(TestPreferences)
#include "test_preferences.moc"
