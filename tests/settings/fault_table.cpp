#include "settings/fault_table.h"

#include <QStringList>

namespace ql240 {

void FaultTable::begin(const QString& fault, const QString& before) {
    m_lines.push_back({fault, before});
    if (!m_faults.contains(fault))
        m_faults.append(fault);
}

void FaultTable::add(const Outcome& outcome) {
    Line& line = m_lines.back();
    ++line.runs;
    line.fresh += kWritten - outcome.notNew;
    line.old += outcome.notNew - outcome.mixed;
    line.mixed += outcome.mixed;
    line.rests += int(outcome.error.count(u".new"));
    for (const QByteArray& fate : outcome.fates.split('\n'))
        if (!fate.isEmpty())
            ++m_files[QString::fromLatin1(fate.mid(1))][line.fault][fate[0]];
}

QStringList FaultTable::byState() const {
    QStringList lines;
    for (const Line& line : m_lines)
        if (line.runs > 0)
            lines.append(QStringLiteral("| %1 | %2 | %3 | %4 | %5 | %6 | %7 |")
                             .arg(line.fault, line.before)
                             .arg(line.runs)
                             .arg(line.fresh)
                             .arg(line.old)
                             .arg(line.mixed)
                             .arg(line.rests));
    return lines;
}

QStringList FaultTable::byFile() const {
    QStringList lines{QStringLiteral("| File | %1 |").arg(m_faults.join(QLatin1String(" | "))),
                      QStringLiteral("|---") + QStringLiteral("|---").repeated(m_faults.size()) + u'|'};
    for (const QString& file : m_files.keys()) {
        QStringList cells{file};
        for (const QString& fault : m_faults) {
            const QMap<char, int> fates = m_files[file][fault];
            cells.append(QStringLiteral("%1 / %2 / %3")
                             .arg(fates.value(Outcome::New))
                             .arg(fates.value(Outcome::Old))
                             .arg(fates.value(Outcome::Neither)));
        }
        lines.append(QStringLiteral("| %1 |").arg(cells.join(QLatin1String(" | "))));
    }
    return lines;
}

} // namespace ql240
