// The calling convention of the media pipeline: identifiers, status codes, reference-counted interfaces and a
// smart pointer for them. A status is a 32-bit number, negative for failure. Reference counts may change on
// any thread; other calls are bound to the threads that each interface names.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace ql240 {

enum [[nodiscard]] Status : std::int32_t{};

constexpr Status kStatusOk{0};
constexpr Status kStatusIntermediate{0x00040237}; // a state change is in progress
constexpr Status kStatusFail = static_cast<Status>(0x80004005);
constexpr Status kStatusNoInterface = static_cast<Status>(0x80004002);
constexpr Status kStatusInvalidPointer = static_cast<Status>(0x80004003);
constexpr Status kStatusInvalidArgument = static_cast<Status>(0x80070057);
constexpr Status kStatusClassNotRegistered = static_cast<Status>(0x80040154);
constexpr Status kStatusFileNotFound = static_cast<Status>(0x80070002);
constexpr Status kStatusNotConnected = static_cast<Status>(0x80040209);
constexpr Status kStatusAlreadyConnected = static_cast<Status>(0x80040204);
constexpr Status kStatusCannotConnect = static_cast<Status>(0x80040217);
constexpr Status kStatusTypeNotAccepted = static_cast<Status>(0x8004022A);
constexpr Status kStatusWrongState = static_cast<Status>(0x80040227);

constexpr bool failed(Status status) {
    return status < 0;
}
constexpr bool succeeded(Status status) {
    return status >= 0;
}

// Ignores the status of a call that may fail: what it should provide is then missing.
constexpr void mayFail(Status) {}

// A 128-bit identifier of a class, an interface or a media type.
struct Guid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};

    friend constexpr bool operator==(const Guid&, const Guid&) = default;
    constexpr bool isNull() const { return *this == Guid{}; }
};

namespace detail {

constexpr std::uint32_t hexNumber(std::string_view digits) {
    std::uint32_t value = 0;
    for (const char c : digits)
        value = value * 16 + static_cast<std::uint32_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
    return value;
}

} // namespace detail

// Parses the registry form "{E436EBB5-524F-11CE-9F53-0020AF0BA770}".
constexpr Guid guid(std::string_view text) {
    Guid result;
    result.data1 = detail::hexNumber(text.substr(1, 8));
    result.data2 = static_cast<std::uint16_t>(detail::hexNumber(text.substr(10, 4)));
    result.data3 = static_cast<std::uint16_t>(detail::hexNumber(text.substr(15, 4)));
    for (std::size_t i = 0; i < 8; ++i)
        result.data4[i] =
            static_cast<std::uint8_t>(detail::hexNumber(text.substr(20 + 2 * i + (i > 1 ? 1 : 0), 2)));
    return result;
}

class IUnknown {
public:
    static constexpr Guid kIid = guid("{00000000-0000-0000-C000-000000000046}");

    // Stores the interface `iid` of this object in *object with a reference for the caller;
    // kStatusNoInterface and a null *object if it has none.
    virtual Status QueryInterface(const Guid& iid, void** object) = 0;
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

protected:
    ~IUnknown() = default;
};

// Holds one reference, or none.
template <typename T>
class ComPtr {
public:
    ComPtr() = default;
    ComPtr(std::nullptr_t) {}
    explicit ComPtr(T* object) : m_object(object) {
        if (m_object)
            m_object->AddRef();
    }
    ComPtr(const ComPtr& other) : ComPtr(other.m_object) {}
    ComPtr(ComPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~ComPtr() { reset(); }

    T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    void reset() {
        if (T* object = std::exchange(m_object, nullptr))
            object->Release();
    }
    // For calls that return a reference through an out parameter.
    T** put() {
        reset();
        return &m_object;
    }
    void** putVoid() { return reinterpret_cast<void**>(put()); }

    // Another interface of the same object; empty if it has none.
    template <typename U>
    ComPtr<U> as() const {
        ComPtr<U> other;
        if (m_object)
            mayFail(m_object->QueryInterface(U::kIid, other.putVoid()));
        return other;
    }

private:
    T* m_object = nullptr;
};

} // namespace ql240
