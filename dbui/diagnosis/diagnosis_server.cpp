#include "dbui/diagnosis/diagnosis_server.h"

#include "dbif/host/host_string.h"
#include "dbui/connection_open.h"
#include "dbui/diagnosis/diagnosis_content.h"
#include "dbui/diagnosis/network_probe.h"

#include <QVariant>

#include <array>

namespace dbui {
namespace {
using Layer = DiagnosisStep::Layer;

constexpr std::array kPlan{Layer::Record,  Layer::HostName,   Layer::Port,     Layer::Login,
                           Layer::Server,  Layer::Encryption, Layer::Database, Layer::Schema,
                           Layer::Reading, Layer::Writing};

constexpr int kLargestPort = 65535;
constexpr std::chrono::seconds kLookUpLimit(10);
constexpr std::chrono::seconds kProbeLimit(2);

/// Numbers of the client's and the server's errors.
enum ErrorNumber {
    kTooManyConnections = 1040,
    kDatabaseDenied = 1044,
    kAccessDenied = 1045,
    kUnknownDatabase = 1049,
    kDuplicateColumn = 1060,
    kHostBlocked = 1129,
    kHostNotAllowed = 1130,
    kAccountDenied = 1698,
    kNoLocalServer = 2002,
    kNoServer = 2003,
    kUnknownHost = 2005,
    kServerGone = 2006,
    kBadVersion = 2007,
    kBadGreeting = 2012,
    kServerLost = 2013,
    kEncryptionFault = 2026
};

/// What a server's diagnosis knows of the way there.
struct Way
{
    std::string host;
    int port = kStandardPort;
    bool isLocal = false; ///< through the machine's own socket file, without host and port
    std::vector<std::string> addresses;
};

std::string number_of(int port)
{
    return "port " + std::to_string(port);
}

void diagnose_record(const DbuiConnection& record, Way* way, DiagnosisReport* report)
{
    const std::string text = record.get_port_as_string();
    const std::string target = "the database \"" + record.get_databaseName() +
                               "\" of a MySQL server, as the user \"" +
                               record.get_databaseUsername() + "\"";
    if (record.get_databaseName().empty()) {
        report->fail(Layer::Record, "the connection names no database", "Name the database.");
    } else if (!text.empty() && !record.port_is_a_number()) {
        report->warn(
            Layer::Record, target + "; the port \"" + text + "\" is no number, so 3306 is used",
            "Correct the port, or leave it empty.");
    } else if (record.get_port() > kLargestPort) {
        report->fail(
            Layer::Record, "there is no port " + text, "Ports are numbers from 1 to 65535.");
    } else {
        way->port = record.get_port() > 0 ? record.get_port() : kStandardPort;
        report->ok(Layer::Record, target);
    }
}

void diagnose_host(const DbuiConnection& record, Way* way, DiagnosisReport* report)
{
    way->host = record.get_hostname();
    way->isLocal = way->host.empty() || way->host == "localhost";
    if (way->isLocal) {
        report->ok(Layer::HostName, "this machine, through the server's socket file");
        return;
    }
    const HostLookup lookup = look_up_host(way->host, kLookUpLimit);
    if (lookup.state != HostLookup::State::Found) {
        const bool isUnknown = lookup.state == HostLookup::State::Unknown;
        report->fail(
            Layer::HostName,
            "\"" + way->host +
                "\": " + (isUnknown ? lookup.fault : "the name service does not answer"),
            isUnknown ? "Check the spelling of the host name, or use the server's address."
                      : "Check the network, or use the server's address.");
        return;
    }
    way->addresses = lookup.addresses;
    std::string text;
    for (const std::string& address : lookup.addresses) {
        text += (text.empty() ? "" : ", ") + address;
    }
    report->ok(Layer::HostName, text == way->host ? text : "\"" + way->host + "\" is " + text);
}

/// Opens the server, or one of its databases.
DBIF_Connection open(const DbuiConnection& record, const Way& way, const std::string& database)
{
    return {record.get_dbDriverName().c_str(),
            record.get_hostname().c_str(),
            database.c_str(),
            record.get_databaseUsername().c_str(),
            record.get_databasePassword().c_str(),
            way.port};
}

/// Tells why nobody answered: the client's own words say little.
void report_port_fault(const Way& way, const std::string& words, DiagnosisReport* report)
{
    if (way.isLocal) {
        report->fail(
            Layer::Port, words,
            "Start the server, or name the host 127.0.0.1 to reach it through its port: "
            "\"localhost\" and no host stand for the socket file.");
        return;
    }
    const std::string port = number_of(way.port);
    switch (try_port(way.addresses, way.port, kProbeLimit)) {
    case PortState::Refused:
        report->fail(
            Layer::Port, "nothing listens at " + port,
            "Check that the server runs, that this is its port, and that it accepts connections "
            "from other machines (its setting bind-address).");
        break;
    case PortState::Silent:
        report->fail(
            Layer::Port, port + " does not answer",
            "A firewall may be in the way, or the machine is down. Ask for access to " + port +
                " of \"" + way.host + "\".");
        break;
    case PortState::Unreachable:
        report->fail(
            Layer::Port, "there is no way through the network to " + port,
            "Check the network: a cable, a VPN, the host's address.");
        break;
    case PortState::Open:
        report->fail(
            Layer::Port,
            port + " takes connections, but does not answer like a MySQL server: " + words,
            "Check the port: another program may listen there. If it is the server's, see whether "
            "the server is overloaded.");
    }
}

std::string login_advice(int error, const DbuiConnection& record)
{
    switch (error) {
    case kAccessDenied:
    case kAccountDenied:
        return "Check the user and the password. The account must also be allowed to come from "
               "this machine, and must not require TLS.";
    case kTooManyConnections:
        return "The server has no room for one more connection. Try again later, or ask its "
               "administrator to raise max_connections.";
    case kHostBlocked:
        return "Ask the server's administrator for FLUSH HOSTS.";
    case kHostNotAllowed:
        return "Ask the server's administrator for an account \"" + record.get_databaseUsername() +
               "\" that may come from this machine.";
    case kEncryptionFault:
        return "Server and client do not agree on TLS. Ask the server's administrator which "
               "certificates it uses.";
    default:
        return "Ask the server's administrator what these words mean.";
    }
}

bool is_about_the_way(int error)
{
    switch (error) {
    case kNoLocalServer:
    case kNoServer:
    case kUnknownHost:
    case kServerGone:
    case kBadVersion:
    case kBadGreeting:
    case kServerLost:
        return true;
    default:
        return false;
    }
}

void diagnose_login(
    const DBIF_Connection& server,
    const DbuiConnection& record,
    const Way& way,
    DiagnosisReport* report)
{
    const QSqlError error = server.lastError();
    const int number = error.nativeErrorCode().toInt();
    if (!server.isValid() && is_about_the_way(number)) {
        report_port_fault(way, line_of(error), report);
        return;
    }
    report->ok(
        Layer::Port, way.isLocal ? "the socket file answers" : number_of(way.port) + " answers");
    if (server.isValid()) {
        report->ok(Layer::Login, "the server accepts user and password");
    } else {
        report->fail(Layer::Login, line_of(error), login_advice(number, record));
    }
}

/// The value in column `column` of the first row; empty when the statement fails or yields none.
std::string value_of(DBIF_Connection& connection, const QString& sql, int column = 0)
{
    try {
        QSqlQuery query = connection.query(sql, 0, __FILE__, __LINE__);
        return query.next() ? dbif::to_utf8(query.value(column).toString()) : std::string();
    } catch (const DBIF_Exception&) {
        return {};
    }
}

void diagnose_engine(DBIF_Connection& server, DiagnosisReport* report)
{
    const std::string version = server.session().version();
    const std::string comment = value_of(server, QStringLiteral("SELECT @@version_comment"));
    const std::size_t family = version.find("-MariaDB");
    report->ok(
        Layer::Server, (family == std::string::npos ? "MySQL " + version
                                                    : "MariaDB " + version.substr(0, family)) +
                           (comment.empty() ? "" : " (" + comment + ")"));
}

void diagnose_encryption(DBIF_Connection& server, const Way& way, DiagnosisReport* report)
{
    const auto status = [&server](const char* name) {
        return value_of(
            server, QStringLiteral("SHOW SESSION STATUS LIKE '%1'").arg(QString::fromLatin1(name)),
            1);
    };
    const std::string cipher = status("Ssl_cipher");
    const bool staysHere = way.isLocal || way.host == "127.0.0.1" || way.host == "::1";
    if (!cipher.empty()) {
        report->ok(Layer::Encryption, status("Ssl_version") + ", " + cipher);
    } else if (staysHere) {
        report->ok(Layer::Encryption, "none; nothing leaves this machine");
    } else {
        report->warn(
            Layer::Encryption, "none: passwords are protected, but the data can be read on the way",
            "The client's library does not ask for TLS. Where others share the network, go through "
            "an SSH tunnel or a VPN.");
    }
}

std::string quoted_name(const std::string& name)
{
    QString text = dbif::to_qt(name);
    return "`" + dbif::to_utf8(text.replace(QLatin1Char('`'), QLatin1String("``"))) + "`";
}

RightsAdvice rights_advice(DBIF_Connection& server, const std::string& database)
{
    // "user@host", as the server's administrator has to write it.
    const std::string account = value_of(server, QStringLiteral("SELECT CURRENT_USER()"));
    const std::size_t at = account.rfind('@');
    const std::string grantee = at == std::string::npos ? std::string("the account")
                                                        : "'" + account.substr(0, at) + "'@'" +
                                                              account.substr(at + 1) + "'";
    const std::string target = " ON " + quoted_name(database) + ".* TO " + grantee;
    const std::string start = "Ask the server's administrator for: GRANT SELECT";
    return {
        start + ", CREATE TEMPORARY TABLES" + target,
        start + ", INSERT, UPDATE, CREATE, INDEX, CREATE VIEW, CREATE TEMPORARY TABLES" + target};
}

void report_database_fault(
    const QSqlError& error,
    const RightsAdvice& advice,
    DiagnosisReport* report)
{
    switch (error.nativeErrorCode().toInt()) {
    case kUnknownDatabase:
        report->fail(
            Layer::Database, line_of(error),
            "Correct the name, or create the database: adding a connection to it does, where the "
            "account may. " +
                advice.toWrite);
        break;
    case kDatabaseDenied:
    case kAccessDenied:
        report->fail(Layer::Database, line_of(error), advice.toWrite);
        break;
    default:
        report->fail(Layer::Database, line_of(error), "Check the name of the database.");
    }
}

/// A statement that a server refuses in any case: for want of rights, or because a column is there
/// twice. So it shows the right to make tables, and can never make one.
QSqlError error_of_creating(DBIF_Connection& connection)
{
    try {
        connection.execute(
            "CREATE TABLE dbapi_connection_check (id INT, id INT)", __FILE__, __LINE__);
    } catch (const DBIF_Exception& exception) {
        if (exception.error().nativeErrorCode().toInt() != kDuplicateColumn) {
            return exception.error();
        }
    }
    return {};
}

void diagnose_database(
    DBIF_Connection& server,
    const DbuiConnection& record,
    const Way& way,
    DiagnosisReport* report)
{
    const RightsAdvice advice = rights_advice(server, record.get_databaseName());
    DBIF_Connection connection = open(record, way, record.get_databaseName());
    if (!connection.isValid()) {
        report_database_fault(connection.lastError(), advice, report);
        return;
    }
    report->ok(Layer::Database, "\"" + record.get_databaseName() + "\" opens");
    // Whoever holds a lock, an import for example, keeps the check waiting no longer than a busy
    // file does.
    for (const char* limit : {"lock_wait_timeout", "innodb_lock_wait_timeout"}) {
        value_of(connection, QStringLiteral("SET SESSION %1 = 5").arg(QLatin1String(limit)));
    }
    diagnose_content(
        connection, advice, [&connection] { return error_of_creating(connection); }, report);
}
} // namespace

std::vector<DiagnosisStep>
diagnose_server(const DbuiConnection& record, const DiagnosisListener& listener)
{
    DiagnosisReport report(kPlan, listener);
    Way way;
    diagnose_record(record, &way, &report);
    if (report.goesOn()) {
        diagnose_host(record, &way, &report);
    }
    if (!report.goesOn()) {
        return report.finish();
    }
    DBIF_Connection server = open(record, way, {});
    diagnose_login(server, record, way, &report);
    if (report.goesOn()) {
        diagnose_engine(server, &report);
        diagnose_encryption(server, way, &report);
    }
    if (report.goesOn()) {
        diagnose_database(server, record, way, &report);
    }
    return report.finish();
}
} // namespace dbui
