#include "usage_check.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>

namespace ql240::skin {
namespace {

const QRegularExpression& token() {
    // Comments, raw strings, strings, characters. Comments are matched so that their words count as no names.
    static const QRegularExpression expression(
        QStringLiteral(
            R"re(//[^\n]*|/\*.*?\*/|R"(\w*)\((.*?)\)\1"|"((?:[^"\\\n]|\\.)*)"|'(?:[^'\\\n]|\\.)')re"),
        QRegularExpression::DotMatchesEverythingOption);
    return expression;
}

// A literal reduced to the table's name, without "2012/" and ".png".
QString pictureName(QString text) {
    static const QRegularExpression prefix(QStringLiteral("^:?/?(gfx_r/)?(2012/)?"));
    text.remove(prefix);
    return text.endsWith(QLatin1String(".png")) ? text.chopped(4) : text;
}

// Names with the skin's own patterns, wherever they occur: prefixes of keys and backgrounds of windows.
bool hasSkinShape(const QString& text) {
    static const QRegularExpression shape(QStringLiteral("^([a-z][a-z0-9_]*_|[A-Za-z][A-Za-z0-9_]*_bg)$"));
    return shape.match(text).hasMatch();
}

bool isAskedFor(const Picture& picture, const QString& name) {
    const QString own = pictureName(picture.path);
    if (name == own || (!picture.stem.isEmpty() && name == picture.stem))
        return true;
    if (!name.contains(QLatin1String("%1")))
        return false;
    QString pattern = QRegularExpression::escape(name);
    pattern.replace(QLatin1String("\\%1"), QLatin1String("\\d+"));
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(own).hasMatch();
}

void addResourcePaths(const QString& literal, QStringList& paths) {
    static const QRegularExpression path(QStringLiteral(":/?gfx_r/[\\w%./]+"));
    for (auto match = path.globalMatch(literal); match.hasNext();)
        paths << pictureName(match.next().captured());
}

} // namespace

NamedPictures namedPictures(const QString& source) {
    static const QRegularExpression call(QStringLiteral(
        "(skinPath|skinPixmap|skinIcon|controlImages)\\s*\\(\\s*(QStringLiteral\\s*\\()?\\s*$"));
    NamedPictures named;
    qsizetype previousEnd = 0;
    for (auto match = token().globalMatch(source); match.hasNext();) {
        const QRegularExpressionMatch next = match.next();
        const QString before = source.mid(previousEnd, next.capturedStart() - previousEnd);
        previousEnd = next.capturedEnd();
        if (!next.hasCaptured(2) && !next.hasCaptured(3))
            continue;
        const QString literal = next.hasCaptured(3) ? next.captured(3) : next.captured(2);
        QStringList required;
        addResourcePaths(literal, required);
        if (required.isEmpty() &&
            (hasSkinShape(literal) || (call.match(before).hasMatch() && !literal.isEmpty())))
            required << pictureName(literal);
        named.required << required;
        named.mentioned << required << pictureName(literal);
    }
    return named;
}

UsageReport checkUsage(const PictureTable& table, const NamedPictures& named) {
    UsageReport report;
    const auto& pictures = table.pictures;
    for (const QString& name : named.required) {
        const bool known = std::any_of(pictures.begin(), pictures.end(),
                                       [&](const Picture& picture) { return isAskedFor(picture, name); });
        // The folders in resource paths are not pictures.
        if (!known && !name.isEmpty() && !name.endsWith(QLatin1Char('/')))
            report.missing << name;
    }
    for (const Picture& picture : pictures) {
        const bool asked = std::any_of(named.mentioned.begin(), named.mentioned.end(),
                                       [&](const QString& name) { return isAskedFor(picture, name); });
        if (!asked && !table.askedForOutside.contains(picture.path))
            report.unused << picture.path;
    }
    for (const QString& path : table.askedForOutside) {
        const bool known = std::any_of(pictures.begin(), pictures.end(),
                                       [&](const Picture& picture) { return picture.path == path; });
        report.missing << (known ? QStringList() : QStringList(pictureName(path)));
    }
    report.missing.removeDuplicates();
    return report;
}

NamedPictures readSources(const QString& folder) {
    NamedPictures all;
    QDirIterator files(folder, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly)) {
            const NamedPictures named = namedPictures(QString::fromUtf8(file.readAll()));
            all.mentioned << named.mentioned;
            all.required << named.required;
        }
    }
    all.mentioned.removeDuplicates();
    all.required.removeDuplicates();
    return all;
}

} // namespace ql240::skin
