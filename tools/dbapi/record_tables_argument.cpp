#include "tools/dbapi/record_tables_argument.h"

#include "dbapi/vocabulary.h"

#include <CLI/CLI.hpp>

namespace dbapi::tool {
void add_table_argument(CLI::App& arguments, std::string* table)
{
    arguments.add_option("TABLE", *table, "a record table: device, DEV, setup, ...")
        ->required()
        ->transform([](const std::string& given) {
            std::string name;
            std::string attributes;
            if (!dbapi_find_tablename_in_table_vocabulary(given, &name, &attributes)) {
                throw CLI::ValidationError(
                    "there is no table \"" + given + "\"; dbapi tables lists those there are");
            }
            return name;
        });
}
} // namespace dbapi::tool
