// Saving when something fails: each file stays as it was or is new, never empty, and nothing is left over.
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QRegularExpression>
#include <QScopeGuard>
#include <QTest>

#include "settings/device_settings.h"
#include "support/faulty_files.h"
#include "support/made_card.h"
#include "support/own_mount.h"

using namespace ql240;

namespace {

constexpr int kByteFiles = 26;
const QByteArray kClock = "2031-07-31-18-05-09";

// Files that a save must not change.
const std::pair<QString, QByteArray> kUntouched[] = {
    {"setting.dat", "framevalue:2\nunknownvalue:7\n"},
    {"setspeedunit.dat", "\x01"},
};

// The card after one save.
struct Outcome {
    int notNew = 0;
    int mixed = 0; // of those, changed
    QString error; // the mixed files, and files that should not be there
};

// The card before a save.
enum class Before { NoFolder, NoFiles, OneByteFiles, LongFiles, EmptyFiles, UpperCaseFiles };

struct CardOfFiles {
    const MadeCard& card;
    Before before;

    QString fileName(const QString& name) const {
        return before == Before::UpperCaseFiles ? name.toUpper() : name;
    }

    std::optional<QByteArray> oldByte(int index) const {
        if (before == Before::NoFolder || before == Before::NoFiles)
            return std::nullopt;
        if (before == Before::EmptyFiles)
            return QByteArray();
        const QByteArray rest = before == Before::LongFiles ? "long rest of the old file" : "";
        return char(100 + index) + rest;
    }

    std::optional<QByteArray> oldClock() const {
        const auto byte = oldByte(0);
        return byte && byte->size() == 1 ? std::optional<QByteArray>("2012-01-01-00-00-00") : byte;
    }

