#include "tests/support/mariadb_server.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <mysql.h>
#include <stdexcept>
#include <unistd.h>

namespace {
std::string quoted(const std::string& text)
{
    return " '" + text + "'";
}

int run_fixture(
    const std::string& command,
    const std::string& folder,
    const std::vector<std::string>& further = {})
{
    std::string line =
        quoted(MARIADB_FIXTURE) + " " + command + quoted(folder) + " " + std::to_string(getpid());
    for (const std::string& argument : further) {
        line += quoted(argument);
    }
    return std::system(line.c_str());
}

std::string start_private_server(const std::vector<std::string>& further = {})
{
    std::string folder = (std::filesystem::temp_directory_path() / "dbapi_mariadb_XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr || run_fixture("start", folder, further) != 0)
        throw std::runtime_error("could not start a private MariaDB server in " + folder);
    return folder;
}

std::filesystem::path state_file(const std::string& folder, int owner)
{
    return std::filesystem::path(folder) / std::to_string(owner) / "server";
}
} // namespace

MariaDbServer& MariaDbServer::instance()
{
    static MariaDbServer server;
    return server;
}

MariaDbServer::MariaDbServer()
{
    // ctest is the parent of a test that it runs, and the server's owner.
    if (std::filesystem::exists(state_file(MARIADB_FOLDER, getppid()))) {
        readState(MARIADB_FOLDER, getppid());
    } else {
        privateFolder_ = start_private_server();
        readState(privateFolder_, getpid());
    }
}

MariaDbServer::MariaDbServer(const std::string& data, const std::vector<std::string>& options)
{
    std::vector<std::string> further{data};
    further.insert(further.end(), options.begin(), options.end());
    privateFolder_ = start_private_server(further);
    readState(privateFolder_, getpid());
}

void MariaDbServer::readState(const std::string& folder, int owner)
{
    const std::filesystem::path path = state_file(folder, owner);
    std::ifstream file(path);
    std::string port;
    if (!std::getline(file, port) || !std::getline(file, user_) || !std::getline(file, password_))
        throw std::runtime_error("cannot read " + path.string());
    port_ = std::stoi(port);
}

MariaDbServer::~MariaDbServer()
{
    if (privateFolder_.empty())
        return;
    run_fixture("stop", privateFolder_);
    std::error_code ignored;
    std::filesystem::remove_all(privateFolder_, ignored);
}

void MariaDbServer::execute(const std::string& sql) const
{
    const std::unique_ptr<MYSQL, decltype(&mysql_close)> connection(
        mysql_init(nullptr), &mysql_close);
    mysql_options(connection.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
    const bool done = mysql_real_connect(
                          connection.get(), host().c_str(), "root", password_.c_str(), nullptr,
                          static_cast<unsigned>(port_), nullptr, 0) != nullptr &&
                      mysql_real_query(connection.get(), sql.data(), sql.size()) == 0;
    if (!done)
        throw std::runtime_error(mysql_error(connection.get()) + std::string(" in: ") + sql);
}

MariaDbDatabase::MariaDbDatabase(Initially initially)
{
    static int count = 0;
    name_ = "dbapi_test_" + std::to_string(getpid()) + "_" + std::to_string(++count);
    if (initially == Initially::Empty)
        MariaDbServer::instance().execute("CREATE OR REPLACE DATABASE " + name_);
}

MariaDbDatabase::~MariaDbDatabase()
{
    try {
        MariaDbServer::instance().execute("DROP DATABASE IF EXISTS " + name_);
    } catch (const std::runtime_error& error) {
        std::cerr << error.what() << '\n';
    }
}
