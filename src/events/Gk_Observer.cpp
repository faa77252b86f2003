#include <dunx/Gk_Observer.h>

Gk_Observer::~Gk_Observer() = default;

DUNXEntityCallback::~DUNXEntityCallback() = default;

int DUNXEntityCallback::getType() const {
    return kObserverType;
}
