#pragma once

// All public calls of the library.
#include "dbapi/db_arrow.h"
#include "dbapi/db_columns.h"
#include "dbapi/db_connections.h"
#include "dbapi/db_curves.h"
#include "dbapi/db_fault.h"
#include "dbapi/db_listing.h"
#include "dbapi/db_records.h"
#include "dbapi/db_setup.h"
#include "dbapi/db_values.h"
#include "dbapi/words/builtin_keynames.h"
