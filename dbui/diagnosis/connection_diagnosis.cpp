#include "dbui/diagnosis/connection_diagnosis.h"

#include "dbif/engine/sql_dialect.h"
#include "dbif/host/host_string.h"
#include "dbif/host/qt_application.h"
#include "dbui/diagnosis/diagnosis_file.h"
#include "dbui/diagnosis/diagnosis_report.h"
#include "dbui/diagnosis/diagnosis_server.h"

#include <QSqlDatabase>

#include <array>

namespace dbui {
namespace {
/// A driver that is not known or not installed ends the diagnosis at the record.
std::vector<DiagnosisStep> diagnose_driver(
    const std::string& driver,
    const std::string& advice,
    const DiagnosisListener& listener)
{
    constexpr std::array kPlan{DiagnosisStep::Layer::Record};
    DiagnosisReport report(kPlan, listener);
    report.fail(kPlan[0], "the database driver \"" + driver + "\" is not there", advice);
    return report.finish();
}
} // namespace

std::vector<DiagnosisStep>
diagnose_connection(const DbuiConnection& record, const DiagnosisListener& listener)
{
    const std::string driver = record.get_dbDriverName();
    const dbif::SqlDialect* dialect = dbif::dialect_for(driver);
    if (dialect == nullptr) {
        return diagnose_driver(
            driver, "The drivers are QSQLITE, for a file, and QMYSQL, for a server.", listener);
    }
    dbif::make_application_if_missing(); // before Qt looks for drivers
    if (!QSqlDatabase::isDriverAvailable(dbif::to_qt(driver))) {
        return diagnose_driver(
            driver, "Install the plug-in of Qt for " + dialect->name() + ".", listener);
    }
    return dialect->isServer() ? diagnose_server(record, listener)
                               : diagnose_file(record, listener);
}
} // namespace dbui
