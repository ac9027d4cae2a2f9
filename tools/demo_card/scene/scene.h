#pragma once

// One camera's pictures of a drive through a world.

#include <array>
#include <map>
#include <memory>

#include "demo_card/scene/art.h"
#include "demo_card/scene/backdrop.h"
#include "demo_card/scene/ground.h"
#include "demo_card/scene/road_view.h"

namespace ql240 {

// The car's own bonnet, or the rear window's frame: what lies over every picture, from a line on.
struct Cockpit {
    QImage picture;
    int top = 0;
};

Cockpit paintCockpit(QSize size, bool backwards, const Palette& palette);

class Scene {
public:
    // drive and world must live as long as the scene.
    Scene(const Drive& drive, const World& world, QSize size, bool backwards);

    // The picture at that time, with the frame number and the camera's line of text burnt in. Valid until the
    // next.
    const QImage& paint(double time, int frameNumber);

private:
    enum class Kind { Standing, Signal, Vehicle, Walker, Portal, TunnelLamps, TunnelMouth };
    struct Thing {
        double ahead;
        Kind kind;
        qsizetype index;
    };

    void prepareArt();
    void gatherWalls(const RoadView& view);
    void gatherThings(const RoadView& view, double time);
    void gatherTunnel(const RoadView& view);
    void add(double ahead, Kind kind, qsizetype index = 0);
    double placeOf(const Vehicle& vehicle, double time) const;

    void paintSegment(const RoadView& view, double nearAhead, double farAhead, double time);
    void paintWall(const RoadView& view, const Wall& wall, double nearAhead, double farAhead);
    void paintThing(const RoadView& view, const Thing& thing, double time);
    void paintStanding(const RoadView& view, const Standing& standing);
    void paintSignal(const RoadView& view, const Signal& signal, double time);
    void paintVehicle(const RoadView& view, const Vehicle& vehicle, double time);
    void paintCarShadow(const RoadView& view, const RoadView::Spot& nearest, const CarArt& art);
    void paintFlank(const RoadView& view, const CarArt& art, double nearAhead, float side, bool front,
                    const Shade& shade);
    void paintVehicleLamps(const QRectF& face, const CarArt& art, bool front, bool braking);
    void paintWalker(const RoadView& view, const Walker& walker, double time);
    void paintPortal(const RoadView& view, double ahead);
    void paintTunnelLamps(const RoadView& view, double ahead);
    void paintDaylight(const RoadView& view, double ahead);
    void paintText(const DriveState& state, int frameNumber);

    // Where an upright picture stands: `offset` of its width lies left of its place.
    QRectF upright(const RoadView& view, double ahead, float side, float bottom, float top, double aspect,
                   double offset) const;
    void paintGlow(QPointF middle, double radius, Rgb colour);
    Rgb beamOn(const RoadView::Spot& spot) const;

    const Drive& m_drive;
    const World& m_world;
    QSize m_size;
    bool m_backwards;
    Canvas m_canvas;
    GroundPainter m_ground;
    std::unique_ptr<Backdrop> m_backdrop;
    std::map<Prop, PropArt> m_props;
    std::map<Cover, WallCover> m_covers;
    std::map<CarLook, CarArt> m_cars;
    std::array<Mipmap, 3> m_signals;
    std::map<qsizetype, std::array<Mipmap, 2>> m_walkers;
    Mipmap m_glow;
    Mipmap m_shadow;
    Cockpit m_cockpit;
    std::vector<Thing> m_things; // in the view, farthest first
    size_t m_next = 0;           // the first that isn't painted yet
    std::vector<const Wall*> m_walls;
};

} // namespace ql240
