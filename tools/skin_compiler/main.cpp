// Draws the skin from the picture table of a folder.
//   skin_compiler draw SOURCE OUTPUT            the pictures and the list of them for the resource compiler
//   skin_compiler check SOURCE CODE             compares the table with the program's sources
//   skin_compiler contact-sheet SOURCE IMAGE    all pictures on one sheet
//   skin_compiler icons SOURCE OUTPUT           the program's icon in the desktop's sizes
#include <QFile>
#include <QFontInfo>
#include <QGuiApplication>
#include <QTextStream>

#include "contact_sheet.h"
#include "desktop_icons.h"
#include "skin_writer.h"
#include "usage_check.h"

namespace ql240::skin {
namespace {

int fail(const QString& message) {
    QTextStream(stderr) << "skin_compiler: " << message << '\n';
    return 1;
}

int draw(const PictureTable& table, const QString& source, const QString& output) {
    QString error;
    return writeSkin(table, source, QDir(output), error) ? 0 : fail(error);
}

int check(const PictureTable& table, const QString&, const QString& code) {
    const UsageReport report = checkUsage(table, readSources(code));
    for (const QString& name : report.missing)
        fail(QStringLiteral("\"%1\" is asked for, but is not in the picture table").arg(name));
    for (const QString& path : report.unused)
        fail(QStringLiteral("nothing in the code asks for \"%1\"").arg(path));
    return report.missing.isEmpty() && report.unused.isEmpty() ? 0 : 1;
}

int drawContactSheet(const PictureTable& table, const QString& source, const QString& path) {
    QString error;
    const QImage sheet = contactSheet(table, source, error);
    if (sheet.isNull())
        return fail(error);
    return sheet.save(path) ? 0 : fail(QStringLiteral("%1: can't be written").arg(path));
}

int drawIcons(const PictureTable&, const QString& source, const QString& output) {
    QString error;
    return writeDesktopIcons(source, QDir(output), error) ? 0 : fail(error);
}

int run(const QStringList& arguments) {
    using Command = int (*)(const PictureTable&, const QString&, const QString&);
    const QHash<QString, Command> commands{{QStringLiteral("draw"), draw},
                                           {QStringLiteral("check"), check},
                                           {QStringLiteral("contact-sheet"), drawContactSheet},
                                           {QStringLiteral("icons"), drawIcons}};
    const Command command = commands.value(arguments.value(1));
    if (!command || arguments.size() != 4) {
        return fail(QStringLiteral(
            "expected draw, check, contact-sheet or icons, a source folder and one more path"));
    }
    if (QFontInfo(QFont(QStringLiteral("Open Sans"))).family() != QLatin1String("Open Sans"))
        return fail(QStringLiteral("the font \"Open Sans\" is not installed"));
    QFile file(arguments[2] + QStringLiteral("/pictures.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.fileName() + QStringLiteral(": ") + file.errorString());
    QString error;
    const std::optional<PictureTable> table = parsePictureTable(QString::fromUtf8(file.readAll()), error);
    return table ? command(*table, arguments[2], arguments[3]) : fail(error);
}

} // namespace
} // namespace ql240::skin

int main(int argc, char* argv[]) {
    // A build has no display and may have no session.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "default.warning=false");
    QGuiApplication application(argc, argv);
    return ql240::skin::run(application.arguments());
}
