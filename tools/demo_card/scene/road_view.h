// Where the road is in a camera's picture at one moment: the camera, and the road's middle as a chain of
// nodes in camera space. "Ahead" is the distance along the road in viewing direction, "side" the distance to
// the right of the road's middle as seen; for the rear camera both are opposite to the drive's.
#pragma once

#include <QList>
#include <QSize>
#include <algorithm>

#include "demo_card/drive.h"
#include "demo_card/scene/canvas.h"

namespace ql240::demo {

class RoadView {
public:
    struct Node {
        float ahead;
        float right, forward;
        float sine, cosine; // of the road's direction relative to the view
    };
    struct Spot {
        float right, forward;
    };

    RoadView(const Drive& drive, const DriveState& state, QSize size, bool backwards);

    const Projection& projection() const { return m_projection; }
    const QList<Node>& nodes() const { return m_nodes; }

    double placeOf(double ahead) const { return m_place + (m_backwards ? -ahead : ahead); }
    double aheadOf(double place) const { return m_backwards ? m_place - place : place - m_place; }
    float viewSide(float side) const { return m_backwards ? -side : side; }

    Node nodeAt(double ahead) const;       // interpolated
    Node nodeAtDepth(float forward) const; // beyond the last node the road continues straight
    Spot spot(double ahead, float side) const;

private:
    Projection m_projection;
    QList<Node> m_nodes;
    double m_place;
    bool m_backwards;
};

} // namespace ql240::demo
