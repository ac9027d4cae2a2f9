// A paint device that draws what it is told into an image and, before each text, measures how well the text
// will stand out from what is already there. Render a widget on it to learn the contrast of all its texts,
// painted ones, labels and style sheets alike.
#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QString>
#include <memory>

namespace ql240::test {

// Contrast of two opaque colours, 1 to 21 (WCAG 2.1).
double contrast(QRgb a, QRgb b);

struct TextOnGround {
    QString text;
    QRect place; // of the letters, in the image
    QColor color;
    double contrast; // with the pixel of the ground that comes closest to the text's colour
};

class ContrastProbe : public QImage {
public:
    explicit ContrastProbe(const QImage& ground);
    ~ContrastProbe() override;

    QPaintEngine* paintEngine() const override;
    const QImage& image() const; // what was drawn
    const QList<TextOnGround>& texts() const;

private:
    class Engine;
    std::unique_ptr<Engine> m_engine;
};

} // namespace ql240::test
