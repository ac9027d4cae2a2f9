// The filters of the fake media pipeline and their pins. Their state is kept in FakeMedia.
#pragma once

#include <QString>

#include "platform/media_graph.h"
#include "support/fake_media.h"

namespace ql240::fake {

// Counted among the platform's live objects.
struct Counted {
    explicit Counted(FakeMedia& owner) : media(owner) { ++media.liveObjects; }
    ~Counted() { --media.liveObjects; }
    Q_DISABLE_COPY_MOVE(Counted)
    FakeMedia& media;
};

struct Class;

// Null for unknown classes and for the graph.
const Class* findClass(const Guid& id);
QString className(const Class& known);
// `streams` counts the grabbers and renderers created so far.
ComPtr<IBaseFilter> makeFilter(FakeMedia& media, const Class& known, std::array<int, 2>& streams);

void nameFilter(IBaseFilter& filter, const QString& name);
// "Filter:Pin", or "nothing" for null.
QString pinText(IPin* pin);
bool canJoin(IPin* output, IPin* input);
void join(IPin& output, IPin& input);

} // namespace ql240::fake
