// Saving under every kind of bad luck: each file of the card is afterwards as it was or new, never empty, and
// nothing is left over.
#include <sys/wait.h>
#include <unistd.h>

#include <QRegularExpression>
#include <QTest>

#include "settings/device_settings.h"
#include "settings/fault_table.h"
#include "support/faulty_files.h"
#include "support/made_card.h"
#include "support/own_mount.h"

using namespace ql240;

namespace {

constexpr int kByteFiles = 26;
const QByteArray kClock = "2031-07-31-18-05-09";

// What a save has no business with.
const std::pair<QString, QByteArray> kUntouched[] = {
    {QStringLiteral("setting.dat"), "framevalue:2\nunknownvalue:7\n"},
    {QStringLiteral("setspeedunit.dat"), "\x01"},
};

// What the card holds before a save.
enum class Before { NoFolder, NoFiles, OneByteFiles, LongFiles, EmptyFiles, UpperCaseFiles };

struct CardOfFiles {
    const MadeCard& card;
    Before before;

    QString fileName(const QString& name) const {
        return before == Before::UpperCaseFiles ? name.toUpper() : name;
    }

    std::optional<QByteArray> oldByte(int index) const {
        switch (before) {
            case Before::NoFolder:
            case Before::NoFiles:
                return std::nullopt;
            case Before::EmptyFiles:
                return QByteArray();
            case Before::LongFiles:
                return QByteArray(1, char(100 + index)) + "long rest of the old file";
            default:
                return QByteArray(1, char(100 + index));
        }
    }

    std::optional<QByteArray> oldClock() const {
        const auto byte = oldByte(0);
        return byte && byte->size() == 1 ? std::optional<QByteArray>("2012-01-01-00-00-00") : byte;
    }

