// Sums up what became of the card's files in many runs of saving, and keeps the page that publishes it.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <vector>

namespace ql240 {

// What one run made of the card. Each file is new, as it was, or neither.
struct Outcome {
    enum Fate : char { New = 'n', Old = 'o', Neither = 'x' };

    int notNew = 0;
    int mixed = 0;    // of those, neither new nor as they were
    QString error;    // a file that is neither old nor new, or that should not be there
    QByteArray fates; // a line a file: its fate and its name in lower case

    void add(const QString& file, Fate fate) { fates += char(fate) + file.toLower().toLatin1() + '\n'; }
};

class FaultTable {
public:
    static constexpr int kWritten = 27; // files that a save writes

    // The outcomes that follow belong to this fault and this state of the card.
    void begin(const QString& fault, const QString& before);
    void add(const Outcome& outcome);

    bool isEmpty() const { return m_lines.empty(); }
    // The lines of each table; those by state leave out what this machine didn't allow.
    QStringList byState() const;
    QStringList byFile() const;

private:
    struct Line {
        QString fault;
        QString before;
        int runs = 0;
        int fresh = 0;
        int old = 0;
        int mixed = 0;
        int rests = 0;
    };

    std::vector<Line> m_lines;
    QStringList m_faults;
    QMap<QString, QMap<QString, QMap<char, int>>> m_files; // by file, fault, fate
};

} // namespace ql240
