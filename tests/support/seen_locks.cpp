// Reports GLib's locks to the thread sanitizer, which doesn't know their futexes and would report the data
// under them as races. Only for the tests of the tsan preset.
#include <dlfcn.h>
#include <glib.h>
#include <sanitizer/tsan_interface.h>

namespace {

template <typename Function>
Function* libraryFunction(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

void g_mutex_lock(GMutex* mutex) {
    static const auto lock = libraryFunction<decltype(g_mutex_lock)>("g_mutex_lock");
    lock(mutex);
    __tsan_acquire(mutex);
}

gboolean g_mutex_trylock(GMutex* mutex) {
    static const auto tryLock = libraryFunction<decltype(g_mutex_trylock)>("g_mutex_trylock");
    const gboolean locked = tryLock(mutex);
    if (locked)
        __tsan_acquire(mutex);
    return locked;
}

void g_mutex_unlock(GMutex* mutex) {
    static const auto unlock = libraryFunction<decltype(g_mutex_unlock)>("g_mutex_unlock");
    __tsan_release(mutex);
    unlock(mutex);
}

void g_cond_wait(GCond* condition, GMutex* mutex) {
    static const auto wait = libraryFunction<decltype(g_cond_wait)>("g_cond_wait");
    __tsan_release(mutex);
    wait(condition, mutex);
    __tsan_acquire(mutex);
}

gboolean g_cond_wait_until(GCond* condition, GMutex* mutex, gint64 end) {
    static const auto wait = libraryFunction<decltype(g_cond_wait_until)>("g_cond_wait_until");
    __tsan_release(mutex);
    const gboolean signalled = wait(condition, mutex, end);
    __tsan_acquire(mutex);
    return signalled;
}

} // extern "C"
#pragma GCC visibility pop
