// Excludes from the leak check what libraries allocate while they are loaded: GLib deliberately leaks its
// first name table (16 KiB) when it grows. A suppression couldn't tell it from GLib's other allocations.
// Linked only into the tests of the asan preset; the program's own memory is all checked.
extern "C" void __lsan_disable();
extern "C" void __lsan_enable();

namespace {

void beforeLibraries() {
    __lsan_disable();
}

// Runs before all of the program's own constructors.
__attribute__((constructor(101))) void afterLibraries() {
    __lsan_enable();
}

} // namespace

__attribute__((section(".preinit_array"), used)) extern void (*const loadTimeMemory)();
void (*const loadTimeMemory)() = beforeLibraries;
