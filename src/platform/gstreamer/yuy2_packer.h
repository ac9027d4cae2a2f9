// An element that packs planar frames into YUY2, several times as fast as the general converter; other
// formats pass. Its frames are what the sample grabber hands out. Works on a streaming thread.
#pragma once

namespace ql240::gstreamer {

// The name of the element's factory, which the first call registers.
const char* yuy2PackerFactory();

} // namespace ql240::gstreamer
