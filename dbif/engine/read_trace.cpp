#include "dbif/engine/read_trace.h"

#include <algorithm>

namespace dbif {
namespace {
using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// The statement with every number, and every list of numbers, as one mark.
std::string form_of(const std::string& sql)
{
    std::string form;
    bool isInNumbers = false;
    for (const char c : sql) {
        const bool isDigit = c >= '0' && c <= '9';
        const bool goesOn = isInNumbers && (c == ',' || c == ' ' || c == '.');
        if (isDigit && !isInNumbers) {
            form += '#';
        } else if (!isDigit && !goesOn) {
            form += c;
        }
        isInNumbers = isDigit || goesOn;
    }
    return form;
}

class TracedRun final : public NativeStatement
{
    Q_DISABLE_COPY_MOVE(TracedRun)

public:
    TracedRun(ReadTrace& trace, std::size_t place) : trace_(trace), place_(place) {}

    ~TracedRun() override
    {
        trace_.end(place_, rows_, hasEnded_ ? seconds_ : seconds_since(begun_));
    }

    void prepare(SqlSession& session, const SqlText& sql) { statement_ = session.prepare(sql); }

    void bindInteger(int parameter, long long value) override
    {
        statement_->bindInteger(parameter, value);
    }

    bool step() override
    {
        const bool hasRow = statement_->step();
        rows_ += hasRow ? 1 : 0;
        if (!hasRow) {
            hasEnded_ = true;
            seconds_ = seconds_since(begun_);
        }
        return hasRow;
    }

    void reset() override { statement_->reset(); }

    bool isNull(int column) override { return statement_->isNull(column); }

    long long integer(int column) override { return statement_->integer(column); }

    double number(int column) override { return statement_->number(column); }

    std::string_view text(int column) override { return statement_->text(column); }

private:
    ReadTrace& trace_;
    std::size_t place_;
    std::unique_ptr<NativeStatement> statement_;
    Clock::time_point begun_ = Clock::now();
    std::size_t rows_ = 0;
    bool hasEnded_ = false;
    double seconds_ = 0;
};
} // namespace

std::unique_ptr<NativeStatement> ReadTrace::prepare(
    SqlSession& session,
    const SqlDialect& dialect,
    const QSqlDatabase& database,
    const SqlText& sql)
{
    auto run = std::make_unique<TracedRun>(*this, begin(dialect, database, sql.utf8()));
    run->prepare(session, sql);
    return run;
}

std::size_t
ReadTrace::begin(const SqlDialect& dialect, const QSqlDatabase& database, const std::string& sql)
{
    const std::string form = form_of(sql);
    const auto known = std::find(forms_.begin(), forms_.end(), form);
    const auto place = static_cast<std::size_t>(known - forms_.begin());
    if (known == forms_.end()) {
        forms_.push_back(form);
        TracedStatement statement;
        statement.step = open_.empty() ? std::string() : steps_[open_.back()].name;
        statement.sql = sql;
        if (plans_ == Plans::Read) {
            mark();
            statement.plan = dialect.plan(database, sql);
            marked_ = Clock::now();
        }
        statements_.push_back(std::move(statement));
    }
    ++statements_[place].runs;
    return place;
}

void ReadTrace::end(std::size_t place, std::size_t rows, double seconds)
{
    statements_[place].rows += rows;
    statements_[place].seconds += seconds;
}

void ReadTrace::decided(const TracedPoints& points)
{
    points_ = points;
    ++pointDecisions_;
}

void ReadTrace::mark()
{
    if (!open_.empty()) {
        steps_[open_.back()].seconds += seconds_since(marked_);
    }
    marked_ = Clock::now();
}

void ReadTrace::beginStep(const char* name)
{
    mark();
    const auto known = std::find_if(
        steps_.begin(), steps_.end(), [name](const TracedStep& step) { return step.name == name; });
    open_.push_back(static_cast<std::size_t>(known - steps_.begin()));
    if (known == steps_.end()) {
        steps_.push_back({name, 0});
    }
}

void ReadTrace::endStep()
{
    mark();
    open_.pop_back();
}
} // namespace dbif
