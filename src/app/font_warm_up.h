// Reads the system's font configuration on a thread while the application object is made and the splash
// screen shown: the first text waits for it otherwise, for about a third of the start. Made first of all in a
// process.
#pragma once

#include <future>
#include <thread>

namespace ql240 {

class FontWarmUp {
public:
    FontWarmUp();
    ~FontWarmUp();
    FontWarmUp(const FontWarmUp&) = delete;
    FontWarmUp& operator=(const FontWarmUp&) = delete;
    // Once the application object and the font substitutes are there: goes on with the skin's own fonts.
    void continueWithFonts();
    // Waits for the thread's end; to be called before the application object goes.
    void finish();

private:
    std::promise<bool> m_application; // true: its object is there
    bool m_told = false;
    std::thread m_thread;
};

} // namespace ql240
