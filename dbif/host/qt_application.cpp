#include "dbif/host/qt_application.h"

#include <QCoreApplication>

namespace dbif {
void make_application_if_missing()
{
    if (QCoreApplication::instance() == nullptr) {
        static int argumentCount = 1;
        static char name[] = "dbapi";
        static char* arguments[] = {name};
        // Never destroyed: the thread that made it may have ended by then, and Qt would reach for
        // it.
        static const auto* const application = new QCoreApplication(argumentCount, arguments);
        Q_UNUSED(application)
    }
}
} // namespace dbif
