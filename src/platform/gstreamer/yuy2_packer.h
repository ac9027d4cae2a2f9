// An element that packs planar frames into YUY2, several times faster than videoconvert; other formats pass
// through. The sample grabber returns its frames. Works on a streaming thread.
#pragma once

namespace ql240::gstreamer {

// The name of the element's factory; the first call registers it.
const char* yuy2PackerFactory();

} // namespace ql240::gstreamer
