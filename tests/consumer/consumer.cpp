#include <dbapi/dbapi.h>
#include <iostream>
#include <set>
#include <string>
#include <thread>

// Makes a connection to a new SQLite file, lists it and asks the empty database a question.
int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    std::string errors;
    bool isCreated = false;
    // The library's first call may be made in a thread that has ended when the program does.
    std::thread([&] {
        isCreated = dbapi::db_create_sqlite_connection("consumer", argv[1], &errors);
    }).join();
    if (!isCreated) {
        std::cerr << errors;
        return 1;
    }
    std::set<std::string> names;
    dbapi::db_get_connections(&names);
    if (names != std::set<std::string>{"consumer"})
        return 1;
    std::set<int> ids;
    if (!dbapi::db_get_device_ids_from_query("consumer", &ids, "", &errors)) {
        std::cerr << errors;
        return 1;
    }
    return ids.empty() && dbapi::db_remove_connection("consumer", &errors) ? 0 : 1;
}
