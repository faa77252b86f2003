// dunx started as a child process of the end-to-end tests, the same way on every system: its
// arguments, folder and DUNX* environment chosen by the test, its standard output and error
// caught in files, its exit code, and Ctrl-C. POSIX starts it with fork (forkpty for a terminal),
// Windows with CreateProcessW.
#pragma once

#include "MeshFiles.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <algorithm>
#include <process.h>
#include <windows.h>
#else
#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace dunxtest {

using Args = std::vector<std::string>;
using Env = std::vector<std::pair<std::string, std::string>>;

/// How a run of dunx ended.
struct RunResult {
    int exitCode = -1; ///< -1 when it did not exit normally
    std::string out, err;
    std::string LastErrorLine() const { // the last non-empty line of standard error
        const std::string text = err.substr(0, err.find_last_not_of('\n') + 1);
        return text.substr(text.rfind('\n') + 1);
    }
};

/// A text file that dunx wrote through the C runtime's text mode (its console, its logs): lines
/// end in "\r\n" on Windows, and are given back here ending in "\n" as on POSIX.
inline std::string ReadTextFile(const std::string& path) {
    std::string text = ReadText(path);
#ifdef _WIN32
    std::size_t kept = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n')
            text[kept++] = text[i];
    text.resize(kept);
#endif
    return text;
}

/// The dunx program, with a drive on Windows: the test's own folder is on the drive that
/// Wine maps to "/", the child's scratch folder may be on another.
inline std::string DunxProgram() {
    return std::filesystem::absolute(DUNX_PROGRAM).string();
}

/// A dunx started by `StartProgram` and not yet waited for.
struct Child {
#ifdef _WIN32
    HANDLE process = nullptr;
    DWORD id = 0;
#else
    pid_t pid = -1;
    int terminal = -1; ///< the other side of its terminal, or -1
#endif
    std::string cwd; ///< where its output files are
};

/// Seconds after which a dunx that has not ended is stopped and counts as failed.
constexpr int kRunLimitSeconds = 300;

#ifdef _WIN32

namespace detail {

inline std::wstring Widen(const std::string& text) { // in the code page dunx's main reads
    std::wstring wide(text.size(), L'\0');
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(std::max(length, 0)));
    return wide;
}

/// `arg` quoted for a command line that the C runtime splits back into the same argument.
inline std::wstring Quoted(const std::wstring& arg) {
    if (!arg.empty() && arg.find_first_of(L" \t\"") == std::wstring::npos)
        return arg;
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : arg) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        // Backslashes count as escapes only before a quote: there they are doubled.
        quoted.append(c == L'"' ? backslashes * 2 + 1 : backslashes, L'\\');
        backslashes = 0;
        quoted += c;
    }
    quoted.append(backslashes * 2, L'\\'); // before the closing quote
    return quoted + L'"';
}

/// This process's environment plus `env`, as the block that CreateProcessW takes: sorted
/// without regard to case, each "name=value" ended by a null. `clean`: without the DUNX*
/// variables of this process.
inline std::wstring EnvironmentBlock(const Env& env, bool clean) {
    std::vector<std::wstring> entries;
    if (wchar_t* block = GetEnvironmentStringsW()) {
        for (const wchar_t* entry = block; *entry; entry += std::wcslen(entry) + 1)
            if (!clean || _wcsnicmp(entry, L"DUNX", 4) != 0)
                entries.emplace_back(entry);
        FreeEnvironmentStringsW(block);
    }
    for (const auto& [name, value] : env)
        entries.push_back(Widen(name) + L"=" + Widen(value));
    std::sort(entries.begin(), entries.end(), [](const std::wstring& a, const std::wstring& b) {
        return _wcsicmp(a.c_str(), b.c_str()) < 0;
    });
    std::wstring joined;
    for (const std::wstring& entry : entries)
        joined += entry + L'\0';
    return joined + L'\0';
}

