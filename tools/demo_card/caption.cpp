#include "demo_card/caption.h"

#include <QPainter>
#include <algorithm>
#include <string_view>

namespace ql240::demo {
namespace {

constexpr std::string_view kCharacters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-.:/#+kmh"; // in picture order
constexpr int kAdvance = 6;                                                               // dots

// One pixel per dot.
QImage dots(const QString& text, QRgb colour) {
    static const QImage characters(QStringLiteral(":/demo_card/characters.xpm"));
    QImage strip = characters.convertToFormat(QImage::Format_Indexed8);
    strip.setColorTable({0, colour});
    QImage picture(static_cast<int>(text.size()) * kAdvance, strip.height(),
                   QImage::Format_ARGB32_Premultiplied);
    picture.fill(0);
    QPainter painter(&picture);
    for (int i = 0; i < text.size(); ++i)
        if (const auto at = kCharacters.find(text[i].toLatin1()); at != std::string_view::npos)
            painter.drawImage(i * kAdvance, 0, strip, static_cast<int>(at) * kAdvance, 0, kAdvance);
    return picture;
}

// White with a dark outline.
void paintDots(QImage& picture, QPoint topLeft, int dot, const QString& text) {
    const QImage rim = dots(text, 0xff101010);
    const QRect area(topLeft, rim.size() * dot);
    const int wide = std::max(1, dot / 2);
    QPainter painter(&picture);
    for (int x : {-wide, wide})
        for (int y : {-wide, wide})
            painter.drawImage(area.translated(x, y), rim);
    painter.drawImage(area, dots(text, 0xfff4f4f0));
}

} // namespace

void burnCaption(QImage& picture, const DrivePlan& plan, const DriveState& state, const QString& camera,
                 int frameNumber) {
    const int dot = std::max(1, picture.height() / 240);
    const QDateTime clock = plan.start.addMSecs(static_cast<std::int64_t>(state.time * 1000));
    const QString fix = state.fix ? QStringLiteral("%1km/h  N%2 E%3")
                                        .arg(qRound(state.speed * 3.6), 3)
                                        .arg(state.position.latitude, 0, 'f', 5)
                                        .arg(state.position.longitude, 0, 'f', 5)
                                  : QStringLiteral(" --km/h  N--.----- E---.-----");
    const QString text = clock.toString(QStringLiteral("yyyy/MM/dd hh:mm:ss ")) + fix;
    const QString frame = QStringLiteral("%1 #%2").arg(camera).arg(frameNumber, 5, 10, QLatin1Char('0'));
    const int y = picture.height() - 12 * dot;
    const int margin = 6 * dot;
    const int right = picture.width() - static_cast<int>(frame.size()) * kAdvance * dot - margin;
    const bool fits = margin + static_cast<int>(text.size()) * kAdvance * dot < right;
    paintDots(picture, {margin, y}, dot, text);
    paintDots(picture, {right, fits ? y : margin}, dot, frame);
}

} // namespace ql240::demo
