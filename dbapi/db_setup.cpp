#include "dbapi/db_setup.h"

#include "dbapi/call/public_call.h"
#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/engine/sql_text.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbif/record/record_tables.h"

#include <QVariant>

namespace {
bool fail(std::string* errors, const std::string& message)
{
    return dbapi::fail_call(dbapi::argument_fault(message), errors);
}

std::string full_keyword(const DBIF_SetupColumn& column)
{
    return dbapi::function_form(
        dbif::to_utf8(column.getName()), "setup",
        dbapi::convert_to_full_datatype_name(dbif::to_utf8(column.getDataType())),
        dbapi::convert_setup_is_input_to_full_category_name(column.isInput()));
}

std::vector<std::string> texts_of(const dbif::SweepArrays& arrays, const DBIF_SetupColumn& column)
{
    std::vector<std::string> texts;
    const auto found = arrays.find(column.definition().key);
    if (found != arrays.end()) {
        texts.reserve(found->second.size());
        for (std::size_t point = 0; point < found->second.size(); ++point) {
            texts.push_back(found->second.text(point));
        }
    }
    return texts;
}

/// Runs one read on a stored connection as a public call.
template <typename Read>
bool read_setup(const std::string& connectionName, std::string* errors, const Read& read)
{
    // The setup is read by its id alone; the query string is that of reading everything.
    return dbapi::run_call_without_exceptions(connectionName, std::string(), errors, [&] {
        DBIF_Connection connection = dbapi::connection_for_call(connectionName);
        read(connection);
    });
}
} // namespace

bool dbapi_get_setup_keys_values_for_setup_id_as_text(
    const std::string& connectionName,
    int setupId,
    std::vector<std::string>* keys,
    std::vector<std::vector<std::string>>* values,
    std::string* errors)
{
    keys->clear();
    values->clear();
    dbif::clear_error(errors);
    const std::string failure = "Error retrieving database setup id's setup keys' values. ";
    const std::string id = "'" + std::to_string(setupId) + "'";
    if (setupId < 1) {
        return fail(
            errors,
            failure + "The given database setup id " + id + " is an invalid database setup id.\n");
    }
    return read_setup(connectionName, errors, [&](DBIF_Connection& connection) {
        const QSharedPointer<DBIF_Setup> setup = DBIF_Setup::get(connection, setupId);
        if (setup == nullptr) {
            throw dbapi::FaultError(dbapi::argument_fault(
                failure + "The database holds no setup with id " + id + ".\n"));
        }
        for (const DBIF_SetupColumn& column : setup->getColumns()) {
            keys->push_back(full_keyword(column));
            values->push_back(texts_of(setup->arrays(), column));
        }
    });
}

namespace dbapi {
bool db_get_setup_keys_values_for_setup_id_as_text(
    const std::string& connectionName,
    int setupId,
    std::vector<std::string>* keys,
    std::vector<std::vector<std::string>>* values,
    std::string* errors)
{
    return dbapi_get_setup_keys_values_for_setup_id_as_text(
        connectionName, setupId, keys, values, errors);
}

bool db_get_column_dataheader_from_setup_id(
    const std::string& connectionName,
    int setupId,
    const std::string& columnName,
    std::string* header,
    std::string* errors)
{
    header->clear();
    dbif::clear_error(errors);
    const std::string failure = "Error retrieving database setup id's column dataheader. ";
    if (setupId < 1) {
        return fail(
            errors, failure + "The given database setup id '" + std::to_string(setupId) +
                        "' is an invalid database setup id.\n");
    }
    if (columnName.empty()) {
        return fail(errors, failure + "An invalid empty database setup column name was given. \n");
    }
    return read_setup(connectionName, errors, [&](DBIF_Connection& connection) {
        dbif::SqlText sql;
        sql << "SELECT setup_association.vanto_header \n"
               "FROM setup_association, setup_column \n"
               "WHERE \n"
               " setup_association.setup_id="
            << setupId << " AND \n setup_column.name=" << dbif::SqlLiteral(columnName)
            << " AND \n setup_association.setup_column_id=setup_column.id \n";
        QSqlQuery rows = connection.query(sql.toQt(), 0, __FILE__, __LINE__);
        if (rows.next()) {
            *header = dbif::to_utf8(rows.value(0).toString());
        }
    });
}
} // namespace dbapi
