#include "tools/connection_manager/opening_run.h"

#include "dbui/connection_check.h"
#include "dbui/mysql_database.h"

#include "tools/connection_manager/library_thread.h"

namespace connection_manager {
QSharedPointer<OpeningRun> OpeningRun::make()
{
    qRegisterMetaType<Opening>();
    return {new OpeningRun, &QObject::deleteLater};
}

void OpeningRun::start(
    const QSharedPointer<OpeningRun>& run,
    const DbuiConnection& record,
    MissingDatabase missing)
{
    run_in_library_thread([run, record, missing] {
        Opening opening;
        if (missing == MissingDatabase::Create) {
            opening.opens = dbui_create_mysql_database_for_connection(record, &opening.error);
        } else {
            opening.opens = dbui_test_connection(record, false, &opening.error);
            opening.lacksDatabase =
                !opening.opens && dbui_is_connection_invalid_due_to_mysql_database_unknown(record);
        }
        emit run->finished(opening);
    });
}
} // namespace connection_manager
