#include "picture_table.h"

#include <QRegularExpression>

namespace ql240::skin {
namespace {

// Words separated by blanks; text in double quotes is one word; "#" starts a comment.
QStringList splitWords(const QString& line) {
    static const QRegularExpression word(QStringLiteral(R"re("([^"]*)"|(#.*)|([^\s"]+))re"));
    QStringList words;
    for (auto match = word.globalMatch(line); match.hasNext();) {
        const QRegularExpressionMatch next = match.next();
        if (next.hasCaptured(2))
            break;
        words << (next.hasCaptured(1) ? next.captured(1) : next.captured(3));
    }
    return words;
}

QString resourcePath(const QString& name) {
    const QString path = name.contains(QLatin1Char('/')) ? name : QStringLiteral("2012/") + name;
    return path.contains(QLatin1Char('.')) ? path : path + QStringLiteral(".png");
}

std::optional<QSize> parseSize(const QString& word) {
    static const QRegularExpression form(QStringLiteral("^([1-9]\\d*)x([1-9]\\d*)$"));
    const QRegularExpressionMatch match = form.match(word);
    if (!match.hasMatch())
        return std::nullopt;
    return QSize(match.captured(1).toInt(), match.captured(2).toInt());
}

class Parser {
public:
    bool readLine(const QString& line, int number);
    QString error() const { return m_error; }
    PictureTable take() { return std::move(m_table); }

private:
    bool readColor(const QStringList& words);
    bool readPicture(const QStringList& words);
    bool readButtons(const QStringList& words);
    bool addPicture(Picture picture);
    bool fail(const QString& what);

    int m_line = 0;
    QString m_error;
    PictureTable m_table;
};

bool Parser::fail(const QString& what) {
    m_error = QStringLiteral("line %1: %2").arg(m_line).arg(what);
    return false;
}

bool Parser::addPicture(Picture picture) {
    for (const Picture& earlier : m_table.pictures) {
        if (earlier.path == picture.path)
            return fail(QStringLiteral("a second picture \"%1\"").arg(picture.path));
    }
    m_table.pictures.push_back(std::move(picture));
    return true;
}

bool Parser::readLine(const QString& line, int number) {
    m_line = number;
    const QStringList words = splitWords(line);
    if (words.isEmpty())
        return true;
    if (line.front().isSpace()) {
        if (m_table.pictures.empty())
            return fail(QStringLiteral("a shape before the first picture"));
        m_table.pictures.back().shapes.push_back({number, words.front(), words.mid(1)});
        return true;
    }
    if (words.front() == QLatin1String("color"))
        return readColor(words);
    if (words.front() == QLatin1String("picture"))
        return readPicture(words);
    if (words.front() == QLatin1String("buttons"))
        return readButtons(words);
    if (words.front() == QLatin1String("outside")) {
        for (const QString& name : words.mid(1))
            m_table.askedForOutside << resourcePath(name);
        return true;
    }
    return fail(QStringLiteral("unknown statement \"%1\"").arg(words.front()));
}

bool Parser::readColor(const QStringList& words) {
    QList<int> channels;
    for (const QString& word : words.mid(2)) {
        bool isNumber = false;
        channels << word.toInt(&isNumber);
        if (!isNumber || channels.back() < 0 || channels.back() > 255)
            return fail(QStringLiteral("a channel is a number from 0 to 255"));
    }
    if (channels.size() != 3 && channels.size() != 4)
        return fail(QStringLiteral("a colour has a name and three or four channels"));
    m_table.palette.insert(words[1], QColor(channels[0], channels[1], channels[2], channels.value(3, 255)));
    return true;
}

bool Parser::readPicture(const QStringList& words) {
    const std::optional<QSize> size = parseSize(words.value(2));
    if (!size)
        return fail(QStringLiteral("a picture has a name and a size"));
    Picture picture{resourcePath(words[1]), *size, {}, {}};
    if (words.size() > 3) {
        if (words[3] != QLatin1String(":") || words.size() < 5)
            return fail(QStringLiteral("a shape on the picture's own line follows a colon"));
        picture.shapes.push_back({m_line, words[4], words.mid(5)});
    }
    return addPicture(picture);
}

// The hover and pressed pictures may have another glyph, which then shows the effect of a press.
bool Parser::readButtons(const QStringList& words) {
    const std::optional<QSize> size = parseSize(words.value(2));
    if (!size || words.size() < 4 || words.size() > 6)
        return fail(QStringLiteral("buttons have a name, a size, a style and at most two glyphs"));
    const QString other = words.value(5, words.value(4));
    const QString glyphs[] = {words.value(4), other, other};
    for (int look = 0; look < 3; ++look) {
        const QString name = words[1] + QString::number(look + 1);
        QStringList arguments{words[3], QString::number(look)};
        if (!glyphs[look].isEmpty())
            arguments << glyphs[look];
        const Shape shape{m_line, QStringLiteral("button"), arguments};
        if (!addPicture({resourcePath(name), *size, words[1], {shape}}))
            return false;
    }
    return true;
}

} // namespace

std::optional<PictureTable> parsePictureTable(const QString& text, QString& error) {
    Parser parser;
    int number = 0;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        if (!parser.readLine(line, ++number)) {
            error = parser.error();
            return std::nullopt;
        }
    }
    return parser.take();
}

} // namespace ql240::skin