/// A handle that the child inherits: `path` opened for writing (emptied), or for reading.
inline HANDLE InheritedFile(const std::string& path, bool write) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    return CreateFileW(Widen(path).c_str(), write ? GENERIC_WRITE : GENERIC_READ,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherit,
                       write ? CREATE_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Windows lets only a process attached to a console raise Ctrl-C in it, and a process that
// leaves its own console cannot always come back to it (not when it was given one for a POSIX
// terminal by Wine). So InterruptDunx starts this test program again with
// DUNXENDTOEND_CTRL_C_TO=<process id>: before any test runs, that copy joins the console of
// that process, sends Ctrl-C to everyone attached to it, and ends, 0 when it was sent.
inline const bool kInterruptHelper = [] {
    const char* target = std::getenv("DUNXENDTOEND_CTRL_C_TO");
    if (!target)
        return false;
    FreeConsole();
    const bool sent = AttachConsole(std::strtoul(target, nullptr, 10)) &&
                      SetConsoleCtrlHandler(nullptr, TRUE) && // not this process
                      GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    ExitProcess(sent ? 0 : 1);
}();

} // namespace detail

/// Starts `program` (a dunx) with `args` in folder `cwd`, every DUNX* variable of the test's
/// environment removed and `env` added, without waiting: its standard output and error go to
/// files in `cwd`. `interruptible`: in a console of its own (hidden), to which `InterruptDunx`
/// can send Ctrl-C without reaching anyone else.
inline Child StartProgram(const std::string& path, const Args& args, const std::string& cwd,
                          const Env& env = {}, bool interruptible = false) {
    Child child;
    child.cwd = cwd;
    const std::wstring program = detail::Widen(path);
    std::wstring line = detail::Quoted(program);
    for (const std::string& arg : args)
        line += L" " + detail::Quoted(detail::Widen(arg));
    std::wstring environment = detail::EnvironmentBlock(env, true);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    startup.hStdInput = detail::InheritedFile("NUL", false);
    startup.hStdOutput = detail::InheritedFile(cwd + "/.dunx-out", true);
    startup.hStdError = detail::InheritedFile(cwd + "/.dunx-err", true);
    PROCESS_INFORMATION started{};
    const DWORD flags = CREATE_UNICODE_ENVIRONMENT | (interruptible ? CREATE_NEW_CONSOLE : 0);
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, flags,
                       environment.data(), detail::Widen(cwd).c_str(), &startup, &started)) {
        child.process = started.hProcess;
        child.id = started.dwProcessId;
        CloseHandle(started.hThread);
    } else {
        ADD_FAILURE() << "CreateProcessW failed with error " << GetLastError() << " for " << path;
    }
    for (HANDLE handle : {startup.hStdInput, startup.hStdOutput, startup.hStdError})
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    return child;
}

/// Sends Ctrl-C to a process started `interruptible`, as a user pressing it in its console would;
/// false when it could not be sent.
inline bool InterruptDunx(const Child& child) {
    wchar_t self[MAX_PATH];
    if (!GetModuleFileNameW(nullptr, self, MAX_PATH))
        return false;
    std::wstring environment =
        detail::EnvironmentBlock({{"DUNXENDTOEND_CTRL_C_TO", std::to_string(child.id)}}, false);
    std::wstring line = detail::Quoted(self);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(self, line.data(), nullptr, nullptr, FALSE,
                        CREATE_UNICODE_ENVIRONMENT | CREATE_NO_WINDOW, environment.data(), nullptr,
                        &startup, &started))
        return false;
    DWORD code = 1;
    if (WaitForSingleObject(started.hProcess, 60000) == WAIT_OBJECT_0)
        GetExitCodeProcess(started.hProcess, &code);
    else
        TerminateProcess(started.hProcess, 1);
    CloseHandle(started.hProcess);
    CloseHandle(started.hThread);
    return code == 0;
}

/// Waits for a process started with `StartProgram` (stopping it after kRunLimitSeconds) and
/// collects its output.
inline RunResult FinishDunx(Child& child) {
    RunResult result;
    if (child.process) {
        if (WaitForSingleObject(child.process, kRunLimitSeconds * 1000) != WAIT_OBJECT_0)
            TerminateProcess(child.process, 0xC0000000u);
        DWORD code = 0;
        GetExitCodeProcess(child.process, &code);
        // Codes from 0xC0000000 on are exceptions (a crash), not an exit.
        result.exitCode = code >= 0xC0000000u ? -1 : static_cast<int>(code);
        CloseHandle(child.process);
        child.process = nullptr;
    }
    result.out = ReadTextFile(child.cwd + "/.dunx-out");
    result.err = ReadTextFile(child.cwd + "/.dunx-err");
    return result;
}

#else

