#include "tools/dbapi/command_table.h"

#include <array>

namespace dbapi::tool {
std::span<const Command> commands()
{
    static constexpr std::array kCommands{
        Command{
            "connection add", "Give a database a name, and create it where there is none",
            "dbapi connection add lab --sqlite lab.db", declare_connection_add},
        Command{
            "connection list", "List the stored connections", "dbapi connection list",
            declare_connection_list},
        Command{
            "connection test", "Check that a stored connection works", "dbapi connection test lab",
            declare_connection_test},
        Command{
            "connection remove", "Forget a stored connection; its database stays",
            "dbapi connection remove lab", declare_connection_remove},
        Command{
            "import", "Read files of annotated CSV into a database, all or none",
            "dbapi import lab sweeps/ more.csv", declare_import},
        Command{
            "values", "Show what is stored under keywords",
            "dbapi values lab '$DEVNAME' W -q 'W=[1u,5u];$TEMP=25' --distinct", declare_values}};
    return kCommands;
}
} // namespace dbapi::tool
