// Reads the transfer curves of a database as columns of numbers, batch by batch, and tells for each
// device the largest current:
//
//     read_columns CONNECTION
//
// Built against an installed copy: find_package(dbapi), target_link_libraries(... dbapi::dbapi).

#include <algorithm>
#include <cmath>
#include <dbapi/db_columns.h>
#include <iostream>
#include <map>
#include <memory>
#include <string>

namespace {
/// The largest current of each device, as far as its batch shows it.
void note_largest(const dbapi::ColumnTable& batch, std::map<std::string, double>* largest)
{
    const dbapi::ValueColumn& device = batch.columns[0];
    const dbapi::ValueColumn& current = batch.columns[1];
    for (std::size_t row = 0; row < batch.rows; ++row) {
        if (current.hasValue(row)) {
            double& known = (*largest)[std::string(device.text(row))];
            known = std::max(known, std::abs(current.numbers[row]));
        }
    }
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "Usage: read_columns CONNECTION\n";
        return 2;
    }
    dbapi::ColumnOptions options;
    // Stored order needs no more memory for a thousand million points than for a thousand.
    options.order = dbapi::ColumnOptions::Order::Stored;
    constexpr std::size_t kBatchRows = 65536;
    std::unique_ptr<dbapi::ColumnReader> reader;
    std::string errors;
    if (!dbapi::db_open_column_reader(
            argv[1], {"$DEVNAME", "OUTD.ID"}, kBatchRows, &reader, "", options, &errors)) {
        std::cerr << errors;
        return 1;
    }
    std::map<std::string, double> largest;
    dbapi::ColumnTable batch;
    do {
        if (!reader->next(&batch, &errors)) {
            std::cerr << errors;
            return 1;
        }
        note_largest(batch, &largest);
    } while (batch.rows > 0);
    for (const auto& [device, current] : largest) {
        std::cout << device << ' ' << current << " A\n";
    }
    return 0;
}