namespace detail {

/// In a child process: `program` in folder `cwd`, with every DUNX* variable of the test's
/// environment removed and `env` added; ended by an alarm after kRunLimitSeconds.
[[noreturn]] inline void ExecProgram(const std::string& program, const Args& args,
                                     const std::string& cwd, const Env& env) {
    std::vector<std::string> names;
    for (char** entry = environ; *entry; ++entry)
        if (std::strncmp(*entry, "DUNX", 4) == 0)
            names.emplace_back(*entry, std::strcspn(*entry, "="));
    for (const std::string& name : names)
        ::unsetenv(name.c_str());
    for (const auto& [name, value] : env)
        ::setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> argv = {const_cast<char*>(program.c_str())};
    for (const std::string& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    ::alarm(kRunLimitSeconds);
    if (::chdir(cwd.c_str()) == 0)
        ::execv(program.c_str(), argv.data());
    ::_exit(127);
}

inline Child Start(const std::string& program, const Args& args, const std::string& cwd,
                   const Env& env, bool onTerminal) {
    Child child;
    child.cwd = cwd;
    child.pid = onTerminal ? ::forkpty(&child.terminal, nullptr, nullptr, nullptr) : ::fork();
    if (child.pid == 0 && !onTerminal) {
        ::dup2(::open((cwd + "/.dunx-out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 1);
        ::dup2(::open((cwd + "/.dunx-err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
    }
    if (child.pid == 0)
        ExecProgram(program, args, cwd, env);
    EXPECT_GT(child.pid, 0) << "cannot start " << program;
    return child;
}

} // namespace detail

/// Starts `program` (a dunx) with `args` in folder `cwd`, every DUNX* variable of the test's
/// environment removed and `env` added, without waiting: its standard output and error go to
/// files in `cwd`. Any process can be interrupted here: `interruptible` matters on Windows only.
inline Child StartProgram(const std::string& program, const Args& args, const std::string& cwd,
                          const Env& env = {}, bool interruptible = false) {
    (void)interruptible;
    return detail::Start(program, args, cwd, env, false);
}

/// Sends the process the signal of Ctrl-C; false when it could not be sent.
inline bool InterruptDunx(const Child& child) {
    return child.pid > 0 && ::kill(child.pid, SIGINT) == 0;
}

/// Waits for a process started with `StartProgram` and collects its output; all of it in `out`
/// when it went to a terminal.
inline RunResult FinishDunx(Child& child) {
    std::string shown;
    char buffer[4096];
    // The terminal reports an error once the child has closed its side.
    for (ssize_t got;
         child.terminal >= 0 && (got = ::read(child.terminal, buffer, sizeof buffer)) > 0;)
        shown.append(buffer, static_cast<std::size_t>(got));
    int status = 0;
    const bool waited = child.pid > 0 && ::waitpid(child.pid, &status, 0) == child.pid;
    RunResult result;
    result.exitCode = waited && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (child.terminal >= 0) {
        ::close(child.terminal);
        result.out = shown;
    } else {
        result.out = ReadTextFile(child.cwd + "/.dunx-out");
        result.err = ReadTextFile(child.cwd + "/.dunx-err");
    }
    child = Child();
    return result;
}

/// Runs dunx on a new pseudo-terminal, its standard output and error both; all it showed is in
/// `out`.
inline RunResult RunDunxOnTerminal(const Args& args, const std::string& cwd) {
    Child child = detail::Start(DunxProgram(), args, cwd, {}, true);
    return FinishDunx(child);
}

#endif

/// Starts the dunx of the build as `StartProgram` does.
inline Child StartDunx(const Args& args, const std::string& cwd, const Env& env = {},
                       bool interruptible = false) {
    return StartProgram(DunxProgram(), args, cwd, env, interruptible);
}

/// Runs `program` (a dunx) as `StartProgram` starts it and waits for it.
inline RunResult RunProgram(const std::string& program, const Args& args, const std::string& cwd,
                            const Env& env = {}) {
    Child child = StartProgram(program, args, cwd, env);
    return FinishDunx(child);
}

/// Runs the dunx of the build and waits for it.
inline RunResult RunDunx(const Args& args, const std::string& cwd, const Env& env = {}) {
    return RunProgram(DunxProgram(), args, cwd, env);
}

/// Waits up to `seconds` for `path` to appear; true when it did.
inline bool AwaitFile(const std::string& path, int seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    std::error_code ignored;
    while (!std::filesystem::exists(path, ignored)) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace dunxtest
