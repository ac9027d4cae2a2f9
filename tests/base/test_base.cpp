// Preferences, languages, and background jobs: which answers count, and how long they may block the thread.
#include <sys/stat.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "base/language.h"
#include "base/preferences.h"
#include "base/regular_file.h"
#include "support/held_jobs.h"

using namespace ql240;

namespace {

// Runs nothing, and lets the time of each wait pass.
class DeadReader : public JobRunner {
public:
    DeadReader() { setJobRunner(this); }
    ~DeadReader() override { setJobRunner(nullptr); }

    void run(std::function<void()>) override {}
    bool wait(QDeadlineTimer until, const std::function<bool()>& isDone) override {
        waited += until.remainingTime();
        while (!until.hasExpired())
            QThread::usleep(100);
        return isDone();
    }

    qint64 waited = 0;
};

} // namespace

class TestBase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_config = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config->path()));
    }

    void regularFilesOnly() {
        const QString fifo = m_config->filePath("fifo");
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        writeFile("text");
        const std::pair<QString, const char*> names[] = {{fifo, "no regular file"},
                                                         {"/dev/zero", "no regular file"},
                                                         {m_config->path(), "no regular file"},
                                                         {fifo + "2", "No such file or directory"}};
        for (const auto& [name, expected] : names) {
            QFile file(name);
            QString problem;
            QVERIFY(!openRegularFile(file, problem));
            QCOMPARE(problem, expected);
        }
        QFile file(localIniPath());
        QString problem;
        QVERIFY2(openRegularFile(file, problem), qPrintable(problem));
        QCOMPARE(file.readAll(), "text");
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
        writeFile(QByteArrayLiteral("\x00\xff[[[ not an ini file \n=\n"));
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

    // Chinese and Spanish users get English, an unknown code Korean.
    void column() {
        const std::pair<const char*, const char*> play[] = {{"kr", "재생"}, {"en", "Play"}, {"ch", "Play"},
                                                            {"es", "Play"}, {"de", "재생"}, {"", "재생"},
                                                            {"EN", "재생"}};
        for (const auto& [code, text] : play) {
            setCurrentLanguage(code);
            QCOMPARE(currentLanguage(), code);
            QCOMPARE(uiText(UiText::Play), text);
        }
    }

    void everyTextIsThere() {
        for (const InterfaceLanguage& language : kInterfaceLanguages) {
            for (const UiTextRow& row : kUiTexts) {
                const QString text = QString::fromUtf8(row.*language.texts);
                QVERIFY(!text.isEmpty() && !text.contains(QChar::ReplacementCharacter));
            }
        }
        setCurrentLanguage("ru");
        QCOMPARE(uiText(UiText::MotionSensitivity), "движения");
    }

    void systemLanguage() {
        const std::pair<const char*, const char*> codes[] = {{"ko_KR", "kr"}, {"ru_RU", "ru"},
                                                             {"ki_KE", "ru"}, {"zh_TW", "ch"},
                                                             {"es_MX", "es"}, {"de_DE", "en"}};
        for (const auto& [locale, code] : codes)
            QCOMPARE(languageCodeFor(QLocale(locale).language()), code);
    }

    void forgottenWhileDelivering() {
        HeldJobs held;
        BackgroundJobs jobs;
        int ended = 0;
        for (int i = 0; i < 2; ++i)
            jobs.start([] {},
                       [&] {
                           ++ended;
                           jobs.forget();
                       });
        held.answer();
        QCOMPARE(ended, 1);
    }
    void waitsOfOneTurnShareTheirTime() {
        DeadReader reader;
        std::array<BackgroundJobs, 3> askers;
        for (BackgroundJobs& asker : askers) {
            asker.start([] {}, [] {});
            QVERIFY(!asker.wait(std::chrono::milliseconds(80)));
        }
        QVERIFY2(reader.waited <= kLongestStandstill.count(), qPrintable(QString::number(reader.waited)));

        QCoreApplication::processEvents();
        QVERIFY(!askers[0].wait(std::chrono::milliseconds(80)));
        QVERIFY(reader.waited > kLongestStandstill.count());
    }

private:
    void writeFile(const QByteArray& content) const {
        QFile file(localIniPath());
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(content);
    }

    std::unique_ptr<QTemporaryDir> m_config;
};

QTEST_GUILESS_MAIN(TestBase)

#include "test_base.moc"
