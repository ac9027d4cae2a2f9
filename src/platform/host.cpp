#include "platform/host.h"

namespace ql240 {

Host& host() {
    static Host table;
    return table;
}

} // namespace ql240
