// The older generation's error manager and its exceptions.
#pragma once

#include <dunx/DUNXExport.h>

#include <exception>
#include <memory>
#include <string>

/// A fault of the older stream classes: a message and, optionally, the
/// exception that led to it.
class DUNX_EXPORT Gk_Exception : public std::exception {
public:
    /// Keeps a copy of `message` (null reads as "") and of `previous`, if any.
    explicit Gk_Exception(const char* message = nullptr, const Gk_Exception* previous = nullptr);
    ~Gk_Exception() override;

    /// The message; never null.
    const char* getMessage() const;
    /// The exception that led to this one, or null.
    const Gk_Exception* getPrevious() const;
    /// The message.
    const char* what() const noexcept override;

    /// Throws a copy of this exception with its own type.
    virtual void raise() const;
    /// A heap copy with this exception's own type (used to keep a chain).
    virtual std::unique_ptr<Gk_Exception> clone() const;

private:
    std::shared_ptr<const std::string> m_Message;
    std::shared_ptr<const Gk_Exception> m_Previous;
};

/// A read or write fault of the older stream classes.
class DUNX_EXPORT Gk_IOException : public Gk_Exception {
public:
    using Gk_Exception::Gk_Exception;
    ~Gk_IOException() override;
    /// Throws a copy of this exception as a `Gk_IOException`.
    void raise() const override;
    /// A heap copy as a `Gk_IOException`.
    std::unique_ptr<Gk_Exception> clone() const override;
};

/// Process-wide abort request and raising of the older exceptions.
class DUNX_EXPORT Gk_ErrMgr {
public:
    /// Requests (true) or withdraws (false) an abort of the translation.
    static void setAbort(bool abort);
    /// True while an abort is requested.
    static bool shouldAbort();
    /// Throws `DUNXAbortException` when an abort is requested; the request stays set.
    static void checkAbort();
    /// Calls `trap()`, then throws `exception` with its own type.
    static void raise(const Gk_Exception& exception);
    /// Does nothing: a fixed place for a debugger breakpoint on every raise.
    static void trap();
};
