#include "app/font_warm_up.h"

#include <dlfcn.h>

#include <QFontMetrics>

#include "widgets/fonts.h"

namespace ql240 {
namespace {

constexpr int kPagePoints = 10;

// Qt calls FcInit itself when it first needs a font; the second call finds the work done. Resolved at run
// time, not linked, because Qt may have been built without fontconfig.
void readFontConfiguration() {
    using Initialise = int (*)();
    if (const auto initialise = reinterpret_cast<Initialise>(::dlsym(RTLD_DEFAULT, "FcInit")))
        initialise();
}

} // namespace

FontWarmUp::FontWarmUp()
    : m_thread([application = m_application.get_future()]() mutable {
          readFontConfiguration();
          if (application.get())
              QFontMetrics(uiFont(kPagePoints)).horizontalAdvance(QStringLiteral("A가"));
      }) {}

FontWarmUp::~FontWarmUp() {
    finish();
}

void FontWarmUp::continueWithFonts() {
    m_isAnswered = true;
    m_application.set_value(true);
}

void FontWarmUp::finish() {
    if (!m_isAnswered)
        m_application.set_value(false);
    m_isAnswered = true;
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace ql240
