// Reference counting and interface look-up for every object of the pipeline. AddRef and Release are
// thread-safe; the last Release deletes.
#pragma once

#include <atomic>

#include "platform/com.h"

namespace ql240::gstreamer {

template <typename First, typename... Others>
class ComObject : public First, public Others... {
public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;
    virtual ~ComObject() = default;

    Status QueryInterface(const Guid& iid, void** object) override {
        *object = nullptr;
        if (iid == IUnknown::kIid)
            *object = static_cast<IUnknown*>(static_cast<First*>(this));
        else
            (void)(find<First>(iid, object) || ... || find<Others>(iid, object));
        if (!*object)
            return kStatusNoInterface;
        AddRef();
        return kStatusOk;
    }
    std::uint32_t AddRef() override { return ++m_count; }
    std::uint32_t Release() override {
        const std::uint32_t left = --m_count;
        if (left == 0)
            delete this;
        return left;
    }

private:
    template <typename Interface>
    bool find(const Guid& iid, void** object) {
        if (iid != Interface::kIid)
            return false;
        *object = static_cast<Interface*>(this);
        return true;
    }

    std::atomic<std::uint32_t> m_count{0};
};

} // namespace ql240::gstreamer
