// A desktop that counts its inhibitions.
#pragma once

#include "platform/inhibitor.h"

namespace ql240 {

struct FakeInhibitor : Inhibitor {
    std::shared_ptr<int> holds = std::make_shared<int>(0);

    std::shared_ptr<void> keepAwake(const QString&) override {
        ++*holds;
        return {nullptr, [holds = holds](void*) { --*holds; }};
    }
};

} // namespace ql240
