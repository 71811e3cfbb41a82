#include "dbui/connection_record.h"

#include "dbif/host/host_string.h"
#include "dbui/password_scramble.h"

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

void DbuiConnection::setScrambledPassword(const std::string& text)
{
    databasePassword_.clear();
    scrambledPassword_ = text;
}

void DbuiConnection::clear()
{
    connectionName_.clear();
    dbDriverName_ = "QSQLITE";
    hostname_.clear();
    port_.clear();
    databaseName_.clear();
    databaseUsername_.clear();
    databasePassword_.clear();
    scrambledPassword_.clear();
}

std::string DbuiConnection::get_databasePassword() const
{
    if (scrambledPassword_.empty()) {
        return databasePassword_;
    }
    std::string password;
    decode_pwd_from_hex_string(
        scrambledPassword_, &password, databaseUsername_, connectionName_, databaseName_, hostname_,
        port_);
    return password;
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
    // The port's text is part of what a password is scrambled with.
    const auto hasSamePassword = [&a, &b] {
        return (a.scrambledPassword_ == b.scrambledPassword_ && a.port_ == b.port_ &&
                a.databasePassword_ == b.databasePassword_) ||
               a.get_databasePassword() == b.get_databasePassword();
    };
    return a.connectionName_ == b.connectionName_ && a.dbDriverName_ == b.dbDriverName_ &&
           a.hostname_ == b.hostname_ && a.get_port() == b.get_port() &&
           a.databaseName_ == b.databaseName_ && a.databaseUsername_ == b.databaseUsername_ &&
           hasSamePassword();
}
