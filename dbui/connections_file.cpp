#include "dbui/connections_file.h"

#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbui/connection_listener.h"
#include "dbui/connections_path.h"
#include "dbui/guarded_file.h"
#include "dbui/password_scramble.h"
#include "dbui/record_fault.h"
#include "dbui/xml_tags.h"

#include <tinyxml2.h>

#include <algorithm>
#include <set>

namespace {
constexpr const char* kRoot = "DB_Connections";
constexpr const char* kConnection = "DbConnection";

using Connections = std::vector<DbuiConnection>;
using dbui::FileContent;

std::string attribute(const tinyxml2::XMLElement& element, const char* name)
{
    const char* value = element.Attribute(name);
    return value == nullptr ? std::string() : std::string(value);
}

DbuiConnection read_element(const tinyxml2::XMLElement& element)
{
    DbuiConnection record(
        attribute(element, "ConnectionName"), attribute(element, "DbDriverName"),
        attribute(element, "Hostname"), attribute(element, "Port"),
        attribute(element, "DatabaseName"), attribute(element, "User"), "");
    record.setScrambledPassword(attribute(element, "Pwd"));
    return record;
}

/// False, with an empty list, when the bytes are no XML document, or none of a usual size.
bool read_document(const std::string& bytes, Connections* connections)
{
    tinyxml2::XMLDocument document;
    if (dbui::has_crowded_tag(bytes) ||
        document.Parse(bytes.data(), bytes.size()) != tinyxml2::XML_SUCCESS) {
        return false;
    }
    const tinyxml2::XMLElement* root = document.FirstChildElement(kRoot);
    const tinyxml2::XMLElement* element =
        root == nullptr ? nullptr : root->FirstChildElement(kConnection);
    std::set<std::string> names;
    for (; element != nullptr; element = element->NextSiblingElement()) {
        DbuiConnection connection = read_element(*element);
        const std::string name = connection.get_connectionName();
        // Records are equal only where their names are.
        const bool isNew =
            names.insert(name).second ||
            std::find(connections->begin(), connections->end(), connection) == connections->end();
        if (!name.empty() && isNew) {
            connections->push_back(std::move(connection));
        }
    }
    return true;
}

void set_unless_empty(tinyxml2::XMLElement* element, const char* name, const std::string& value)
{
    if (!value.empty()) {
        element->SetAttribute(name, value.c_str());
    }
}

void write_element(const DbuiConnection& connection, tinyxml2::XMLElement* element)
{
    std::string password;
    encode_pwd_to_hex_string(
        connection.get_databasePassword(), &password, connection.get_databaseUsername(),
        connection.get_connectionName(), connection.get_databaseName(), connection.get_hostname(),
        connection.get_port_as_string());

    element->SetAttribute("ConnectionName", connection.get_connectionName().c_str());
    element->SetAttribute("DbDriverName", connection.get_dbDriverName().c_str());
    set_unless_empty(element, "Hostname", connection.get_hostname());
    set_unless_empty(element, "Port", connection.get_port_as_string());
    element->SetAttribute("DatabaseName", connection.get_databaseName().c_str());
    set_unless_empty(element, "User", connection.get_databaseUsername());
    set_unless_empty(element, "Pwd", password);
}

std::string text_of(const tinyxml2::XMLDocument& document)
{
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    return printer.CStr();
}

void declare(tinyxml2::XMLDocument* document)
{
    document->InsertEndChild(document->NewDeclaration("xml version=\"1.0\""));
}

std::string empty_document()
{
    tinyxml2::XMLDocument document;
    declare(&document);
    return text_of(document);
}

std::string document_of(const Connections& connections)
{
    tinyxml2::XMLDocument document;
    declare(&document);
    tinyxml2::XMLElement* root = document.NewElement(kRoot);
    document.InsertEndChild(root);
    for (const DbuiConnection& connection : connections) {
        write_element(connection, root->InsertNewChildElement(kConnection));
    }
    return text_of(document);
}

/// The fault of a document that is too large to be read, as a sentence with a line end; empty for
/// any other.
std::string fault_of_size(const FileContent& content)
{
    if (content.state == FileContent::State::TooLarge) {
        return "It is larger than 4 MiB, so it is no list of connections.\n";
    }
    return dbui::has_crowded_tag(content.bytes)
               ? "An element in it has more than 64 attributes, so it is no list of connections.\n"
               : "";
}

std::string fault_of_new_records(const Connections& connections, const Connections& stored)
{
    for (const DbuiConnection& connection : connections) {
        const std::string fault = dbui::fault_of_record(connection);
        if (!fault.empty() && std::find(stored.begin(), stored.end(), connection) == stored.end()) {
            return fault;
        }
    }
    return {};
}

bool is_there(FileContent::State state)
{
    return state == FileContent::State::Read || state == FileContent::State::TooLarge;
}

/// Makes the file unless something stands at its path.
bool create_file(const std::string& path)
{
    const std::string target = dbui::follow_links(path);
    const dbui::FileLock lock(target);
    if (!lock.is_held()) {
        return false;
    }
    // Another process may have made it before the lock was ours.
    const FileContent::State state = dbui::read_whole_file(target).state;
    return is_there(state) || (state == FileContent::State::Missing &&
                               dbui::replace_file(target, empty_document(), target));
}

enum class Rewrite { Saved, Declined, Failed };

/// Changes the list in the file. `message` gets the text of a failure.
Rewrite
change_file(const std::string& path, const dbui::ConnectionsChange& change, std::string* message)
{
    *message = "Failed to save database connections storage file: \"" + path + "\"!\n";
    const std::string target = dbui::follow_links(path);
    const dbui::FileLock lock(target);
    const FileContent old = lock.is_held() ? dbui::read_whole_file(target) : FileContent();
    if (!lock.is_held() || old.state == FileContent::State::Unreadable ||
        old.state == FileContent::State::TooLarge) {
        *message += fault_of_size(old);
        return Rewrite::Failed;
    }
    dbui::StoredConnections stored;
    stored.isDamaged =
        old.state == FileContent::State::Read && !read_document(old.bytes, &stored.connections);
    const Connections before = stored.connections;
    if (!change(&stored)) {
        return Rewrite::Declined;
    }
    const std::string fault = fault_of_new_records(stored.connections, before);
    const std::string document = document_of(stored.connections);
    if (!fault.empty() || document.size() > dbui::kLargestFile) {
        *message = fault.empty() ? *message + "The list would need more than 4 MiB.\n" : fault;
        return Rewrite::Failed;
    }
    const bool saved =
        (!stored.isDamaged || dbui::replace_file(path + ".unreadable", old.bytes, target)) &&
        dbui::replace_file(target, document, target);
    return saved ? Rewrite::Saved : Rewrite::Failed;
}
} // namespace

