#pragma once

#include "dbif/connection.h"

/// Ends a transaction at the end of a scope: `arm` it right after `beginTransaction()`. Holds its
/// own copy of the connection handle.
class DConHelper
{
public:
    explicit DConHelper(DBIF_Connection connection);
    ~DConHelper();
    DConHelper(const DConHelper&) = delete;
    DConHelper& operator=(const DConHelper&) = delete;

    void arm() { armed_ = true; }

private:
    DBIF_Connection connection_;
    bool armed_ = false;
};
