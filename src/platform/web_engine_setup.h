// What the web engine wants settled outside its module: before the application object exists, and just before
// the module is loaded. Neither links nor loads any of the engine.
#pragma once

namespace ql240 {

// Sets the engine's switches in the environment. Before the application object is made and before any thread
// is started, as it changes the environment.
void prepareWebEngine();

// Whether what the engine decodes is held by its sandbox: not for root, and not where the environment says
// so.
bool webEngineIsSandboxed();

// False where the engine would end the process: for an ordinary user on a system that refuses user
// namespaces, which the engine's sandbox is made of.
bool webEngineCanRun();

// Gives the engine the shared graphics context that it insists on finding when it is loaded after the
// application object was made. The context is never created, so no graphics driver is loaded for it: the map
// is drawn by the CPU. Needs the application object.
void provideShareContext();

} // namespace ql240
