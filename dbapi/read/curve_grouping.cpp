#include "dbapi/read/curve_grouping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <unordered_map>

namespace dbapi {
namespace {
using Kind = dbif::ResultColumn::Kind;

bool is_missing(double number)
{
    return std::isnan(number);
}

bool is_missing(const std::complex<double>& number)
{
    return std::isnan(number.real());
}

template <typename Value>
bool is_missing(const Value& /*text or code*/)
{
    return false;
}

bool has_value(const dbif::ResultColumn& column, std::size_t row)
{
    switch (column.kind) {
    case Kind::Text:
        return !column.texts[row].empty();
    case Kind::SharedText:
        return !(*column.dictionary)[column.codes[row]].empty();
    default:
        return dbif::with_values(
            column, [row](const auto& values) { return !is_missing(values[row]); });
    }
}

/// Leaves the rows that have both x and y.
void keep_complete_rows(CurveRows* rows)
{
    std::vector<std::uint8_t> isKept(rows->x.size());
    std::size_t kept = 0;
    for (std::size_t row = 0; row < isKept.size(); ++row) {
        isKept[row] = has_value(rows->x, row) && has_value(rows->y, row) ? 1 : 0;
        if (isKept[row] != 0 && !rows->setups.empty()) {
            rows->setups[kept] = rows->setups[row];
        }
        kept += isKept[row];
    }
    if (kept == isKept.size()) {
        return;
    }
    if (!rows->setups.empty()) {
        rows->setups.resize(kept);
    }
    rows->x.keepRows(isKept);
    rows->y.keepRows(isKept);
    for (CurveRows::Parameter& parameter : rows->parameters) {
        parameter.values.keepRows(isKept);
    }
}

bool differ(const dbif::ResultColumn& column, std::size_t a, std::size_t b)
{
    return dbif::with_values(column, [a, b](const auto& values) {
        return values[a] != values[b] && !(is_missing(values[a]) && is_missing(values[b]));
    });
}

/// Six digits, so that what a source was set to is one value, whatever its last digits.
std::string parameter_text(const dbif::ResultColumn& column, std::size_t row)
{
    if (column.kind != Kind::Double) {
        return column.text(row);
    }
    if (is_missing(column.numbers[row])) {
        return {};
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.6g", column.numbers[row]);
    return text.data();
}

/// The rows from `begin` to before `end`, which one setup has, or all rows of records.
struct Stretch
{
    std::size_t begin = 0;
    std::size_t end = 0;
    int setup = 0;
    /// Tells whether x is what the setup sweeps.
    bool isSweepOfX = true;
    /// Which parameters tell points of the stretch apart.
    std::vector<bool> isParameter = {};
};

std::size_t changes(const Stretch& stretch, const dbif::ResultColumn& column)
{
    std::size_t count = 0;
    for (std::size_t row = stretch.begin + 1; row < stretch.end; ++row) {
        count += differ(column, row - 1, row) ? 1 : 0;
    }
    return count;
}

/// Decides what is swept and what is a parameter: nested sweeps change the inner input at least
/// twice as often as the outer one.
void find_sweep(const CurveRows& rows, Stretch* stretch)
{
    const std::size_t xChanges = changes(*stretch, rows.x);
    std::size_t mostChanges = 0;
    std::vector<std::size_t> allChanges;
    for (const CurveRows::Parameter& parameter : rows.parameters) {
        allChanges.push_back(changes(*stretch, parameter.values));
        if (parameter.kind == CurveRows::Parameter::Kind::Input) {
            mostChanges = std::max(mostChanges, allChanges.back());
        }
    }
    stretch->isSweepOfX = mostChanges == 0 || 2 * xChanges > mostChanges;
    for (const std::size_t itsChanges : allChanges) {
        const bool changesWithX = stretch->isSweepOfX && 2 * itsChanges > xChanges;
        stretch->isParameter.push_back(!changesWithX);
    }
}

/// The stretches of the setups, without those that are left out.
std::vector<Stretch> find_stretches(const CurveRows& rows, std::size_t* leftOut)
{
    const std::size_t count = rows.x.size();
    if (!rows.isSwept) {
        if (count == 0) {
            return {};
        }
        return {{0, count, 0, true, std::vector<bool>(rows.parameters.size(), true)}};
    }
    std::vector<Stretch> stretches;
    for (std::size_t row = 0; row < count; ++row) {
        if (row == 0 || rows.setups[row] != rows.setups[row - 1]) {
            stretches.push_back({row, row, static_cast<int>(rows.setups[row])});
        }
        stretches.back().end = row + 1;
    }
    for (Stretch& stretch : stretches) {
        find_sweep(rows, &stretch);
    }
    const auto isOther = [](const Stretch& stretch) {
        return !stretch.isSweepOfX;
    };
    *leftOut = static_cast<std::size_t>(std::count_if(stretches.begin(), stretches.end(), isOther));
    if (*leftOut == stretches.size()) {
        *leftOut = 0;
    } else {
        stretches.erase(
            std::remove_if(stretches.begin(), stretches.end(), isOther), stretches.end());
    }
    return stretches;
}

/// Distributes the rows of one stretch over its curves.
class StretchCurves
{
public:
    StretchCurves(const CurveRows& rows, const Stretch& stretch, CurveSet* set)
        : rows_(rows), stretch_(stretch), set_(set)
    {}

    Curve& curveOf(std::size_t row)
    {
        if (last_ == kNone || hasOtherParameters(row)) {
            last_ = find(row);
        }
        lastRow_ = row;
        return set_->curves[last_];
    }

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    [[nodiscard]] bool hasOtherParameters(std::size_t row) const
    {
        for (std::size_t i = 0; i < rows_.parameters.size(); ++i) {
            if (stretch_.isParameter[i] && differ(rows_.parameters[i].values, lastRow_, row)) {
                return true;
            }
        }
        return false;
    }

    std::size_t find(std::size_t row)
    {
        std::vector<std::string> parameters;
        std::string key;
        for (std::size_t i = 0; i < rows_.parameters.size(); ++i) {
            parameters.push_back(
                stretch_.isParameter[i] ? parameter_text(rows_.parameters[i].values, row)
                                        : std::string());
            // With its length in front, so that no two lists give the same key.
            key += std::to_string(parameters.back().size()) + ":" + parameters.back();
        }
        const auto [found, isNew] = known_.emplace(key, set_->curves.size());
        if (isNew) {
            set_->curves.push_back({stretch_.setup, std::move(parameters), {}, {}});
        }
        return found->second;
    }

    const CurveRows& rows_;
    const Stretch& stretch_;
    CurveSet* set_;
    std::unordered_map<std::string, std::size_t> known_;
    std::size_t last_ = kNone;
    std::size_t lastRow_ = 0;
};
} // namespace

std::vector<double> axis_numbers(dbif::ResultColumn column, CurveAxis* axis)
{
    std::vector<double> numbers;
    switch (column.kind) {
    case Kind::Integer:
    case Kind::Double:
        return std::move(column.numbers);
    case Kind::Complex:
        axis->isMagnitude = true;
        for (const std::complex<double>& number : column.complexNumbers) {
            numbers.push_back(is_missing(number) ? std::nan("") : std::abs(number));
        }
        return numbers;
    case Kind::Text:
    case Kind::SharedText:
        break;
    }
    std::map<std::string, std::size_t> places;
    for (std::size_t row = 0; row < column.size(); ++row) {
        places.emplace(column.text(row), 0);
    }
    places.erase(std::string());
    for (auto& [label, place] : places) {
        place = axis->labels.size();
        axis->labels.push_back(label);
    }
    for (std::size_t row = 0; row < column.size(); ++row) {
        const auto found = places.find(column.text(row));
        numbers.push_back(
            found == places.end() ? std::nan("") : static_cast<double>(found->second));
    }
    return numbers;
}

CurveSet group_into_curves(CurveRows rows)
{
    CurveSet set;
    set.isSwept = rows.isSwept;
    for (const CurveRows::Parameter& parameter : rows.parameters) {
        set.parameters.push_back(parameter.facts);
    }
    keep_complete_rows(&rows);
    const std::vector<Stretch> stretches = find_stretches(rows, &set.setupsLeftOut);
    const std::vector<double> x = axis_numbers(std::move(rows.x), &set.x);
    const std::vector<double> y = axis_numbers(std::move(rows.y), &set.y);
    for (const Stretch& stretch : stretches) {
        StretchCurves curves(rows, stretch, &set);
        for (std::size_t row = stretch.begin; row < stretch.end; ++row) {
            Curve& curve = curves.curveOf(row);
            curve.x.push_back(x[row]);
            curve.y.push_back(y[row]);
        }
    }
    return set;
}
} // namespace dbapi
