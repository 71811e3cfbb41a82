#include "dbif/host/qt_application.h"

#include <QCoreApplication>

namespace dbif {
void make_application_if_missing()
{
    if (QCoreApplication::instance() == nullptr) {
        static int argumentCount = 1;
        static char name[] = "dbapi";
        static char* arguments[] = {name};
        static QCoreApplication application(argumentCount, arguments);
    }
}
} // namespace dbif
