// A program that reads a file of measurements in, asks for it, draws it, and tells what was meant.
#include <dbapi/dbapi.h>
#include <dbexplain/explain.h>
#include <dbimport/sweep_import.h>
#include <dbinfo/database_info.h>
#include <dbplot/curve_picture.h>
#include <dbplot/plot_script.h>
#include <dbsuggest/known_keys.h>
#include <dbui/connection_open.h>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {
const std::string kName = "libraries";

bool check(bool isRight, const std::string& what, const std::string& errors)
{
    if (!isRight)
        std::cerr << what << " failed. " << errors << "\n";
    return isRight;
}

bool import_file(const DBIF_Connection& connection, const std::string& file)
{
    std::ofstream(file)
        << "# $DEVNAME = nmos1\n# DEVD.W = 5u\nIND.VG,OUTD.ID\n0,1n\n0.5,1u\n1,20u\n";
    const dbapi::ImportResult result = dbapi::import_sweeps(connection, {file});
    const std::string fault = result.faults.empty() ? "" : result.faults.front().text;
    return check(result.setups == 1 && result.points == 3, "the import", fault);
}

bool draw()
{
    dbapi::CurveSet curves;
    std::string errors;
    const std::vector<std::string> keywords{"VG", "ID"};
    if (!check(dbapi::db_get_curves(kName, keywords, &curves, "W>1u", &errors), "reading", errors))
        return false;
    std::string note;
    const std::string script =
        dbapi::plot_script(dbapi::curve_picture(std::move(curves), keywords, &note));
    return check(script.find("plot") != std::string::npos, "drawing", script);
}

bool explain()
{
    const dbapi::Explanation explanation = dbapi::explain({kName, {"W"}, "W>6u"});
    return check(
        explanation.nothing.cause == dbapi::NothingFound::Cause::Query &&
            !explanation.nothing.reasons.empty(),
        "explaining", "");
}

bool look_over()
{
    const dbapi::DatabaseInfo info = dbapi::database_info(kName);
    return check(info.points == 3 && info.schemaVersion > 0, "looking over", "");
}

/// A call with a keyword that no key has: where the fault is, and what was probably meant.
bool advise(const DBIF_Connection& connection)
{
    std::vector<std::string> values;
    std::string errors;
    dbapi::Fault fault;
    const bool isRefused =
        !dbapi::db_get_values_for_keyword_as_text(kName, "VGG", &values, "", &errors) &&
        dbapi::db_get_last_fault(&fault) && fault.kind == dbapi::Fault::Kind::UnknownKey;
    const std::vector<std::string> meant =
        dbapi::KnownKeys(connection).near(std::string(fault.piece()));
    return check(isRefused && !meant.empty() && meant.front() == "VG", "advising", errors);
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    const std::string database = argv[1];
    std::string errors;
    if (!check(dbapi::db_create_sqlite_connection(kName, database, &errors), "connecting", errors))
        return 1;
    DBIF_Connection connection = dbui::blank_connection();
    const bool isDone = check(
                            dbui_make_dbif_connection_object_by_name(kName, &connection, &errors),
                            "opening", errors) &&
                        import_file(connection, database + ".csv") && draw() && explain() &&
                        look_over() && advise(connection);
    return dbapi::db_remove_connection(kName, &errors) && isDone ? 0 : 1;
}
