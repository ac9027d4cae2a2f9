// Messages besides the output: problems on standard error, and progress if that is a terminal.
#pragma once

#include <QString>

namespace ql240::cli {

// Makes a text safe for a terminal: control characters, which could be commands to it, become "?".
QString shown(const QString& text);

// The same for a file name, in its original bytes.
QByteArray forTerminal(const QString& text);

class Reports {
public:
    enum class Kind { Spoken, Silent };

    explicit Reports(Kind kind = Kind::Spoken);
    ~Reports();

    // The current clip, counted from 1.
    void progress(qsizetype number, qsizetype count, const QString& name);
    // "ql240-clip: NAME: TEXT".
    void say(const QString& name, const QString& text);
    // The same, and the program's exit code will report a failure.
    void fail(const QString& name, const QString& text);

    bool hasFailures() const { return m_hasFailures; }

    // Before standard output is written, which may be the same terminal.
    void clearLine();
    // For a command that writes there all the time.
    void hideProgress() { m_isTerminal = false; }

private:
    bool m_isSilent;
    bool m_isTerminal;
    bool m_hasLine = false;
    bool m_hasFailures = false;
};

} // namespace ql240::cli
