#include "Interrupt.h"

#include <dunx/DUNXEventBus.h>

#include <atomic>
#include <io.h>

#include <windows.h>

namespace dunx::driver {
namespace {

// Set from the console's own thread, which runs the control handler.
std::atomic<bool> g_Requested{false};

BOOL WINAPI onControl(DWORD type) {
    if (type != CTRL_C_EVENT && type != CTRL_BREAK_EVENT)
        return FALSE;
    // The user insists: the next handler, the system's own, ends the program.
    if (g_Requested.exchange(true))
        return FALSE;
    static const char message[] = "\ndunx: interrupted, stopping the translation "
                                  "(press Ctrl-C again to stop at once)\n";
    _write(2, message, sizeof(message) - 1);
    return TRUE;
}

bool abortRequested() {
    return g_Requested.load();
}

} // namespace

void InstallInterruptHandler() {
    g_Requested = false;
    DUNXCallbackShared::m_AbortCallback = abortRequested;
    SetConsoleCtrlHandler(onControl, TRUE);
}

void RemoveInterruptHandler() {
    SetConsoleCtrlHandler(onControl, FALSE);
    DUNXCallbackShared::m_AbortCallback = nullptr;
}

} // namespace dunx::driver
