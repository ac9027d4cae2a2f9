#include "platform/webengine/engine_pages.h"

extern "C" Q_DECL_EXPORT ql240::WebPages* ql240CreateWebPages() {
    return new ql240::EnginePages;
}
