#pragma once

#include "dbif/engine/sql_dialect.h"

#include <QSqlDatabase>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace dbif {
/// Statements of one form: they differ only in numbers, as those do that read block after block.
struct TracedStatement
{
    /// The step of the read that ran them.
    std::string step;
    /// The text of the first one.
    std::string sql;
    std::vector<PlanStep> plan;
    /// The runs, rows and time of all of them; the time counts from asking for a statement until
    /// its last row was taken.
    std::size_t runs = 0;
    std::size_t rows = 0;
    double seconds = 0;
};

struct TracedStep
{
    std::string name;
    /// The time of the step without the steps inside it, and without looking for plans.
    double seconds = 0;
};

/// The points of setups that were looked at to decide a condition.
struct TracedPoints
{
    /// The setups and points that SQL selected, by the records and by the bounds of the columns.
    std::size_t setups = 0;
    std::size_t points = 0;
    /// The setups and points that satisfy the condition.
    std::size_t keptSetups = 0;
    std::size_t keptPoints = 0;
};

/// Notes the statements that are read through the connection it is attached to, and the steps of
/// the read with their times (see `DBIF_Connection::ManagedConnection::setTrace`). It costs
/// something only while it is attached.
class ReadTrace
{
    Q_DISABLE_COPY_MOVE(ReadTrace)

public:
    enum class Plans { Read, Leave };

    explicit ReadTrace(Plans plans) : plans_(plans) {}

    ~ReadTrace() = default;

    /// The statements, one for each form, in the order in which each form first came.
    [[nodiscard]] const std::vector<TracedStatement>& statements() const { return statements_; }

    [[nodiscard]] const std::vector<TracedStep>& steps() const { return steps_; }

    /// The number of conditions that were decided on points; `points` is about the last of them.
    [[nodiscard]] std::size_t pointDecisions() const { return pointDecisions_; }

    [[nodiscard]] const TracedPoints& points() const { return points_; }

    // These libraries report to the trace by the members below.

    /// Prepares a statement that is noted as it runs.
    std::unique_ptr<NativeStatement> prepare(
        SqlSession& session,
        const SqlDialect& dialect,
        const QSqlDatabase& database,
        const SqlText& sql);
    /// Notes that a statement is about to run, and returns its place among `statements`.
    std::size_t
    begin(const SqlDialect& dialect, const QSqlDatabase& database, const std::string& sql);
    /// Notes how many rows the statement yielded, and its time.
    void end(std::size_t place, std::size_t rows, double seconds);
    void decided(const TracedPoints& points);
    void beginStep(const char* name);
    void endStep();

private:
    using Clock = std::chrono::steady_clock;

    /// Gives the time since the last mark to the innermost step.
    void mark();

    Plans plans_;
    std::vector<TracedStatement> statements_;
    std::vector<std::string> forms_;
    std::vector<TracedStep> steps_;
    std::vector<std::size_t> open_;
    Clock::time_point marked_;
    std::size_t pointDecisions_ = 0;
    TracedPoints points_;
};

/// The steps that are the same for every read.
inline constexpr const char* kDefinitionsStep = "read the key definitions";
inline constexpr const char* kFreshnessStep = "look whether the data changed";

/// One step of a read, as long as the object lives. Without a trace it does nothing.
class TraceStep
{
    Q_DISABLE_COPY_MOVE(TraceStep)

public:
    TraceStep(ReadTrace* trace, const char* name) : trace_(trace)
    {
        if (trace_ != nullptr) {
            trace_->beginStep(name);
        }
    }

    ~TraceStep()
    {
        if (trace_ != nullptr) {
            trace_->endStep();
        }
    }

private:
    ReadTrace* trace_;
};
} // namespace dbif
