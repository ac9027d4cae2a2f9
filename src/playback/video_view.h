// The widget that shows video: fits, zooms and pans the renderer's window and adjusts every decoded frame.
// Owns its Player. Interface thread, except filterSample, which streaming threads call.
#pragma once

#include <QLabel>
#include <QPixmap>

#include <array>
#include <atomic>
#include <memory>

#include "playback/player.h"
#include "playback/sample_handler.h"
#include "widgets/mouse_drag.h"

namespace ql240 {

class FrameAdjuster;

class VideoView : public QLabel, public SampleFilter {
    Q_OBJECT

public:
    explicit VideoView(QWidget* parent = nullptr);
    ~VideoView() override;

    [[nodiscard]] bool openClip(const Clip* clip);
    void closeClip();
    Player* player() const { return m_player.get(); }
    void setSecondPlayer(Player* player);
    void setFrameSize(const QSize& size) { m_frameSize = size; }
    void setImageAdjust(std::int32_t brightness, std::int32_t contrast);
    void setVideoVisible(bool on);
    void zoomStep(int step); // +1 in, -1 out, 0 fit
    void layoutVideo();      // fits the picture
    void setZoomWinMode(bool on) { m_zoomWinMode = on; }
    // Call when a button is released, whichever widget gets the event.
    void endDrag(Qt::MouseButton button) { m_drag.end(button); }
    void setSelected(bool on);

    float zoom() const { return m_zoom; }
    int heightForWidth(int width) const override { return width / 2; }

    void filterSample(std::int32_t index, double sampleTime, std::uint8_t* buffer,
                      std::int32_t length) override;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

Q_SIGNALS:
    // Only fileOpened() is emitted by the view, after each clip that it has opened. The others are declared
    // for other windows; their order is fixed.
    void clicked();
    void doubleClicked();
    void fileOpened();
    void fileDropped(ql240::Clip* clip);
    void playingUpdated(bool being);
    void clipStopped(const ql240::Clip* clip);
    void clipJustPaused();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    struct Target {
        Player* player;
        bool second;
    };

    WindowToken token() { return windowToken(this); }
    Target zoomTarget() const;
    bool panTo(const QPoint& position);
    void showVideo(int index, bool on);
    void bringBackHidden();

    float m_zoom = 1.0F;
    QSize m_nominalSize{640, 360};
    QSize m_frameSize{-1, -1};
    QPixmap m_background;
    std::unique_ptr<Player> m_player;
    Player* m_secondPlayer = nullptr;
    std::array<std::unique_ptr<SampleHandler>, Player::kStreams> m_handlers;
    bool m_zoomWinMode = false;
    MouseDrag m_drag;
    QPoint m_pressPoint;
    QPoint m_lastPoint;
    bool m_selected = false;

    // Read by streaming threads.
    std::array<std::atomic<bool>, Player::kStreams> m_showStream{true, true};
    std::atomic<bool> m_hasSecondPlayer{false};
    std::array<std::unique_ptr<FrameAdjuster>, Player::kStreams> m_adjusters;
};

// Where a picture of `frame` pixels goes in a view of `view` pixels: it always takes the full height, with
// margins only at the sides. A null rectangle if the frame has no width.
QRect fittedRect(const QSize& view, const QSize& frame);

} // namespace ql240
