// Shows the thread sanitizer the locks and hand-overs inside GLib, which is built without it: each call goes
// on to the library's own function and tells the sanitizer what that orders. Linked into the tests of the
// tsan preset only. Nothing is passed over by this: the order is there, it only can't be seen otherwise.
#include <dlfcn.h>

#include <glib.h>

extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);

#define SHOWN extern "C" __attribute__((visibility("default")))

namespace {

template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

#define LOCKS(function, Lock)                                      \
    SHOWN void function(Lock* lock) {                              \
        static const auto real = next<void (*)(Lock*)>(#function); \
        real(lock);                                                \
        __tsan_acquire(lock);                                      \
    }
#define TRIES(function, Lock)                                          \
    SHOWN gboolean function(Lock* lock) {                              \
        static const auto real = next<gboolean (*)(Lock*)>(#function); \
        const gboolean got = real(lock);                               \
        if (got)                                                       \
            __tsan_acquire(lock);                                      \
        return got;                                                    \
    }
#define UNLOCKS(function, Lock)                                    \
    SHOWN void function(Lock* lock) {                              \
        static const auto real = next<void (*)(Lock*)>(#function); \
        __tsan_release(lock);                                      \
        real(lock);                                                \
    }

LOCKS(g_mutex_lock, GMutex)
TRIES(g_mutex_trylock, GMutex)
UNLOCKS(g_mutex_unlock, GMutex)
LOCKS(g_rec_mutex_lock, GRecMutex)
TRIES(g_rec_mutex_trylock, GRecMutex)
UNLOCKS(g_rec_mutex_unlock, GRecMutex)
LOCKS(g_rw_lock_writer_lock, GRWLock)
UNLOCKS(g_rw_lock_writer_unlock, GRWLock)
LOCKS(g_rw_lock_reader_lock, GRWLock)
UNLOCKS(g_rw_lock_reader_unlock, GRWLock)

SHOWN void g_cond_wait(GCond* condition, GMutex* mutex) {
    static const auto real = next<void (*)(GCond*, GMutex*)>("g_cond_wait");
    __tsan_release(mutex);
    real(condition, mutex);
    __tsan_acquire(mutex);
}

SHOWN gboolean g_cond_wait_until(GCond* condition, GMutex* mutex, gint64 end) {
    static const auto real = next<gboolean (*)(GCond*, GMutex*, gint64)>("g_cond_wait_until");
    __tsan_release(mutex);
    const gboolean woken = real(condition, mutex, end);
    __tsan_acquire(mutex);
    return woken;
}
