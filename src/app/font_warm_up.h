// Reads the system's font configuration on a thread of its own while the application object is created and
// the splash screen shown. Otherwise the first text drawn waits for it, about a third of the start-up time.
// Construct it before anything else in the process.
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
    // Call once the application object and the font substitutes exist: the thread goes on to load the skin's
    // fonts.
    void continueWithFonts();
    // Joins the thread; call before the application object is destroyed.
    void finish();

private:
    std::promise<bool> m_application; // true: the application object exists
    bool m_isAnswered = false;
    std::thread m_thread;
};

} // namespace ql240
