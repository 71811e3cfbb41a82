#pragma once

#include "dbui/diagnosis/diagnosis_step.h"

#include <span>
#include <string>
#include <vector>

namespace dbui {
/// The steps of a diagnosis while it goes on.
class DiagnosisReport
{
public:
    using Layer = DiagnosisStep::Layer;

    /// `plan` holds the layers in the order in which they are checked.
    DiagnosisReport(std::span<const Layer> plan, DiagnosisListener listener);

    void ok(Layer layer, const std::string& detail);
    void warn(Layer layer, const std::string& detail, const std::string& advice);
    void fail(Layer layer, const std::string& detail, const std::string& advice);
    /// Skips a layer of which there is nothing to check.
    void skip(Layer layer, const std::string& detail);

    /// Tells whether to go on: nothing failed, and the listener wants more.
    [[nodiscard]] bool goesOn() const { return !hasFailed_ && !isStopped_; }

    /// All steps; the layers of the plan that were not reached are skipped.
    std::vector<DiagnosisStep> finish();

private:
    void add(DiagnosisStep step);

    std::span<const Layer> plan_;
    DiagnosisListener listener_;
    std::vector<DiagnosisStep> steps_;
    bool hasFailed_ = false;
    bool isStopped_ = false;
};
} // namespace dbui
