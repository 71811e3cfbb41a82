#include "tests/support/record_model.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace test_support {
namespace {
using enum RecordTable;

constexpr std::array kDownwards{CatalogEntry,         Routine, Die, Device, Measurement,
                                MeasurementCondition, Setup};

/// Tells whether records of `from` belong to a record of `table`, or are some.
bool reaches(RecordTable from, RecordTable table)
{
    static const std::multimap<RecordTable, RecordTable> kParents{
        {Setup, MeasurementCondition}, {MeasurementCondition, Measurement},
        {Measurement, Device},         {Measurement, CatalogEntry},
        {Measurement, Routine},        {Device, Die}};
    const auto [first, last] = kParents.equal_range(from);
    return from == table || std::any_of(first, last, [table](const auto& link) {
               return reaches(link.second, table);
           });
}

bool counts(RecordTable table, const ModelRecord& record, bool latestOnly)
{
    if (!latestOnly || !reaches(table, Measurement)) {
        return true;
    }
    return table == Setup ? record.isLatest : record.family.at(Measurement)->isLatest;
}

bool holds_somewhere(const ModelQuery& query, const ModelRecord& lowest)
{
    bool holds = query.condition({&lowest, std::nullopt});
    for (std::size_t point = 0; point < lowest.points && !holds; ++point) {
        holds = query.condition({&lowest, point});
    }
    return holds;
}

int order_of(const ModelCell& a, const ModelCell& b)
{
    const auto key = [](const ModelCell& cell) {
        const ModelValue value = cell.value_or(ModelValue());
        return std::make_tuple(value.number.real(), value.number.imag(), value.text);
    };
    return key(a) < key(b) ? -1 : static_cast<int>(key(b) < key(a));
}
} // namespace

bool ModelColumn::isAt(const ModelPlace& place) const
{
    return place.lowest->family.contains(table) && (!isOnPoints() || place.point.has_value());
}

ModelCell ModelColumn::cell(const ModelPlace& place) const
{
    if (!isAt(place)) {
        return std::nullopt;
    }
    const ModelRecord& record = *place.lowest->family.at(table);
    if (isOnPoints()) {
        const auto sweep = record.sweeps.find(name);
        return sweep == record.sweeps.end() ? std::nullopt : sweep->second.at(*place.point);
    }
    const auto value = record.values.find(name);
    return value == record.values.end() ? std::nullopt : ModelCell(value->second);
}

RecordModel::RecordModel()
{
    for (const RecordTable table : kDownwards) {
        records_[table];
    }
}

ModelRecord&
RecordModel::add(RecordTable table, int id, const std::vector<const ModelRecord*>& parents)
{
    ModelRecord& record = records_[table].emplace_back();
    record.id = id;
    record.values["id"] = {std::to_string(id), static_cast<double>(id)};
    for (const ModelRecord* parent : parents) {
        if (parent != nullptr) {
            record.family.insert(parent->family.begin(), parent->family.end());
        }
    }
    record.family[table] = &record;
    return record;
}

void RecordModel::supersede()
{
    std::map<const ModelRecord*, std::vector<const ModelRecord*>> setupsOf;
    for (const ModelRecord& later : records_[Setup]) {
        setupsOf[later.family.at(Measurement)].push_back(&later);
        for (ModelRecord& older : records_[Setup]) {
            if (later.id > knownSetups_ && older.id <= knownSetups_ &&
                older.identity == later.identity) {
                older.isLatest = false;
            }
        }
    }
    knownSetups_ = static_cast<int>(records_[Setup].size());
    for (ModelRecord& older : records_[Measurement]) {
        const std::vector<const ModelRecord*>& own = setupsOf[&older];
        older.isLatest = own.empty() || std::any_of(own.begin(), own.end(), [](const auto* setup) {
                             return setup->isLatest;
                         });
        for (const ModelRecord& later : records_[Measurement]) {
            if (own.empty() && later.id > older.id && setupsOf[&later].empty() &&
                later.identity == older.identity) {
                older.isLatest = false;
            }
        }
    }
}

std::vector<int> RecordModel::ids(RecordTable table, const ModelQuery& query) const
{
    std::vector<int> ids;
    for (const auto& [lowestTable, records] : records_) {
        for (const ModelRecord& lowest : records) {
            const auto base = lowest.family.find(table);
            if (base != lowest.family.end() && counts(lowestTable, lowest, query.latestOnly) &&
                counts(table, *base->second, query.latestOnly) && holds_somewhere(query, lowest)) {
                ids.push_back(base->second->id);
            }
        }
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

/// Where the rows stand: at points when a key of setups is asked for, else at records of the base.
std::vector<ModelPlace> RecordModel::places(const ModelQuery& query) const
{
    std::vector<ModelPlace> places;
    const auto any = [&query](const auto& test) {
        return std::any_of(query.columns.begin(), query.columns.end(), test);
    };
    if (any([](const ModelColumn& column) { return column.isOnPoints(); })) {
        for (const ModelRecord& setup : records_.at(Setup)) {
            const bool isRead =
                counts(Setup, setup, query.latestOnly) &&
                any([&](const ModelColumn& column) { return setup.sweeps.contains(column.name); });
            for (std::size_t point = 0; point < setup.points && isRead; ++point) {
                if (query.condition({&setup, point})) {
                    places.push_back({&setup, point});
                }
            }
        }
        return places;
    }
    const RecordTable base = *std::find_if(kDownwards.begin(), kDownwards.end(), [&](auto table) {
        return !any([table](const ModelColumn& column) { return !reaches(table, column.table); });
    });
    const std::vector<int> selected = ids(base, query);
    for (const ModelRecord& record : records_.at(base)) {
        if (std::binary_search(selected.begin(), selected.end(), record.id)) {
            places.push_back({&record, std::nullopt});
        }
    }
    return places;
}

ModelRows RecordModel::rows(const ModelQuery& query) const
{
    std::vector<std::vector<ModelCell>> rows;
    for (const ModelPlace& place : places(query)) {
        std::vector<ModelCell>& cells = rows.emplace_back();
        for (const ModelColumn& column : query.columns) {
            cells.push_back(column.cell(place));
        }
    }
    std::erase_if(rows, [](const auto& cells) {
        return std::none_of(
            cells.begin(), cells.end(), [](const auto& c) { return c.has_value(); });
    });
    std::vector<ModelQuery::Order> orders = query.orders;
    for (std::size_t column = 0; column < query.columns.size(); ++column) {
        orders.push_back({column, true});
    }
    std::sort(rows.begin(), rows.end(), [&orders](const auto& a, const auto& b) {
        for (const auto& [column, isAscending] : orders) {
            if (const int order = order_of(a[column], b[column]); order != 0) {
                return (order < 0) == isAscending;
            }
        }
        return false;
    });
    ModelRows texts;
    for (const std::vector<ModelCell>& cells : rows) {
        std::vector<std::string>& row = texts.emplace_back();
        for (const ModelCell& cell : cells) {
            row.push_back(cell ? cell->text : "");
        }
    }
    if (query.isDistinct) {
        texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    }
    const std::size_t most = query.limit < 0 ? texts.size() : static_cast<std::size_t>(query.limit);
    texts.resize(std::min(texts.size(), most));
    return texts;
}
} // namespace test_support
