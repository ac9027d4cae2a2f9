// The filters of the fake media pipeline and their pins. What they know is kept in FakeMedia.
#pragma once

#include <QString>

#include "platform/media_graph.h"
#include "support/fake_media.h"

namespace ql240::fake {

// Counts itself among the platform's live objects.
struct Counted {
    explicit Counted(FakeMedia& owner) : media(owner) { ++media.liveObjects; }
    ~Counted() { --media.liveObjects; }
    Q_DISABLE_COPY_MOVE(Counted)
    FakeMedia& media;
};

struct Class;

// Null for a class that isn't known, the graph's included.
const Class* findClass(const Guid& id);
QString className(const Class& known);
// `streams` counts the grabbers and renderers made so far.
ComPtr<IBaseFilter> makeFilter(FakeMedia& media, const Class& known, std::array<int, 2>& streams);

void nameFilter(IBaseFilter& filter, const QString& name);
// "Filter:Pin", "nothing" for none.
QString pinText(IPin* pin);
bool canJoin(IPin* output, IPin* input);
void join(IPin& output, IPin& input);

} // namespace ql240::fake
