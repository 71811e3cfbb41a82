#pragma once

#include <QtGlobal>

#include <string>
#include <vector>

/// A MariaDB server on this machine.
class MariaDbServer
{
    Q_DISABLE_COPY_MOVE(MariaDbServer)

public:
    /// The server that the tests use: the one that ctest started for this run, or, when the test
    /// binary runs by itself, a private one that is started on first use and stopped at exit.
    /// Throws `std::runtime_error` when there is none to be had.
    static MariaDbServer& instance();

    /// Starts a private server with its data in the folder `data`, which is made when it is missing
    /// and stays; the server stops with this object. `options` are further ones of mariadbd. Throws
    /// `std::runtime_error` when it does not start.
    MariaDbServer(const std::string& data, const std::vector<std::string>& options);

    ~MariaDbServer();

    [[nodiscard]] std::string host() const { return "127.0.0.1"; }

    [[nodiscard]] int port() const { return port_; }

    /// An account that may create and use databases, and no more; its password has quotes, blanks,
    /// a backslash and letters outside ASCII.
    [[nodiscard]] const std::string& user() const { return user_; }

    [[nodiscard]] const std::string& password() const { return password_; }

    /// Runs one statement with all privileges. Throws `std::runtime_error` with the server's
    /// message.
    void execute(const std::string& sql) const;

private:
    MariaDbServer();

    void readState(const std::string& folder, int owner);

    std::string privateFolder_; // empty when ctest started the server
    int port_ = 0;
    std::string user_;
    std::string password_;
};

/// A database with a name of its own on the server, dropped with this object whoever created it.
class MariaDbDatabase
{
    Q_DISABLE_COPY_MOVE(MariaDbDatabase)

public:
    enum class Initially { Empty, Missing };

    explicit MariaDbDatabase(Initially initially = Initially::Empty);
    ~MariaDbDatabase();

    [[nodiscard]] const std::string& name() const { return name_; }

private:
    std::string name_;
};
