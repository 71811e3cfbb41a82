#include "dbapi/db_columns.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

// Makes the calls for columns that python_calls.py makes from Python, and tells their times: each
// line of standard input is an order ("sorted", "stored", "none"), a limit (-1 for none), a number
// of calls, a database, a query and the keywords, separated by tabs; each line of standard output
// is the seconds of one call. A result is released after its time was taken.

namespace {
struct Task
{
    dbapi::ColumnOptions options;
    int calls = 0;
    std::string database;
    std::string query;
    std::vector<std::string> keywords;
};

Task task_of(const std::string& line)
{
    std::istringstream fields(line);
    const auto next = [&fields] {
        std::string field;
        std::getline(fields, field, '\t');
        return field;
    };
    using Order = dbapi::ColumnOptions::Order;
    Task task;
    const std::string order = next();
    task.options.order = order == "sorted"   ? Order::Sorted
                         : order == "stored" ? Order::Stored
                                             : Order::None;
    task.options.limit = std::stoll(next());
    task.calls = std::stoi(next());
    task.database = next();
    task.query = next();
    while (fields) {
        const std::string keyword = next();
        if (!keyword.empty()) {
            task.keywords.push_back(keyword);
        }
    }
    return task;
}

double seconds_of(const Task& task)
{
    std::chrono::duration<double> passed{};
    for (int call = 0; call < task.calls; ++call) {
        dbapi::ColumnTable table;
        std::string errors;
        const auto start = std::chrono::steady_clock::now();
        const bool isRead = dbapi::db_get_columns(
            task.database, task.keywords, &table, task.query, task.options, &errors);
        passed += std::chrono::steady_clock::now() - start;
        if (!isRead) {
            std::cerr << errors;
            std::exit(1);
        }
    }
    return passed.count() / task.calls;
}
} // namespace

int main()
{
    for (std::string line; std::getline(std::cin, line);) {
        std::cout << seconds_of(task_of(line)) << std::endl;
    }
}
