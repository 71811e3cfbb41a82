#pragma once

#include "dbif/connection/connection.h"

#include <QtGlobal>

/// Ends a transaction at the end of a scope: `arm` it right after `beginTransaction()`. Holds its
/// own copy of the connection handle.
class DConHelper
{
    Q_DISABLE_COPY_MOVE(DConHelper)

public:
    explicit DConHelper(DBIF_Connection connection);
    ~DConHelper();

    void arm() { armed_ = true; }

private:
    DBIF_Connection connection_;
    bool armed_ = false;
};
