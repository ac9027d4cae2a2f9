// What assistive technology hears of the painted rows: a row is a group of radio buttons, or a check box.
// Interface thread only.
#pragma once

namespace ql240 {

// Makes the rows known to Qt's accessibility; further calls do nothing.
void installChoiceRowAccessibility();

} // namespace ql240
