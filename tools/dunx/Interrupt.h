// Ctrl-C during a translation: a request to abort, answered at the next poll.
#pragma once

namespace dunx::driver {

/// Installs handlers for SIGINT and SIGTERM (on Windows, for the console's
/// Ctrl-C and Ctrl-Break) that only set a flag, and makes
/// `DUNXCallbackShared::m_AbortCallback` answer it, so the translation unwinds
/// with `DUNXAbortException` at its next poll. A second signal ends the process
/// at once with the default action. SIGPIPE is ignored from then on (POSIX).
void InstallInterruptHandler();

/// Puts back the default actions of SIGINT and SIGTERM (Windows: removes the
/// console handler) and clears the abort callback (SIGPIPE stays ignored: the
/// summary may meet a closed pipe too).
void RemoveInterruptHandler();

} // namespace dunx::driver
