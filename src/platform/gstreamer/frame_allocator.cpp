#include "platform/gstreamer/frame_allocator.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr auto kMemoryType = "QL240Frame";
constexpr gsize kAlignment = 64;

using Bytes = std::shared_ptr<std::uint8_t>;

struct FrameMemory {
    GstMemory memory;
    Bytes bytes; // `maxsize` of them, shared with the copies that nobody has written into
};

struct FrameAllocator {
    GstAllocator parent;
};

struct FrameAllocatorClass {
    GstAllocatorClass parent;
};

G_DEFINE_TYPE(FrameAllocator, frame_allocator, GST_TYPE_ALLOCATOR)

FrameMemory* frameMemory(GstMemory* memory) {
    return reinterpret_cast<FrameMemory*>(memory);
}

Bytes newBytes(gsize size) {
    auto* bytes = static_cast<std::uint8_t*>(operator new (size, std::align_val_t{kAlignment}));
    return {bytes, [](std::uint8_t* old) { operator delete (old, std::align_val_t{kAlignment}); }};
}

GstMemory* allocate(GstAllocator* allocator, gsize size, GstAllocationParams* params) {
    const gsize whole = params->prefix + size + params->padding;
    auto* frame = new FrameMemory{{}, newBytes(whole)};
    gst_memory_init(&frame->memory, params->flags, allocator, nullptr, whole, kAlignment - 1, params->prefix,
                    size);
    return &frame->memory;
}

void release(GstAllocator*, GstMemory* memory) {
    delete frameMemory(memory);
}

// Whoever maps its memory for writing holds it alone, so that no copy can begin meanwhile.
gpointer map(GstMemory* memory, gsize size, GstMapFlags flags) {
    Bytes& bytes = frameMemory(memory)->bytes;
    if ((flags & GST_MAP_WRITE) && bytes.use_count() > 1) {
        const Bytes own = newBytes(size);
        std::memcpy(own.get(), bytes.get(), size);
        bytes = own;
    }
    return bytes.get();
}

void unmap(GstMemory*) {}

GstMemory* copy(GstMemory* memory, gssize offset, gssize size) {
    auto* frame = new FrameMemory{{}, frameMemory(memory)->bytes};
    const auto begin = static_cast<gsize>(offset);
    gst_memory_init(&frame->memory, GstMemoryFlags{}, memory->allocator, nullptr, memory->maxsize,
                    memory->align, memory->offset + begin,
                    size < 0 ? memory->size - begin : static_cast<gsize>(size));
    return &frame->memory;
}

gboolean isSpan(GstMemory*, GstMemory*, gsize*) {
    return FALSE;
}

void frame_allocator_class_init(FrameAllocatorClass* klass) {
    GST_ALLOCATOR_CLASS(klass)->alloc = allocate;
    GST_ALLOCATOR_CLASS(klass)->free = release;
}

void frame_allocator_init(FrameAllocator* self) {
    GstAllocator* allocator = GST_ALLOCATOR(self);
    allocator->mem_type = kMemoryType;
    allocator->mem_map = map;
    allocator->mem_unmap = unmap;
    allocator->mem_copy = copy;
    allocator->mem_share = copy;
    allocator->mem_is_span = isSpan;
    GST_OBJECT_FLAG_SET(allocator, GST_ALLOCATOR_FLAG_CUSTOM_ALLOC);
}

} // namespace

namespace ql240::gstreamer {

Handle<GstAllocator> newFrameAllocator() {
    auto* allocator = static_cast<GstAllocator*>(g_object_new(frame_allocator_get_type(), nullptr));
    return Handle<GstAllocator>(static_cast<GstAllocator*>(gst_object_ref_sink(allocator)));
}

} // namespace ql240::gstreamer
