#include "platform/gstreamer/frame_allocator.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "platform/gstreamer/c_border.h"
#include "platform/limits.h"

namespace {

using ql240::gstreamer::answerToC;

constexpr auto kMemoryType = "QL240Frame";
constexpr gsize kAlignment = 64;
constexpr std::size_t kMostFree = 8;

using Bytes = std::shared_ptr<std::uint8_t>;

// Limits the bytes in all blocks of a clip, in use or free. Any thread.
class Grant {
public:
    bool take(gsize size) {
        const std::scoped_lock lock(m_mutex);
        if (size > ql240::limits::kDecodedBytes - m_taken)
            return false;
        m_taken += size;
        return true;
    }
    void giveBack(gsize size) {
        const std::scoped_lock lock(m_mutex);
        m_taken -= size;
    }

private:
    std::mutex m_mutex;
    gsize m_taken = 0;
};

// Created with a clip's first allocator; lives until the clip and all its frames are gone.
std::shared_ptr<Grant> grantOf(GstObject* clip) {
    static const GQuark key = g_quark_from_static_string("ql240-frame-grant");
    static std::mutex mutex;
    const std::scoped_lock lock(mutex);
    if (!clip)
        return std::make_shared<Grant>();
    if (const void* known = g_object_get_qdata(G_OBJECT(clip), key))
        return *static_cast<const std::shared_ptr<Grant>*>(known);
    auto made = std::make_unique<std::shared_ptr<Grant>>(std::make_shared<Grant>());
    const auto free = [](gpointer grant) { delete static_cast<std::shared_ptr<Grant>*>(grant); };
    const std::shared_ptr<Grant> grant = *made;
    g_object_set_qdata_full(G_OBJECT(clip), key, made.release(), free);
    return grant;
}

// Gives blocks of memory; those that come back wait for the next frame of their size, since a new one would
// have to be paged in. Any thread.
class Blocks : public std::enable_shared_from_this<Blocks> {
public:
    explicit Blocks(std::shared_ptr<Grant> grant) : m_grant(std::move(grant)) { m_free.reserve(kMostFree); }
    ~Blocks() { dropFree(); }
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;

    // Throws where there is no more memory, or no more of it is granted.
    Bytes take(gsize size) {
        Block block = waiting(size);
        if (!block)
            block = newBlock(size);
        return {block.release(),
                [size, self = shared_from_this()](std::uint8_t* old) { self->giveBack(Block(old), size); }};
    }

private:
    struct Free {
        void operator()(std::uint8_t* block) const { operator delete (block, std::align_val_t{kAlignment}); }
    };
    using Block = std::unique_ptr<std::uint8_t, Free>;

    Block waiting(gsize size) {
        const std::scoped_lock lock(m_mutex);
        if (size != m_size)
            dropFree();
        if (m_free.empty())
            return nullptr;
        Block block = std::move(m_free.back());
        m_free.pop_back();
        return block;
    }

    Block newBlock(gsize size) {
        if (!m_grant->take(size))
            throw std::bad_alloc();
        void* const block = operator new (size, std::align_val_t{kAlignment}, std::nothrow);
        if (!block) {
            m_grant->giveBack(size);
            throw std::bad_alloc();
        }
        return Block(static_cast<std::uint8_t*>(block));
    }

    void giveBack(Block block, gsize size) noexcept {
        const std::scoped_lock lock(m_mutex);
        if (m_size != size) {
            dropFree();
            m_size = size;
        }
        if (m_free.size() < kMostFree)
            m_free.push_back(std::move(block));
        else
            m_grant->giveBack(size);
    }

    void dropFree() {
        m_grant->giveBack(m_free.size() * m_size);
        m_free.clear();
    }

