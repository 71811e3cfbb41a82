#include "dbui/record_fault.h"

#include "dbif/host/host_string.h"

#include <algorithm>
#include <utility>

namespace dbui {
std::string fault_of_record(const DbuiConnection& record)
{
    constexpr unsigned char kBlank = 0x20;
    constexpr unsigned char kDelete = 0x7f;
    const std::pair<const char*, std::string> fields[] = {
        {"name", record.get_connectionName()},   {"driver", record.get_dbDriverName()},
        {"host", record.get_hostname()},         {"port", record.get_port_as_string()},
        {"database", record.get_databaseName()}, {"user", record.get_databaseUsername()}};
    for (const auto& [field, text] : fields) {
        const bool hasControl = std::any_of(text.begin(), text.end(), [](char character) {
            const auto byte = static_cast<unsigned char>(character);
            return byte < kBlank || byte == kDelete;
        });
        if (hasControl || !dbif::is_utf8(text)) {
            return std::string("The ") + field + " of the connection " +
                   (hasControl ? "holds a control character, such as a line end"
                               : "is not UTF-8 text") +
                   ", so it cannot be stored.\n";
        }
    }
    return {};
}
} // namespace dbui
