#pragma once

#include "dbui/connection_listener.h"
#include "dbui/connections_file.h"

#include <string>
#include <utility>
#include <vector>

namespace test_support {
/// All fields of a record, on one line.
inline std::string line_of(const DbuiConnection& c)
{
    return c.get_connectionName() + "|" + c.get_dbDriverName() + "|" + c.get_hostname() + "|" +
           c.get_port_as_string() + "|" + c.get_databaseName() + "|" + c.get_databaseUsername() +
           "|" + c.get_databasePassword();
}

/// The stored connections, each with a semicolon behind it; "unreadable" when the file cannot be
/// read.
inline std::string stored_lines()
{
    std::vector<DbuiConnection> connections;
    std::string text;
    if (!dbui_get_connections_from_file(&connections, &text)) {
        return "unreadable";
    }
    for (const DbuiConnection& connection : connections) {
        text += line_of(connection) + ";";
    }
    return text;
}

/// Notes the listener's signals while it lives.
class SignalLog
{
public:
    SignalLog()
    {
        note(&dbConnectionNameListener::preNotifyConnectionNamesChanged, "pre ");
        note(&dbConnectionNameListener::connectionNamesListChanged, "changed ");
        note(&dbConnectionNameListener::postNotifyConnectionNamesChanged, "post ");
    }

    /// The signals since the last call, in order.
    std::string take() { return std::exchange(text_, std::string()); }

private:
    void note(void (dbConnectionNameListener::*signal)(), const char* word)
    {
        const auto listener = dbConnectionNameListener::getInstance();
        QObject::connect(listener.data(), signal, &context_, [this, word] { text_ += word; });
    }

    QObject context_;
    std::string text_;
};
} // namespace test_support
