#include "settings/setting_text.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace ql240 {
namespace {

// The ASCII white space that QString::toInt() skips.
bool isSpace(char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

char lowered(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

} // namespace

void DecimalReader::feed(char byte) {
    const bool digit = byte >= '0' && byte <= '9';
    switch (m_phase) {
        case Phase::Before:
            if (isSpace(byte))
                return;
            m_negative = byte == '-';
            m_phase = m_negative || byte == '+' ? Phase::Sign : digit ? Phase::Digits : Phase::Bad;
            break;
        case Phase::Sign:
            m_phase = digit ? Phase::Digits : Phase::Bad;
            break;
        case Phase::Digits:
            m_phase = digit ? Phase::Digits : isSpace(byte) ? Phase::After : Phase::Bad;
            break;
        case Phase::After:
            m_phase = isSpace(byte) ? Phase::After : Phase::Bad;
            break;
        case Phase::Bad:
            return;
    }
    if (digit && m_phase == Phase::Digits)
        m_magnitude = std::min(m_magnitude * 10 + (byte - '0'), static_cast<std::int64_t>(1) << 40);
}

int DecimalReader::value() const {
    const std::int64_t value = m_negative ? -m_magnitude : m_magnitude;
    const bool complete = m_phase == Phase::Digits || m_phase == Phase::After;
    const bool fits = value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
    return complete && fits ? static_cast<int>(value) : 0;
}

void SettingTextReader::feed(QByteArrayView bytes) {
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    while (at < end) {
        if (m_part == Part::Nothing) {
            at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
            if (!at)
                return;
        }
        if (*at == '\n')
            endLine();
        else if (m_part == Part::Value)
            m_number.feed(*at);
        else
            feedKey(*at);
        ++at;
    }
}

void SettingTextReader::feedKey(char byte) {
    if (byte == ':') {
        m_part = m_headLength > 0 && mayMatch() ? Part::Value : Part::Nothing;
        return;
    }
    if (m_headLength < static_cast<qsizetype>(m_head.size())) {
        m_head[static_cast<std::size_t>(m_headLength++)] = lowered(byte);
        if (m_headLength == static_cast<qsizetype>(m_head.size()) && !mayMatch())
            m_part = Part::Nothing;
    }
}

void SettingTextReader::endLine() {
    if (m_part == Part::Value) {
        for (const SettingKey& key : kSettingKeys) {
            if ((key.files & kInText) && lineBeginsWith(key.name))
                m_values.*key.value = m_number.value();
        }
    }
    m_part = Part::Key;
    m_headLength = 0;
    m_number = DecimalReader();
}

// Only a prefix test: a line "sensitivityvalue1" also matches "sensitivityvalue".
bool SettingTextReader::lineBeginsWith(const char* key) const {
    qsizetype at = 0;
    while (key[at] != '\0' && at < m_headLength && m_head[static_cast<std::size_t>(at)] == lowered(key[at]))
        ++at;
    return key[at] == '\0';
}

bool SettingTextReader::mayMatch() const {
    for (const SettingKey& key : kSettingKeys) {
        if ((key.files & kInText) && lineBeginsWith(key.name))
            return true;
    }
    return false;
}

} // namespace ql240
