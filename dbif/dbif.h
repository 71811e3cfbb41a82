#pragma once

// The whole database interface, as programs use it.
//
// Texts of type `std::string`, `KTString` and `const char*` are UTF-8. A failure
// throws `DBIF_Exception` where nothing else is said.
//
// Threads: handles to a connection may be copied and released in any thread. Everything else that
// uses a connection (statements, queries, dynamic columns) is called by one thread at a time per
// connection. Conditions, fixed columns and values are plain values.
#include "dbif/condition/column_condition.h"
#include "dbif/condition/compound_condition.h"
#include "dbif/condition/condition.h"
#include "dbif/condition/constant_condition.h"
#include "dbif/condition/query_enums.h"
#include "dbif/connection/connection.h"
#include "dbif/host/error_text.h"
#include "dbif/host/exception.h"
#include "dbif/host/host_environment.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"
#include "dbif/query/dynamic_column.h"
#include "dbif/query/fixed_column.h"
#include "dbif/query/join_algorithm.h"
#include "dbif/query/query.h"
#include "dbif/record/in_memory_table.h"
#include "dbif/record/record_retrieval.h"
#include "dbif/record/record_tables.h"
#include "dbif/retrieval/vanto_query.h"
#include "dbif/value/complex_values.h"
#include "dbif/value/data_type.h"
