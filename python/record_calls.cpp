#include "dbapi/db_columns.h"
#include "dbapi/db_listing.h"
#include "dbapi/db_records.h"
#include "dbapi/db_setup.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbif/record/record_tables.h"

#include "python/bindings.h"
#include "python/column_arrays.h"
#include "python/library_call.h"
#include "python/python_texts.h"

#include <algorithm>
#include <utility>

namespace dbapi::python {
namespace {
/// The ids of the selected records, ascending.
py::array ids(const py::object& connection, const py::object& table, const py::object& query)
{
    const std::string name = text_of(connection, "The connection");
    const std::string tableName = text_of(table, "The table");
    const std::string queryText = text_of(query, "The query");
    std::set<int> found;
    call_library(name, [&](std::string* errors) {
        return dbapi_get_table_ids_from_query_for_tablename(
            name, tableName, &found, queryText, errors);
    });
    py::array_t<std::int64_t> array(static_cast<py::ssize_t>(found.size()));
    std::copy(found.begin(), found.end(), array.mutable_data());
    return array;
}

/// Of each key its name, category, data type, the records that have it, their points, and the
/// smallest and largest number.
py::list keys(const py::object& connection, const py::object& table, const py::object& query)
{
    const std::string name = text_of(connection, "The connection");
    const std::string tableName = text_of(table, "The table");
    const std::string queryText = text_of(query, "The query");
    std::vector<KeyStatistics> found;
    call_library(name, [&](std::string* errors) {
        return db_get_key_statistics(name, tableName, &found, queryText, errors);
    });
    const auto optional = [](const auto& value) {
        return value.has_value() ? py::cast(*value) : py::object(py::none());
    };
    py::list list;
    for (const KeyStatistics& key : found) {
        list.append(py::make_tuple(
            text_object(key.name), text_object(key.category), text_object(key.datatype),
            key.records, optional(key.points), optional(key.minimum), optional(key.maximum)));
    }
    return list;
}

/// The query string of one record, superseded or not.
std::string query_of_record(const std::string& table, int id)
{
    std::string query;
    std::string errors;
    if (!dbapi_build_query_str_for_get_key_values_for_table_id_for_tablename(
            table, id, &query, "ALLDATA:", &errors)) {
        throw FaultError(argument_fault(errors));
    }
    return query;
}

/// The builtin keynames of the fixed columns of a table.
std::vector<std::string> builtins_of(const std::string& table)
{
    std::vector<std::string> found;
    for (const auto& [builtin, column] : build_builtin_keywords(false)) {
        if (column.starts_with(table + ".") && dynamic_builtin_keywords().count(builtin) == 0) {
            found.push_back(builtin);
        }
    }
    return found;
}

/// The one row of all that a record has: its fixed columns and, but for setups, whose keys have a
/// value for each point, its keys. How many rows there are, and the columns.
py::tuple record(const py::object& connection, const py::object& table, int id)
{
    const std::string name = text_of(connection, "The connection");
    const std::string tableName = text_of(table, "The table");
    ColumnTable row;
    call_library(name, [&](std::string* errors) {
        const std::string query = query_of_record(tableName, id);
        std::set<std::string> keynames;
        if (!db_get_keynames_in_table(name, tableName, &keynames, query, "FULL", errors)) {
            return false;
        }
        std::vector<std::string> keywords = builtins_of(tableName);
        if (tableName != "setup") {
            keywords.insert(keywords.end(), keynames.begin(), keynames.end());
        }
        ColumnOptions options;
        options.order = ColumnOptions::Order::None;
        return db_get_columns(name, keywords, &row, query, options, errors);
    });
    return py::make_tuple(row.rows, column_list(&row));
}

/// The points of a setup: how many, the columns, inputs first, and the header of each.
py::tuple setup(const py::object& connection, int id)
{
    const std::string name = text_of(connection, "The connection");
    ColumnTable table;
    std::vector<std::string> headers;
    call_library(name, [&](std::string* errors) {
        const std::string query = query_of_record("setup", id);
        std::set<std::string> keynames;
        if (!db_get_keynames_in_table(name, "setup", &keynames, query, "FULL", errors)) {
            return false;
        }
        std::vector<std::string> keys(keynames.begin(), keynames.end());
        std::stable_partition(keys.begin(), keys.end(), [](const std::string& key) {
            return key.ends_with(",INPUT)");
        });
        ColumnOptions options;
        options.order = ColumnOptions::Order::Stored;
        if (!keys.empty() && !db_get_columns(name, keys, &table, query, options, errors)) {
            return false;
        }
        for (ValueColumn& column : table.columns) {
            column.keyword = column.name;
            std::string header;
            if (!db_get_column_dataheader_from_setup_id(name, id, column.name, &header, errors)) {
                return false;
            }
            headers.push_back(std::move(header));
        }
        return true;
    });
    return py::make_tuple(table.rows, column_list(&table), text_list(headers));
}
} // namespace

void bind_records(py::module_& module)
{
    module.def("ids", &ids, py::arg("connection"), py::arg("table"), py::arg("query"));
    module.def("keys", &keys, py::arg("connection"), py::arg("table"), py::arg("query"));
    module.def("record", &record, py::arg("connection"), py::arg("table"), py::arg("id"));
    module.def("setup", &setup, py::arg("connection"), py::arg("id"));
}
} // namespace dbapi::python
