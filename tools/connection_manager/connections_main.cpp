#include "tools/connection_manager/connection_manager.h"
#include "tools/connection_manager/manager_translations.h"

#include <QApplication>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("dbapi-connections"));
    connection_manager::install_translations(QLocale());
    connection_manager::ConnectionManager manager;
    manager.show();
    return QApplication::exec();
}
