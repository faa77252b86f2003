// The observer base of the older observer scheme, and the entity callback.
#pragma once

#include <dunx/DUNXExport.h>

/// An observer of the older scheme; `getType` tells its kind.
class DUNX_EXPORT Gk_Observer {
public:
    virtual ~Gk_Observer();
    /// The observer's type value.
    virtual int getType() const = 0;
};

/// The entity callback observer: type value 4, no further behaviour here.
class DUNX_EXPORT DUNXEntityCallback : public Gk_Observer {
public:
    /// The observer type of entity callbacks.
    static constexpr int kObserverType = 4;
    ~DUNXEntityCallback() override;
    /// Always 4.
    int getType() const override;
};
