// Every process-wide object of the library, in the order in which they come up, and the entry point. Objects of
// different files would come up in no defined order.

#include <roots/Version.h>
#include <roots/files/BryDebugInterfaces.h>
#include <roots/files/BryGlobalStorage.h>
#include <roots/files/BryLogfile.h>
#include <roots/numeric/BryMathUtilities.h>
#include <roots/numeric/BryZClipping.h>
#include <roots/platform/Win32.h>
#include <roots/progress/BryProcessEvolutionManager.h>
#include <roots/progress/BryProgressCtrl.h>
#include <roots/progress/ProgressDialog.h>
#include <roots/text/BryString.h>

#include <cmath>

// The tables themselves stay: objects that are destroyed last of all still report to them.
BryDebugInterfaces::Initiators& BryDebugInterfaces::m_ContextInitiators = *new BryDebugInterfaces::Initiators;
BryDebugInterfaces::Records& BryDebugInterfaces::m_Info = *new BryDebugInterfaces::Records;
BryDebugInterfaces::CleanUp BryDebugInterfaces::m_cleanUp;

// The solvers read it.
const double BryMathUtilities::PI = std::acos(-1.0);

// Never destroyed: work may still end, and displays may still deregister, when the process does.
BryProcessEvolutionManager* BryProcessEvolutionManager::m_pProcessEvolutionManager = new BryProcessEvolutionManager;

namespace {

BryProgressCtrlWindowController g_progressWindows;

}  // namespace

BryProgressCtrlWindowController* BryProgressCtrl::m_ProgressCtrlWindowController = &g_progressWindows;
HWND g_hProgressDialog = nullptr;
HWND g_hProgressBar = nullptr;

// Allocated but not touched: they cost address space until a text is composed in them. They and the empty body live
// until the process ends, because strings of the hosts may outlive any destructor here.
wchar_t* BryString::BryStringTempBufferWide = new wchar_t[0x80000];
char* BryString::BryStringTempBuffer = new char[0x80000];
BryStringRepr* BryString::m_repEmpty = BryStringRepr::make(0);

double BryZClipping::kClipUpperDefault = 20.0;
double BryZClipping::kClipLowerDefault = -20.0;

BryString* BryGlobalStorage::g_pAcadSupportPaths = nullptr;

int BryLogfile::doLogging = 0;
int BryLogfile::m_isFirstLogToFile = 1;

HINSTANCE g_hInstance = nullptr;

const char* bryVersion() { return KELROOTS_VERSION; }

// The system calls this when the library is loaded, after the objects above are made, and for each new thread.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH || reason == DLL_THREAD_ATTACH) g_hInstance = module;
    return TRUE;
}
