#include "dbif/qt_application.h"

#include <QCoreApplication>

namespace dbif {
void make_application_if_missing()
{
    if (QCoreApplication::instance() == nullptr) {
        static int argumentCount = 1; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
        static char name[] = "dbapi"; // NOLINT
        static char* arguments[] = {name}; // NOLINT
        static QCoreApplication
            application( // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
                argumentCount, arguments);
    }
}
} // namespace dbif
