#include "tools/dbapi/commands/command_table.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/help/help_declarations.h"

#include <array>

namespace dbapi::tool {
std::span<const Command> commands()
{
    static constexpr std::array kCommands{
        Command{
            "connection add",
            "Store a connection under a name; create the database if there is none",
            "dbapi connection add lab --sqlite lab.db", declare_connection_add},
        Command{
            "connection list", "List the stored connections", "dbapi connection list",
            declare_connection_list},
        Command{
            "connection test", "Check that a stored connection works", "dbapi connection test lab",
            declare_connection_test},
        Command{
            "connection edit", "Change where a stored connection leads",
            "dbapi connection edit lab --sqlite /data/lab.db", declare_connection_edit},
        Command{
            "connection rename", "Give a stored connection another name",
            "dbapi connection rename lab old-lab", declare_connection_rename},
        Command{
            "connection remove", "Remove a stored connection; its database stays",
            "dbapi connection remove lab", declare_connection_remove},
        Command{
            "connection manage", "Open the window that manages connections",
            "dbapi connection manage", declare_connection_manage},
        Command{"info", "Show what a database holds, at a glance", "dbapi info lab", declare_info},
        Command{
            "import", "Import files of annotated CSV into a database, all of them or none",
            "dbapi import lab sweeps/ more.csv", declare_import},
        Command{
            "copy", "Copy records with their history into another database, and verify the copy",
            "dbapi copy lab backup -q '$LOT=S130'", declare_copy},
        Command{
            "values", "Show the values of keywords",
            "dbapi values lab '$DEVNAME' W -q 'W=[1u,5u];$TEMP=25' --distinct", declare_values},
        Command{
            "explain", "Show how a read is understood and run, and why it finds nothing",
            "dbapi explain lab IND.VG OUTD.ID -q 'W=5u;IND.VG=[0.6,0.7]'", declare_explain},
        Command{
            "keys", "List the keys that the records of a table have",
            "dbapi keys lab device -q '$LOT=S130'", declare_keys},
        Command{
            "ids", "List the ids of the records that a query selects",
            "dbapi ids lab setup -q '$DEVNAME=n1'", declare_ids},
        Command{
            "record", "Show the values of a keyword for one record",
            "dbapi record lab measurement 42 OUTD.ID", declare_record},
        Command{
            "setup", "Show all keys of a setup side by side", "dbapi setup lab 7", declare_setup},
        Command{
            "header", "Show the data header of one of a setup's keys", "dbapi header lab 7 VG",
            declare_header},
        Command{"tables", "List the record tables", "dbapi tables", declare_tables},
        Command{
            "builtins", "List the builtin keynames and what they stand for", "dbapi builtins",
            declare_builtins},
        Command{
            "help", "Show the help of the program, or of a command", "dbapi help connection add",
            declare_help},
        Command{
            "completion", "Print a script that completes this program's words in a shell",
            "source <(dbapi completion bash)", declare_completion},
        Command{
            "manual", "Print this program's manual page", "dbapi manual > dbapi.1", declare_manual},
        Command{"complete", "List what may come next", "dbapi complete -- val", declare_complete}};
    return kCommands;
}
} // namespace dbapi::tool
