// Excludes from the leak check what libraries allocate while they are loaded: GLib leaks its first name table
// (16 KiB) on purpose, and a suppression couldn't distinguish it. Only for the tests of the asan preset.
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
