// One camera's pictures of a drive through a world.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "demo_card/scene/art.h"
#include "demo_card/scene/backdrop.h"
#include "demo_card/scene/ground.h"

namespace ql240::demo {

inline constexpr Rgb kBeam{1.0f, 0.94f, 0.80f};

class Scene {
public:
    // drive and world must outlive the scene.
    Scene(const Drive& drive, const World& world, QSize size, bool backwards);

    // The picture at that time. Valid until the next call.
    QImage& paint(double time);

private:
    struct Thing {
        double ahead;
        std::function<void()> paint;
    };

    void gatherThings(double time);
    void add(double ahead, double length, std::function<void()> paint);
    Shade shadeAt(double place, const RoadView::Spot& spot) const;

    void paintSegment(double nearAhead, double farAhead);
    void paintWall(const Wall& wall, double nearAhead, double farAhead);
    void paintStanding(const Standing& standing, double place, double time);
    void paintSignal(const Signal& signal, double time);
    void paintVehicle(const Vehicle& vehicle, double place, double time);
    void paintFlank(const CarArt& art, double nearAhead, float side, bool front, const Shade& shade);
    void paintVehicleLamps(const QRectF& face, bool front, bool braking);
    void paintBeams();
    void paintCockpit(const DriveState& state);

    // Returns where the upright picture was painted.
    QRectF paintUpright(const Picture& picture, const RoadView::Spot& spot, float bottom, float height,
                        const Shade& shade, bool mirrored = false);
    void paintGlow(QPointF middle, double radius, Rgb colour);

    const Drive& m_drive;
    const World& m_world;
    bool m_backwards;
    bool m_beams; // the camera car's headlights are visible
    Canvas m_canvas;
    Art m_art;
    std::optional<Backdrop> m_backdrop;
    std::optional<RoadView> m_view; // of the picture being painted
    std::vector<Thing> m_things;    // in view, nearest first
};

} // namespace ql240::demo
