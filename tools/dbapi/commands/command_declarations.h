#pragma once

#include "tools/dbapi/arguments/command.h"

namespace dbapi::tool {
// One file per command, or few that belong together.

CommandRunner declare_connection_add(CLI::App& arguments);
CommandRunner declare_connection_list(CLI::App& arguments);
CommandRunner declare_connection_test(CLI::App& arguments);
CommandRunner declare_connection_edit(CLI::App& arguments);
CommandRunner declare_connection_rename(CLI::App& arguments);
CommandRunner declare_connection_remove(CLI::App& arguments);
CommandRunner declare_connection_manage(CLI::App& arguments);
CommandRunner declare_info(CLI::App& arguments);
CommandRunner declare_import(CLI::App& arguments);
CommandRunner declare_copy(CLI::App& arguments);
CommandRunner declare_values(CLI::App& arguments);
CommandRunner declare_explain(CLI::App& arguments);
CommandRunner declare_keys(CLI::App& arguments);
CommandRunner declare_ids(CLI::App& arguments);
CommandRunner declare_record(CLI::App& arguments);
CommandRunner declare_setup(CLI::App& arguments);
CommandRunner declare_header(CLI::App& arguments);
CommandRunner declare_tables(CLI::App& arguments);
CommandRunner declare_builtins(CLI::App& arguments);
} // namespace dbapi::tool
