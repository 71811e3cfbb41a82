#include "dbsuggest/wrapped_text.h"
#include "dbui/diagnosis/connection_diagnosis.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
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

/// For people: in their terminal's width, with the advice below what it is about.
std::string text_of(const std::vector<DiagnosisStep>& steps)
{
    constexpr std::size_t kNameWidth = 12;
    constexpr std::size_t kIndent = kNameWidth + 9;
    constexpr std::size_t kWidest = 100;
    constexpr std::size_t kNarrowest = 30;
    const std::size_t columns = std::min(terminal_size(stdout).columns, kWidest);
    const std::size_t width = std::max(columns, kIndent + kNarrowest);
    std::string text;
    for (const DiagnosisStep& step : steps) {
        std::string start = name_of(step.layer);
        start.resize(kNameWidth, ' ');
        std::string outcome = name_of(step.outcome);
        outcome.resize(kIndent - kNameWidth, ' ');
        const bool isAlert = step.outcome == DiagnosisStep::Outcome::Failed;
        const std::string detail = wrapped_text(step.detail, kIndent, width);
        text += start + styled(outcome, isAlert ? Style::Alert : Style::Plain, stdout) +
                (detail.empty() ? "\n" : detail.substr(kIndent));
        if (!step.advice.empty()) {
            text += wrapped_text("-> " + step.advice, kIndent, width);
        }
    }
    return text;
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
        dbui::diagnose_connection(known_connection(options.name));
    if (chosen_format(options.output) == Format::Table) {
        write_text(text_of(steps));
    } else {
        write_data(table_of(options.name, steps), options.output);
    }
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
