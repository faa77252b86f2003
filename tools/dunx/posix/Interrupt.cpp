#include "Interrupt.h"

#include <dunx/DUNXEventBus.h>

#include <csignal>
#include <cstring>
#include <unistd.h>

namespace dunx::driver {
namespace {

volatile std::sig_atomic_t g_Requested = 0;

extern "C" void onSignal(int signalNumber) {
    if (g_Requested) {
        // The user insists: do what the signal would have done.
        std::signal(signalNumber, SIG_DFL);
        std::raise(signalNumber);
        return;
    }
    g_Requested = 1;
    static const char message[] = "\ndunx: interrupted, stopping the translation "
                                  "(press Ctrl-C again to stop at once)\n";
    // write(2) is async-signal-safe; nothing useful to do if it fails.
    if (::write(STDERR_FILENO, message, sizeof(message) - 1) < 0)
        return;
}

bool abortRequested() {
    return g_Requested != 0;
}

void setAction(int signalNumber, void (*handler)(int)) {
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    // No SA_RESTART: a blocking read returns early, and the next poll sees the flag.
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

void InstallInterruptHandler() {
    g_Requested = 0;
    DUNXCallbackShared::m_AbortCallback = abortRequested;
    setAction(SIGINT, onSignal);
    setAction(SIGTERM, onSignal);
    // A console piped into a program that quits early (dunx ... | head) must not
    // kill the translation half-way through its output file.
    setAction(SIGPIPE, SIG_IGN);
}

void RemoveInterruptHandler() {
    setAction(SIGINT, SIG_DFL);
    setAction(SIGTERM, SIG_DFL);
    DUNXCallbackShared::m_AbortCallback = nullptr;
}

} // namespace dunx::driver
