// Set-up that the web engine needs outside its module: before the application object exists, and just before
// the module is loaded. Doesn't link or load the engine.
#pragma once

namespace ql240 {

// Sets the engine's command-line switches in the environment. Call before the application object is created
// and before any thread starts.
void prepareWebEngine();

// Whether the engine decodes its content in a sandbox: not as root, and not if the environment disables it.
bool webEngineIsSandboxed();

// False if the engine would abort the process: for an ordinary user on a system that denies user namespaces,
// which its sandbox needs.
bool webEngineCanRun();

// Provides the shared OpenGL context that the engine requires when it is loaded after the application object
// exists. The context is never created, so no graphics driver is loaded: the map is drawn by the CPU. Needs
// the application object.
void provideShareContext();

} // namespace ql240
