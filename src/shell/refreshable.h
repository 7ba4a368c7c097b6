#pragma once

// A view that re-reads the store in place, without being rebuilt.
class Refreshable
{
public:
    virtual ~Refreshable() = default;
    // Updates the view from the store and Nav; never writes.
    virtual void refresh() = 0;
};
