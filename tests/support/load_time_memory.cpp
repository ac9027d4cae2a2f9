// Keeps the leak check from counting what libraries take while they are loaded: GLib lets go of the table of
// names (16 KiB) that it made then as soon as a larger one is needed, and says in its source that it means
// to. By a list of suppressions this can't be told from everything else that GLib allocates. Linked into the
// tests of the asan preset only, whose own memory is all checked.
extern "C" void __lsan_disable();
extern "C" void __lsan_enable();

namespace {

void beforeLibraries() {
    __lsan_disable();
}

// Ahead of everything of the program's own.
__attribute__((constructor(101))) void afterLibraries() {
    __lsan_enable();
}

} // namespace

__attribute__((section(".preinit_array"), used)) extern void (*const loadTimeMemory)();
void (*const loadTimeMemory)() = beforeLibraries;
