#include "dbapi/key/catalogue_sql.h"

#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"

namespace dbapi {
namespace {
/// One key that may fit: its name, and its data type and category when the term has them.
std::string
term_condition(const dbapiKeyTermC& term, const std::string& tablename, const std::string& columns)
{
    const auto equals = [&columns](const char* column, const std::string& value) {
        dbif::SqlText literal;
        literal << dbif::SqlLiteral(value);
        return columns + "." + column + "=" + literal.utf8();
    };
    std::string condition = "(" + equals("name", term.keyname());
    if (!term.datatype().empty()) {
        condition += " AND " + equals("data_type", term.datatype());
    }
    if (!term.category().empty()) {
        bool isInput = false;
        bool isOutput = false;
        if (tablename == "setup") {
            dbapi_is_category_input(term.category(), &isInput, &isOutput);
            condition += " AND " + columns + ".is_input=" + (isInput ? "1" : "0");
        } else {
            condition += " AND " + equals("category", term.category());
        }
    }
    return condition + ") \n";
}

std::string term_filter(
    const std::set<dbapiKeyTermC>& terms,
    const std::string& tablename,
    const std::string& columns)
{
    std::string filter;
    for (const dbapiKeyTermC& term : terms) {
        if (term.tablename() == tablename && !dbapi_is_category_fixed(term.category())) {
            filter += filter.empty() ? "AND ( \n" : " OR ";
            filter += term_condition(term, tablename, columns);
        }
    }
    return filter.empty() ? filter : filter + ") \n";
}
} // namespace

QString catalogue_statement(
    const std::string& tablename,
    const std::set<dbapiKeyTermC>& terms,
    const QString& recordIds)
{
    const std::string columns = tablename + "_column";
    const std::string association = tablename + "_association";
    const std::string link = columns + "_id";
    const std::string record = tablename + "_id";

    std::string sql = "SELECT DISTINCT " + columns + ".name, " + columns + ".data_type, " +
                      columns + (tablename == "setup" ? ".is_input" : ".category") +
                      "\nFROM multi_table, multi_table_column, " + columns + "\n";
    sql += "INNER JOIN\n(SELECT DISTINCT " + association + "." + link + "\nFROM " + association +
           " \n";
    const std::string selected = dbif::trimmed(dbif::to_utf8(recordIds));
    if (!selected.empty()) {
        sql += " INNER JOIN\n (\n" + selected + " ) QUERYRESULTS\n ON QUERYRESULTS." + record +
               " = " + association + "." + record + "\n";
    }
    sql += ") ASSOCTBLRESULTS \nON ASSOCTBLRESULTS." + link + "=" + columns + ".id\n";
    sql += "WHERE \nmulti_table.id=multi_table_column.multi_table_id \nAND " + columns +
           ".id=multi_table_column.column_id \nAND multi_table.column_table_name='" + columns +
           "' \n";
    return dbif::to_qt(sql + term_filter(terms, tablename, columns));
}
} // namespace dbapi
