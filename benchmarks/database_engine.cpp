#include "benchmarks/database_engine.h"

#include <iostream>
#include <stdexcept>

namespace bench {
void DatabaseEngine::makeIfMissing(
    const std::string& name,
    const std::function<void(const DBIF_Connection& connection)>& fill)
{
    if (isComplete(name)) {
        return;
    }
    std::cerr << "making " << name << '\n';
    const dbif::ConnectionParameters place = makeEmpty(name);
    {
        const DBIF_Connection connection(
            place.driver.c_str(), place.host.c_str(), place.database.c_str(), place.user.c_str(),
            place.password.c_str(), place.port);
        if (!connection.isValid()) {
            throw std::runtime_error(connection.lastError().text().toStdString());
        }
        fill(connection);
    }
    complete(name);
}
} // namespace bench
