// What the program says beside its result: problems on standard error, and how far it is where that is a
// terminal.
#pragma once

#include <QString>

namespace ql240::cli {

// As it may be shown on a terminal: control characters, which could command it, become "?".
QString shown(const QString& text);

// A file's name as it may be written: in its own bytes, but for the same.
QByteArray forTerminal(const QString& text);

class Reports {
public:
    enum class Kind { Spoken, Silent };

    explicit Reports(Kind kind = Kind::Spoken);
    ~Reports();

    // The clip under way, from 1.
    void progress(qsizetype number, qsizetype count, const QString& name);
    // "ql240-clip: NAME: TEXT".
    void say(const QString& name, const QString& text);
    // The same, and the program's exit code tells of it.
    void fail(const QString& name, const QString& text);

    bool hasFailures() const { return m_hasFailures; }

private:
    void clearLine();

    bool m_isSilent;
    bool m_isTerminal;
    bool m_hasLine = false;
    bool m_hasFailures = false;
};

} // namespace ql240::cli
