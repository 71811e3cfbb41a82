#pragma once

#include "dbif/connection.h"
#include "dbif/not_copied.h"

/// Ends a transaction at the end of a scope: `arm` it right after `beginTransaction()`. Holds its
/// own copy of the connection handle.
class DConHelper : private dbif::NotCopied
{
public:
    explicit DConHelper(DBIF_Connection connection);
    ~DConHelper();

    void arm() { armed_ = true; }

private:
    DBIF_Connection connection_;
    bool armed_ = false;
};
