// The library's only door to the operating system. Everything here is a plain
// function; the implementation folder for the target system is picked by CMake.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace dunx::platform {

// --- Clocks ------------------------------------------------------------------

/// Milliseconds of elapsed wall time since the first call in this process
/// (Windows: the runtime's clock(), counted from the process start); never
/// goes backwards. Stamped on timed events as their clock.
long ElapsedMilliseconds();

/// A monotonic clock in nanoseconds, for measuring short intervals.
long long MonotonicNanoseconds();

/// Calendar time in seconds since the epoch, 64 bits wide.
long long CurrentTime();

// --- Files and descriptors -----------------------------------------------------

/// Opens `path` with a C `fopen` mode. POSIX first turns every '\' into '/',
/// so paths kept in the library's backslash form find real files; Windows
/// takes the path as it is (`_wfopen`, the text widened in the C locale). Null
/// on failure (a null or empty path included).
std::FILE* OpenFile(const char* path, const char* mode);

/// True when `path` (on POSIX '\' taken as '/') can be opened for reading and is not a folder.
bool CanReadFile(const char* path);

/// Modification time of `path` in seconds since 1970 UTC; false when it cannot be examined.
bool ModificationTime(const char* path, long long& time);

/// Deletes the file `path`; true on success.
bool RemoveFile(const char* path);

/// The current working directory, or "" when it cannot be read or does not
/// fit in `capacity` - 1 bytes.
std::string CurrentDirectory(std::size_t capacity);

/// A name for a new file: on POSIX "<directory><prefix>XXXXXX" with six letters
/// or digits; on Windows what the runtime's `_tempnam` gives (the folder named
/// by TMP when there is one, else `directory`, and a name of its own form from
/// the prefix). It names no existing file; "" when none was found. Creates nothing.
std::string UniqueFileName(const char* directory, const char* prefix);

/// Writes `size` bytes to descriptor `fd`, retrying interrupted and partial
/// writes. Returns the bytes written, or -1 when nothing could be written.
long WriteDescriptor(int fd, const char* data, std::size_t size);

/// Closes descriptor `fd`.
void CloseDescriptor(int fd);

/// The descriptor under the open C file `file`; -1 for null.
int DescriptorOf(std::FILE* file);

/// Reads up to `size` bytes from descriptor `fd`, retrying when interrupted.
/// Returns the bytes read (0 at the end), or -1 on a fault.
long ReadDescriptor(int fd, char* data, std::size_t size);

// --- Environment ----------------------------------------------------------------

/// The live environment block: 'NAME=value' texts up to a null entry.
char** EnvironmentBlock();

/// Sets variable `name` to `value`; the environment keeps its own copy, so the
/// variable holds its value whatever the caller does later. False when refused
/// (an empty name or one holding '='). Windows cannot hold an empty value: ""
/// removes the variable there (`_putenv`).
bool SetEnvironmentVariable(const char* name, const char* value);

// --- Process ---------------------------------------------------------------------

/// CPU seconds this process has spent in the kernel and in user code so far.
/// False, leaving both untouched, when the system cannot tell.
bool ProcessCpuTimes(double& kernelSeconds, double& userSeconds);

/// Resident memory of this process in bytes: the peak so far and the current
/// size. False, leaving both untouched, when the system cannot tell.
bool ProcessMemory(unsigned long long& peakBytes, unsigned long long& currentBytes);

// --- Modules ---------------------------------------------------------------------

/// Loads the module `name` as given: no folder, prefix or suffix is added, so
/// the system's own search rules apply (Windows' `LoadLibraryA` adds ".dll" to
/// a name without extension). Returns an opaque handle, or null with the
/// loader's reason (a missing dependency, a wrong file format, ...; on Windows
/// the system's message and "(error N)") in `reason`. A null or empty name is
/// refused rather than taken as the program.
void* LoadModule(const char* name, std::string& reason);

/// The address that `module` exports under `symbol` (function or data), or null.
void* FindModuleSymbol(void* module, const char* symbol);

/// One more reference on the loaded `module`: the same handle again, to be
/// released on its own. Null when the system cannot take one.
void* RetainModule(void* module);

/// Gives back one reference taken by `LoadModule` or `RetainModule`; the
/// module is unmapped when its last reference goes.
void ReleaseModule(void* module);

} // namespace dunx::platform
