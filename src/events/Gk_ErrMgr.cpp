#include <dunx/Gk_ErrMgr.h>

#include <dunx/DUNXEventBus.h>

namespace {
bool g_AbortRequested = false;
}

Gk_Exception::Gk_Exception(const char* message, const Gk_Exception* previous)
    : m_Message(std::make_shared<const std::string>(message ? message : "")),
      m_Previous(previous ? std::shared_ptr<const Gk_Exception>(previous->clone()) : nullptr) {}

Gk_Exception::~Gk_Exception() = default;

const char* Gk_Exception::getMessage() const {
    return m_Message->c_str();
}

const Gk_Exception* Gk_Exception::getPrevious() const {
    return m_Previous.get();
}

const char* Gk_Exception::what() const noexcept {
    return m_Message->c_str();
}

void Gk_Exception::raise() const {
    throw *this;
}

std::unique_ptr<Gk_Exception> Gk_Exception::clone() const {
    return std::make_unique<Gk_Exception>(*this);
}

Gk_IOException::~Gk_IOException() = default;

void Gk_IOException::raise() const {
    throw *this;
}

std::unique_ptr<Gk_Exception> Gk_IOException::clone() const {
    return std::make_unique<Gk_IOException>(*this);
}

void Gk_ErrMgr::setAbort(bool abort) {
    g_AbortRequested = abort;
}

bool Gk_ErrMgr::shouldAbort() {
    return g_AbortRequested;
}

void Gk_ErrMgr::checkAbort() {
    if (g_AbortRequested)
        throw DUNXAbortException();
}

void Gk_ErrMgr::raise(const Gk_Exception& exception) {
    trap();
    exception.raise();
}

void Gk_ErrMgr::trap() {
    // Intentionally empty: a breakpoint here catches every raise.
}
