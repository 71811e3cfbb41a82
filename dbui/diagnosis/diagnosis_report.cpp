#include "dbui/diagnosis/diagnosis_report.h"

#include <utility>

namespace dbui {
DiagnosisReport::DiagnosisReport(std::span<const Layer> plan, DiagnosisListener listener)
    : plan_(plan), listener_(std::move(listener))
{}

void DiagnosisReport::ok(Layer layer, const std::string& detail)
{
    add({layer, DiagnosisStep::Outcome::Ok, detail, {}});
}

void DiagnosisReport::warn(Layer layer, const std::string& detail, const std::string& advice)
{
    add({layer, DiagnosisStep::Outcome::Warning, detail, advice});
}

void DiagnosisReport::fail(Layer layer, const std::string& detail, const std::string& advice)
{
    hasFailed_ = true;
    add({layer, DiagnosisStep::Outcome::Failed, detail, advice});
}

void DiagnosisReport::skip(Layer layer, const std::string& detail)
{
    add({layer, DiagnosisStep::Outcome::Skipped, detail, {}});
}

std::vector<DiagnosisStep> DiagnosisReport::finish()
{
    const std::string reason =
        hasFailed_ ? std::string("not checked, because an earlier check failed") : "not checked";
    while (steps_.size() < plan_.size()) {
        skip(plan_[steps_.size()], reason);
    }
    return std::move(steps_);
}

void DiagnosisReport::add(DiagnosisStep step)
{
    if (listener_ && !isStopped_) {
        isStopped_ = !listener_(step);
    }
    steps_.push_back(std::move(step));
}
} // namespace dbui
