// Accessibility of the painted rows: a row is a group of radio buttons, or a check box. Interface thread
// only.
#pragma once

namespace ql240 {

// Registers the rows' accessible interface with Qt; further calls do nothing.
void installChoiceRowAccessibility();

} // namespace ql240
