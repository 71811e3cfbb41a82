#include "dbui/connection_listener.h"

dbConnectionNameListener::dbConnectionNameListener(QObject* parent) : QObject(parent) {}

QSharedPointer<dbConnectionNameListener> dbConnectionNameListener::getInstance()
{
    static const QSharedPointer<dbConnectionNameListener> instance(new dbConnectionNameListener);
    return instance;
}

void dbConnectionNameListener::sendPreNotifyConnectionNameListChange()
{
    emit preNotifyConnectionNamesChanged();
}

void dbConnectionNameListener::sendConnectionNameListChanged()
{
    emit connectionNamesListChanged();
}

void dbConnectionNameListener::sendPostNotifyConnectionNameListChange()
{
    emit postNotifyConnectionNamesChanged();
}
