#include "dbui/connection_record.h"

#include "dbif/host/host_string.h"

#include <optional>

namespace {
std::optional<int> port_number(const std::string& text)
{
    bool isNumber = false;
    const int number = dbif::to_qt(text).toInt(&isNumber, 10);
    return isNumber ? std::optional<int>(number) : std::nullopt;
}
} // namespace

// NOLINTBEGIN(modernize-pass-by-value): a published signature
DbuiConnection::DbuiConnection(
    const std::string& connectionName,
    const std::string& dbDriverName,
    const std::string& hostname,
    const std::string& port,
    const std::string& databaseName,
    const std::string& databaseUsername,
    const std::string& databasePassword)
    : connectionName_(connectionName),
      dbDriverName_(dbDriverName),
      hostname_(hostname),
      port_(port),
      databaseName_(databaseName),
      databaseUsername_(databaseUsername),
      databasePassword_(databasePassword)
{}

// NOLINTEND(modernize-pass-by-value)

void DbuiConnection::clear()
{
    connectionName_.clear();
    dbDriverName_ = "QSQLITE";
    hostname_.clear();
    port_.clear();
    databaseName_.clear();
    databaseUsername_.clear();
    databasePassword_.clear();
}

int DbuiConnection::get_port() const
{
    return port_number(port_).value_or(-1);
}

bool DbuiConnection::port_is_a_number() const
{
    return port_number(port_).has_value();
}

bool operator==(const DbuiConnection& a, const DbuiConnection& b)
{
    return a.connectionName_ == b.connectionName_ && a.dbDriverName_ == b.dbDriverName_ &&
           a.hostname_ == b.hostname_ && a.get_port() == b.get_port() &&
           a.databaseName_ == b.databaseName_ && a.databaseUsername_ == b.databaseUsername_ &&
           a.databasePassword_ == b.databasePassword_;
}
