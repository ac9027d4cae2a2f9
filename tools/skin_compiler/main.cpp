// Draws the skin: reads the picture table of a folder, writes the pictures and their resource list.
//   skin_compiler SOURCE OUTPUT
#include <QFile>
#include <QFontInfo>
#include <QGuiApplication>
#include <QTextStream>

#include "skin_writer.h"

namespace {

int fail(const QString& message) {
    QTextStream(stderr) << "skin_compiler: " << message << '\n';
    return 1;
}

} // namespace

int main(int argc, char* argv[]) {
    // A build has no display and need not have a session.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "default.warning=false");
    QGuiApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 3) {
        return fail(QStringLiteral("expected a source folder and an output folder"));
    }
    if (QFontInfo(QFont(QStringLiteral("Open Sans"))).family() != QLatin1String("Open Sans")) {
        return fail(QStringLiteral("the font \"Open Sans\" is not installed"));
    }
    const QString tablePath = arguments[1] + QStringLiteral("/pictures.txt");
    QFile file(tablePath);
    if (!file.open(QIODevice::ReadOnly)) {
        return fail(tablePath + QStringLiteral(": ") + file.errorString());
    }
    QString error;
    const auto table = ql240::skin::parsePictureTable(QString::fromUtf8(file.readAll()), error);
    if (!table || !ql240::skin::writeSkin(*table, arguments[1], QDir(arguments[2]), error)) {
        return fail(tablePath + QStringLiteral(": ") + error);
    }
    return 0;
}
