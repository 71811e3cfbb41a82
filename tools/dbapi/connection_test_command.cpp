#include "dbui/connection_diagnosis.h"

#include "tools/dbapi/command_table.h"
#include "tools/dbapi/data_output.h"
#include "tools/dbapi/stored_names.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
namespace {
using dbui::DiagnosisStep;

struct TestOptions
{
    std::string name;
    OutputOptions output;
};

DataTable table_of(const std::string& name, const std::vector<DiagnosisStep>& steps)
{
    DataTable table{
        .asked = {{"connection", name}},
        .rowsName = "checks",
        .columns = {{"check", {}}, {"result", {}}, {"detail", {}}, {"advice", {}}}};
    for (const DiagnosisStep& step : steps) {
        table.columns[0].values.emplace_back(name_of(step.layer));
        table.columns[1].values.emplace_back(name_of(step.outcome));
        table.columns[2].values.push_back(step.detail);
        table.columns[3].values.push_back(step.advice);
    }
    return table;
}

ExitCode exit_code_of(const std::vector<DiagnosisStep>& steps)
{
    for (const DiagnosisStep& step : steps) {
        if (step.outcome == DiagnosisStep::Outcome::Failed) {
            return step.layer >= DiagnosisStep::Layer::Schema ? ExitCode::Data
                                                              : ExitCode::Connection;
        }
    }
    return ExitCode::Done;
}

ExitCode test_connection(const TestOptions& options)
{
    const std::vector<DiagnosisStep> steps =
        dbui::diagnose_connection(stored_connection(options.name));
    write_data(table_of(options.name, steps), options.output);
    return exit_code_of(steps);
}
} // namespace

CommandRunner declare_connection_test(CLI::App& arguments)
{
    const auto options = std::make_shared<TestOptions>();
    arguments.add_option("NAME", options->name, "a stored connection")->required();
    add_output_options(arguments, &options->output);
    return [options] {
        return test_connection(*options);
    };
}
} // namespace dbapi::tool