    void make() const {
        if (before == Before::NoFolder)
            return;
        for (const auto& [name, bytes] : kUntouched)
            card.put(QStringLiteral("setting/") + name, bytes);
        int index = 0;
        for (const SettingKey& key : kSettingKeys) {
            if (const auto bytes = oldByte(index++); bytes && (key.files & kByteWritten))
                card.put("setting/" + fileName(QStringLiteral("set%1.dat").arg(key.name)), *bytes);
        }
        if (const auto bytes = oldClock())
            card.put("setting/" + fileName("settime.dat"), *bytes);
    }
};

// A record of which every value differs from what the card holds.
DeviceSettings changedRecord(const QString& folder, CardFiles& files = systemCardFiles()) {
    DeviceSettings record(folder, files);
    int index = 0;
    for (const SettingKey& key : kSettingKeys)
        record.*key.value = 50 + index++;
    record.setTime(true, QString::fromLatin1(kClock));
    return record;
}

char newByte(const SettingKey& key, int index) {
    return qstrcmp(key.name, "reversalvalue") == 0    ? '\0'
           : qstrcmp(key.name, "sharpnessvalue") == 0 ? 4
                                                      : char(50 + index);
}

Outcome outcome(const CardOfFiles& files) {
    Outcome result;
    QStringList rest = files.card.files("setting");
    const auto judge = [&](const QString& plainName, const std::optional<QByteArray>& old,
                           const QByteArray& fresh, bool firstByteCounts) {
        const QString name = files.fileName(plainName);
        const auto bytes = files.card.bytes("setting/" + name);
        rest.removeOne(name);
        const bool isNew = bytes && (*bytes == fresh || (firstByteCounts && bytes->startsWith(fresh)));
        result.notNew += isNew ? 0 : 1;
        result.add(plainName, isNew ? Outcome::New : bytes == old ? Outcome::Old : Outcome::Neither);
        if (isNew || bytes == old)
            return;
        ++result.mixed;
        result.error +=
            name + QStringLiteral(" holds \"") + QString::fromLatin1(bytes.value_or("nothing")) + u'"';
    };
    int index = 0;
    for (const SettingKey& key : kSettingKeys) {
        if (key.files & kByteWritten) {
            judge(QStringLiteral("set%1.dat").arg(key.name), files.oldByte(index),
                  QByteArray(1, newByte(key, index)), true);
        }
        ++index;
    }
    judge("settime.dat", files.oldClock(), kClock, false);
    if (files.before != Before::NoFolder) {
        for (const auto& [name, bytes] : kUntouched) {
            rest.removeOne(name);
            const bool same = files.card.bytes(QStringLiteral("setting/") + name) == bytes;
            result.add(name, same ? Outcome::Old : Outcome::Neither);
            result.error += same ? QString() : QStringLiteral("%1 has changed").arg(name);
        }
    }
    rest.removeOne("filler");
    result.error += rest.join(u' ');
    return result;
}

bool hasOneRestAtMost(const Outcome& outcome) {
    static const QRegularExpression rest(QStringLiteral("^(set\\w+\\.new)?$"));
    return rest.match(outcome.error).hasMatch();
}

// Returns the number of file operations.
int saveWith(const QString& folder, Fault fault, int operation) {
    FaultyFiles files;
    DeviceSettings record = changedRecord(folder, files);
    files.arm(fault, operation);
    (void)record.save();
    return files.count();
}

// The number of operations of an undisturbed save.
int operationsOf(Before before) {
    const MadeCard card;
    CardOfFiles{card, before}.make();
    return saveWith(card.path("setting"), Fault::None, 0);
}

void saveAndDieAt(const QString& folder, int operation) {
    const pid_t child = ::fork();
    if (child == 0) {
        saveWith(folder, Fault::Kill, operation);
        ::_exit(0);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

constexpr std::pair<Before, const char*> kStates[] = {
    {Before::NoFolder, "no folder"},
    {Before::NoFiles, "no files"},
    {Before::OneByteFiles, "files of one byte"},
    {Before::LongFiles, "longer files"},
    {Before::EmptyFiles, "empty files"},
    {Before::UpperCaseFiles, "upper-case files"},
};
constexpr std::pair<Fault, const char*> kFaults[] = {
    {Fault::FailOne, "one operation fails"},
    {Fault::FailFromThere, "the card is pulled out"},
    {Fault::Kill, "the process is killed"},
};

const char* nameOf(const auto& names, auto wanted) {
    return std::ranges::find(names, wanted, [](const auto& pair) { return pair.first; })->second;
}

} // namespace

class TestCardSaving : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesEverything_data() {
        QTest::addColumn<Before>("before");
        for (const auto& [before, name] : kStates)
            QTest::newRow(name) << before;
    }
    void writesEverything() {
        QFETCH(Before, before);
        const MadeCard card;
        const CardOfFiles files{card, before};
        files.make();
        QVERIFY(changedRecord(card.path("setting")).save());
        const Outcome result = outcome(files);
        QCOMPARE(result.error, QString());
        QCOMPARE(result.notNew, 0);
        for (const SettingKey& key : kSettingKeys) {
            if (key.files & kByteWritten)
                QCOMPARE(card.bytes("setting/" + files.fileName(QStringLiteral("set%1.dat").arg(key.name)))
                             ->size(),
                         1);
        }
        const DeviceSettings again(card.path("setting"));
        QCOMPARE(again.mutevalue, 50 + 27);
        QCOMPARE(again.encodingvalue, SettingValues().encodingvalue);
    }

    void clockOnlyWhenAsked() {
        const MadeCard card;
        card.put("setting/settime.dat", "as it was");
        DeviceSettings record(card.path("setting"));
        record.framevalue = 256 + 2;
        QVERIFY(!record.save());
        QCOMPARE(card.bytes("setting/settime.dat"), std::optional<QByteArray>("as it was"));
        QCOMPARE(card.bytes("setting/setframevalue.dat"), std::optional<QByteArray>("\x02"));
        record.setTime(true, "2012-07-31-18-05-09");
        QVERIFY(record.save());
        QCOMPARE(card.bytes("setting/settime.dat"), std::optional<QByteArray>("2012-07-31-18-05-09"));
    }

    void makesMissingParents() {
        const MadeCard card;
        QVERIFY(!DeviceSettings(card.path("a/b/setting")).save());
        QCOMPARE(card.files("a/b/setting").size(), kByteFiles);
        QVERIFY(!DeviceSettings(QString()).save());
        card.put("c", "a file where the folder should be");
        QVERIFY(!changedRecord(card.path("c")).save());
        QCOMPARE(card.bytes("c"), std::optional<QByteArray>("a file where the folder should be"));
    }

    void skipsWhatIsNoFile() {
        const MadeCard card;
        QDir().mkpath(card.path("setting/setframevalue.dat"));
        QDir().mkpath(card.path("setting/settime.dat"));
        QVERIFY(!changedRecord(card.path("setting")).save());
        QCOMPARE(card.files("setting").size(), kByteFiles - 1);
    }

    void everyOperationGoesWrong_data() {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<Before>("before");
        for (const auto& [fault, name] : kFaults) {
            for (const auto& [before, state] : kStates)
                QTest::addRow("%s, %s", name, state) << fault << before;
        }
    }
    void everyOperationGoesWrong() {
        QFETCH(Fault, fault);
        QFETCH(Before, before);
        const int operations = operationsOf(before);
        QVERIFY(operations > kByteFiles);
        FaultTable& sums = table(nameOf(kFaults, fault), nameOf(kStates, before));
        for (int at = 0; at < operations; ++at) {
            const MadeCard card;
            const CardOfFiles cardFiles{card, before};
            cardFiles.make();
            if (fault == Fault::Kill)
                saveAndDieAt(card.path("setting"), at);
            else
                saveWith(card.path("setting"), fault, at);
            if (QTest::currentTestFailed())
                return;
            const Outcome result = outcome(cardFiles);
            sums.add(result);
            if (fault == Fault::FailOne) {
                QVERIFY2(result.error.isEmpty(),
                         qPrintable(QStringLiteral("%1: %2").arg(at).arg(result.error)));
                // One file at most misses its new value, unless the folder itself couldn't be had.
                QVERIFY2(result.notNew <= 1 || result.notNew == kByteFiles + 1,
                         qPrintable(QString::number(at)));
                continue;
            }
            // The card may show the one file that was being written aside, until the next save.
            QVERIFY2(hasOneRestAtMost(result), qPrintable(result.error));
            saveWith(card.path("setting"), Fault::None, 0);
            const Outcome healed = outcome(cardFiles);
            QCOMPARE(healed.error, QString());
            QCOMPARE(healed.notNew, 0);
        }
    }

    void fileSystemIsFull_data() {
        QTest::addColumn<Before>("before");
        QTest::addColumn<int>("freePages");
        QTest::addColumn<int>("notNew");

        // Each new file needs a page; those that are there need none.
        QTest::newRow("no files, no room") << Before::NoFiles << 0 << 27;
        QTest::newRow("no files, room for one") << Before::NoFiles << 1 << 26;
        QTest::newRow("no files, room for ten") << Before::NoFiles << 10 << 17;
        QTest::newRow("no files, room for all") << Before::NoFiles << 27 << 0;
        QTest::newRow("files of one byte, no room") << Before::OneByteFiles << 0 << 0;
        QTest::newRow("longer files, no room but for the clock's") << Before::LongFiles << 1 << 0;
        QTest::newRow("longer files, no room") << Before::LongFiles << 0 << 1;
        QTest::newRow("empty files, room for three") << Before::EmptyFiles << 3 << 24;
    }
    void fileSystemIsFull() {
        QFETCH(Before, before);
        QFETCH(int, freePages);
        QFETCH(int, notNew);
        FaultTable& sums = table("the file system is full", QTest::currentDataTag());
        const MadeCard card;
        QDir().mkpath(card.path("setting"));
        const auto run = inOwnMount(card.path("setting"), 256, [&] {
            const CardOfFiles files{card, before};
            files.make();
            if (!fillUp(card.path("setting"), freePages))
                return QStringLiteral("cannot fill the file system");
            (void)changedRecord(card.path("setting")).save();
            const Outcome result = outcome(files);
            card.put("fates", result.fates);
            return result.notNew == notNew ? result.error : QStringLiteral("%1 not new").arg(result.notNew);
        });
        m_allRuns = m_allRuns && run.possible;
        if (!run.possible)
            QSKIP("mounting a small file system needs root or a user namespace");
        QCOMPARE(run.error, QString());
        sums.add({notNew, 0, QString(), *card.bytes("fates")});
    }

    void readOnlyMount() {
        FaultTable& sums = table("the mount is read-only", "files of one byte");
        const MadeCard card;
        QDir().mkpath(card.path("setting"));
        const auto run = inOwnMount(card.path("setting"), 256, [&] {
            const CardOfFiles files{card, Before::OneByteFiles};
            files.make();
            if (!makeReadOnly(card.path("setting")))
                return QStringLiteral("cannot make the mount read-only");
            const bool opened = changedRecord(card.path("setting")).save();
            const Outcome result = outcome(files);
            card.put("fates", result.fates);
            return !opened && result.notNew == kByteFiles + 1 ? result.error
                                                              : QStringLiteral("something was written");
        });
        m_allRuns = m_allRuns && run.possible;
        if (!run.possible)
            QSKIP("a read-only mount needs root or a user namespace");
        QCOMPARE(run.error, QString());
        sums.add({kByteFiles + 1, 0, QString(), *card.bytes("fates")});
    }

    // The published tables are what the runs above gave, as far as this machine allowed them. With
    // QL240_UPDATE_TABLES set they are written anew.
    void faultTable() {
        if (m_table.isEmpty())
            QSKIP("sums up the other tests' runs");
        QFile file(QStringLiteral(QL240_DOCS "/card-faults.md"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString whole = QString::fromUtf8(file.readAll());
        file.close();
        const QStringList byState = m_table.byState();
        const QStringList byFile = m_table.byFile();
        if (qEnvironmentVariableIsSet("QL240_UPDATE_TABLES")) {
            const QString head = whole.left(whole.indexOf(u'\n', whole.indexOf(u"|---")) + 1);
            const QString text = whole.mid(whole.indexOf(u"\n## "),
                                           whole.lastIndexOf(u"\n| File") - whole.indexOf(u"\n## ") + 1);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write((head + byState.join(u'\n') + u'\n' + text + byFile.join(u'\n') + u'\n').toUtf8());
            return;
        }
        for (const QString& line : byState)
            QVERIFY2(whole.contains(u'\n' + line + u'\n'), qPrintable(line));
        for (const QString& line : m_allRuns ? byFile : QStringList())
            QVERIFY2(whole.contains(u'\n' + line + u'\n'), qPrintable(line));
    }

private:
    FaultTable& table(const char* fault, const char* before) {
        m_table.begin(QString::fromLatin1(fault), QString::fromLatin1(before));
        return m_table;
    }

    FaultTable m_table;
    bool m_allRuns = true; // none was left out by this machine
};

QTEST_GUILESS_MAIN(TestCardSaving)
#include "test_card_saving.moc"
