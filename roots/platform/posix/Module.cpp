// The library as a module of the process: what the Windows loader does when it loads one.

#include <roots/platform/Win32.h>
#include <roots/progress/DialogTemplates.h>

#include <dlfcn.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

namespace {

__attribute__((constructor)) void attach() {
    Dl_info module;
    if (dladdr(reinterpret_cast<void*>(&attach), &module) == 0) return;
    platform::setDialogs(module.dli_fbase, progress::kDialogs, std::size(progress::kDialogs));
    DllMain(module.dli_fbase, DLL_PROCESS_ATTACH, nullptr);
}

}  // namespace