    void make() const {
        if (before == Before::NoFolder)
            return;
        for (const auto& [name, bytes] : kUntouched)
            card.put("setting/" + name, bytes);
        int index = 0;
        for (const SettingKey& key : kSettingKeys) {
            if (const auto bytes = oldByte(index++); bytes && (key.files & kByteWritten))
                card.put("setting/" + fileName(QStringLiteral("set%1.dat").arg(key.name)), *bytes);
        }
        if (const auto bytes = oldClock())
            card.put("setting/" + fileName("settime.dat"), *bytes);
    }
};

// A record in which every value differs from the card's.
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

// An overwritten file gets its new byte before its new length; after the last save both must be right.
Outcome outcome(const CardOfFiles& files, bool atTheEnd = false) {
    Outcome result;
    QStringList rest = files.card.files("setting");
    const auto check = [&](const QString& plainName, const std::optional<QByteArray>& old,
                           const QByteArray& fresh, bool firstByteCounts) {
        const QString name = files.fileName(plainName);
        const auto bytes = files.card.bytes("setting/" + name);
        rest.removeOne(name);
        if (bytes && (*bytes == fresh || (firstByteCounts && !atTheEnd && bytes->startsWith(fresh))))
            return;
        ++result.notNew;
        if (bytes == old)
            return;
        ++result.mixed;
        result.error += name + " holds \"" + QString::fromLatin1(bytes.value_or("nothing")) + u'"';
    };
    int index = 0;
    for (const SettingKey& key : kSettingKeys) {
        if (key.files & kByteWritten) {
            check(QStringLiteral("set%1.dat").arg(key.name), files.oldByte(index),
                  QByteArray(1, newByte(key, index)), true);
        }
        ++index;
    }
    check("settime.dat", files.oldClock(), kClock, false);
    for (const auto& [name, bytes] : kUntouched) {
        rest.removeOne(name);
        if (files.before != Before::NoFolder && files.card.bytes("setting/" + name) != bytes)
            result.error += name + " has changed";
    }
    rest.removeOne("filler");
    result.error += rest.join(u' ');
    return result;
}

bool hasOneRestAtMost(const Outcome& outcome) {
    static const QRegularExpression rest("^(set\\w+\\.new)?$");
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
constexpr std::pair<Fault, const char*> kFaults[] = {{Fault::FailOne, "one operation fails"},
                                                     {Fault::FailFromThere, "the card is pulled out"},
                                                     {Fault::Kill, "the process is killed"}};

// The sum of all runs of a kind, as a line of docs/card-faults.md.
struct TableLine {
    int runs = 0, fresh = 0, old = 0, mixed = 0, rests = 0;

    void add(const Outcome& outcome) {
        ++runs;
        fresh += kByteFiles + 1 - outcome.notNew;
        old += outcome.notNew - outcome.mixed;
        mixed += outcome.mixed;
        rests += int(outcome.error.count(u".new"));
    }
    // The line, unless the page has it.
    QString missing(const char* name) const {
        QFile page(QStringLiteral(QL240_DOCS "/card-faults.md"));
        const QString head = QString::fromLatin1(name).replace(", ", " | ");
        const QString line = QString::asprintf("| %s | %d | %d | %d | %d | %d |", qPrintable(head), runs,
                                               fresh, old, mixed, rests);
        return page.open(QIODevice::ReadOnly) && page.readAll().contains(line.toUtf8()) ? QString() : line;
    }
};

} // namespace

class TestCardSaving : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
        TableLine sums;
        for (int at = 0; at < operations; ++at) {
            const MadeCard card;
            const CardOfFiles cardFiles{card, before};
            cardFiles.make();
            if (fault == Fault::Kill)
                saveAndDieAt(card.path("setting"), at);
            else
                saveWith(card.path("setting"), fault, at);
            const Outcome result = outcome(cardFiles);
            sums.add(result);
            // A failed operation costs one file at most, unless it was on the folder. What ends the save may
            // leave one temporary file, until the next save.
            const bool few = result.notNew <= 1 || result.notNew == kByteFiles + 1;
            const bool isWell =
                fault == Fault::FailOne ? result.error.isEmpty() && few : hasOneRestAtMost(result);
            QVERIFY2(isWell, qPrintable(QStringLiteral("%1: %2").arg(at).arg(result.error)));
            saveWith(card.path("setting"), Fault::None, 0);
            const Outcome healed = outcome(cardFiles, true);
            QCOMPARE(healed.error, QString());
            QCOMPARE(healed.notNew, 0);
        }
        QCOMPARE(sums.missing(QTest::currentDataTag()), QString());
    }

    // Each new file needs a page of the file system, existing ones don't.
    void fileSystemIsFull() {
        const std::tuple<Before, int, int, const char*> rows[] = {
            {Before::NoFiles, 0, 27, "no files, no room"},
            {Before::NoFiles, 10, 17, "no files, room for ten"},
            {Before::NoFiles, 27, 0, "no files, room for all"},
            {Before::OneByteFiles, 0, 0, "files of one byte, no room"},
            {Before::LongFiles, 1, 0, "longer files, room for the clock's"},
            {Before::LongFiles, 0, 1, "longer files, no room"},
            {Before::EmptyFiles, 3, 24, "empty files, room for three"},
        };
        for (const auto& [before, freePages, notNew, name] : rows)
            saveOnOwnMount(before, freePages, notNew, name);
    }

    void readOnlyMount() { saveOnOwnMount(Before::OneByteFiles, -1, kByteFiles + 1, "read-only"); }

private:
    // A negative number of free pages: read-only.
    static void saveOnOwnMount(Before before, int freePages, int notNew, const char* name) {
        if (!g_ownMounts)
            QSKIP("mounting a small file system needs root or a user namespace");
        const MadeCard card;
        const QString folder = card.path("setting");
        QDir().mkpath(folder);
        const QByteArray place = QFile::encodeName(folder);
        QCOMPARE(::mount("tmpfs", place.constData(), "tmpfs", 0, "mode=755,size=256k"), 0);
        const auto unmount = qScopeGuard([&] { ::umount2(place.constData(), MNT_DETACH); });
        const CardOfFiles files{card, before};
        files.make();
        QVERIFY(freePages < 0 ? makeReadOnly(place) : fillUp(folder, freePages));
        (void)changedRecord(folder).save();
        const Outcome result = outcome(files, true);
        QVERIFY2(result.error.isEmpty() && result.notNew == notNew, name);
    }
};

int main(int argc, char** argv) {
    return runOnOwnMounts<QCoreApplication, TestCardSaving>(argc, argv);
}
#include "test_card_saving.moc"