bool dbui_create_connections_file_if_not_found(std::string* error)
{
    dbif::clear_error(error);
    const std::string path = dbui_connections_file();
    std::string message;
    if (!dbui_make_path_if_required(path, &message)) {
        dbif::deliver_error(error, message);
        return false;
    }
    if (is_there(dbui::read_whole_file(path).state) || create_file(path)) {
        return true;
    }
    dbif::deliver_error(
        error, "Failed to create database connections storage file: \"" + path + "\"!\n");
    return false;
}

bool dbui_get_connections_from_file(Connections* connections, std::string* error)
{
    dbif::clear_error(error);
    connections->clear();
    const std::string path = dbui_connections_file();
    const FileContent content = dbui::read_whole_file(path);
    if (content.state == FileContent::State::Read && read_document(content.bytes, connections)) {
        return true;
    }
    dbif::deliver_error(
        error, "Failed to open database connections storage file: \"" + path + "\"!\n" +
                   fault_of_size(content));
    return false;
}

bool dbui_save_connections_to_file(const Connections& connections, std::string* error)
{
    return dbui::rewrite_connections(
        [&connections](dbui::StoredConnections* stored) {
            stored->connections = connections;
            return true;
        },
        error);
}

namespace dbui {
bool rewrite_connections(const ConnectionsChange& change, std::string* error)
{
    dbif::clear_error(error);
    const QSharedPointer<dbConnectionNameListener> listener =
        dbConnectionNameListener::getInstance();
    listener->sendPreNotifyConnectionNameListChange();

    const std::string path = dbui_connections_file();
    std::string message;
    if (!dbui_make_path_if_required(path, &message)) {
        dbif::deliver_error(error, message);
        return false; // published behaviour: nothing follows the first signal here
    }

    // The signals go out while the lock is free, so that a slot can save and nobody waits for one.
    const Rewrite rewrite = change_file(path, change, &message);
    if (rewrite == Rewrite::Saved) {
        listener->sendConnectionNameListChanged();
    } else if (rewrite == Rewrite::Failed) {
        dbif::deliver_error(error, message);
    }
    listener->sendPostNotifyConnectionNameListChange();
    return rewrite == Rewrite::Saved;
}

std::string fault_of_saving()
{
    const std::string path = dbui_connections_file();
    std::string message;
    if (!dbui_make_path_if_required(path, &message)) {
        return dbif::trimmed(message);
    }
    return fault_of_replacing(follow_links(path));
}
} // namespace dbui