    const std::shared_ptr<Grant> m_grant;
    std::mutex m_mutex;
    std::vector<Block> m_free;
    gsize m_size = 0; // of each of them
};

struct FrameMemory {
    GstMemory memory;
    Bytes bytes; // `maxsize` of them, shared with copies until one of them is written to
    bool isCopy;
};

struct FrameAllocator {
    GstAllocator parent;
    std::shared_ptr<Blocks> blocks;
};

struct FrameAllocatorClass {
    GstAllocatorClass parent;
};

G_DEFINE_TYPE(FrameAllocator, frame_allocator, GST_TYPE_ALLOCATOR)

FrameMemory* frameMemory(GstMemory* memory) {
    return reinterpret_cast<FrameMemory*>(memory);
}

Bytes newBytes(GstAllocator* allocator, gsize size) {
    const auto& blocks = reinterpret_cast<FrameAllocator*>(allocator)->blocks;
    return blocks ? blocks->take(size) : throw std::bad_alloc();
}

GstMemory* allocate(GstAllocator* allocator, gsize size, GstAllocationParams* params) {
    return answerToC<GstMemory*>(nullptr, [=] {
        if (size > ql240::limits::kDecodedBytes)
            throw std::bad_alloc();
        const gsize whole = params->prefix + size + params->padding;
        auto* frame = new FrameMemory{{}, newBytes(allocator, whole), false};
        gst_memory_init(&frame->memory, params->flags, allocator, nullptr, whole, kAlignment - 1,
                        params->prefix, size);
        return &frame->memory;
    });
}

void release(GstAllocator*, GstMemory* memory) {
    delete frameMemory(memory);
}

// GStreamer maps memory for writing only while it has one holder, so no copy can be made meanwhile. If an
// original still has copies, the decoder maps it for its next frame and doesn't need the old bytes.
gpointer map(GstMemory* memory, gsize size, GstMapFlags flags) {
    FrameMemory* frame = frameMemory(memory);
    return answerToC<gpointer>(nullptr, [=]() -> gpointer {
        if ((flags & GST_MAP_WRITE) && frame->bytes.use_count() > 1) {
            const Bytes own = newBytes(memory->allocator, size);
            if (frame->isCopy)
                std::memcpy(own.get(), frame->bytes.get(), size);
            frame->bytes = own;
        }
        return frame->bytes.get();
    });
}

void unmap(GstMemory*) {}

GstMemory* copy(GstMemory* memory, gssize offset, gssize size) {
    auto* frame = new (std::nothrow) FrameMemory{{}, frameMemory(memory)->bytes, true};
    if (!frame)
        return nullptr;
    const auto begin = static_cast<gsize>(offset);
    gst_memory_init(&frame->memory, GstMemoryFlags{}, memory->allocator, nullptr, memory->maxsize,
                    memory->align, memory->offset + begin,
                    size < 0 ? memory->size - begin : static_cast<gsize>(size));
    return &frame->memory;
}

gboolean isSpan(GstMemory*, GstMemory*, gsize*) {
    return FALSE;
}

void finalize(GObject* object) {
    std::destroy_at(&reinterpret_cast<FrameAllocator*>(object)->blocks);
    G_OBJECT_CLASS(frame_allocator_parent_class)->finalize(object);
}

void frame_allocator_class_init(FrameAllocatorClass* klass) {
    G_OBJECT_CLASS(klass)->finalize = finalize;
    GST_ALLOCATOR_CLASS(klass)->alloc = allocate;
    GST_ALLOCATOR_CLASS(klass)->free = release;
}

void frame_allocator_init(FrameAllocator* self) {
    std::construct_at(&self->blocks);
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

Handle<GstAllocator> newFrameAllocator(GstObject* clip) {
    auto* allocator = static_cast<FrameAllocator*>(g_object_new(frame_allocator_get_type(), nullptr));
    allocator->blocks = answerToC<std::shared_ptr<Blocks>>(
        nullptr, [clip] { return std::make_shared<Blocks>(grantOf(clip)); });
    return Handle<GstAllocator>(static_cast<GstAllocator*>(gst_object_ref_sink(allocator)));
}

} // namespace ql240::gstreamer
