#include "cli/reports.h"

#include <unistd.h>

#include <QByteArray>
#include <cstdio>

#include "clips/containers/new_file.h"

namespace ql240::cli {

QString shown(const QString& text) {
    QList<uint> safe = text.toUcs4();
    for (uint& c : safe) {
        switch (QChar::category(c)) {
            case QChar::Other_Control:
            case QChar::Other_Format:
            case QChar::Separator_Line:
            case QChar::Separator_Paragraph:
                c = u'?';
                break;
            default:
                break;
        }
    }
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(safe.constData()), safe.size());
}

QByteArray forTerminal(const QString& text) {
    return shown(text).toLocal8Bit();
}

Reports::Reports(Kind kind)
    : m_isSilent(kind == Kind::Silent), m_isTerminal(!m_isSilent && ::isatty(STDERR_FILENO) == 1) {}

Reports::~Reports() {
    clearLine();
}

void Reports::progress(qsizetype number, qsizetype count, const QString& name) {
    if (!m_isTerminal || count < 2)
        return;
    clearLine();
    std::fprintf(stderr, "%lld/%lld %s", static_cast<long long>(number), static_cast<long long>(count),
                 forTerminal(name.left(60)).constData());
    std::fflush(stderr);
    m_hasLine = true;
}

void Reports::say(const QString& name, const QString& text) {
    if (m_isSilent)
        return;
    clearLine();
    std::fprintf(stderr, "ql240-clip: %s: %s\n", forTerminal(name).constData(),
                 forTerminal(text).constData());
}

void Reports::fail(const QString& name, const QString& text) {
    m_hasFailures = true;
    const bool needsForce = text.endsWith(containers::NewFile::kExists);
    say(name, needsForce ? text + QStringLiteral("; --force writes over it") : text);
}

void Reports::clearLine() {
    if (m_hasLine)
        std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    m_hasLine = false;
}

} // namespace ql240::cli
