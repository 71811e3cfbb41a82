#pragma once

// All public calls of the library.
#include "dbapi/builtin_keynames.h"
#include "dbapi/db_connections.h"
#include "dbapi/db_values.h"
