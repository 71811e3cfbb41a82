#pragma once

#include "dbui/connection_record.h"

#include <QObject>
#include <QSharedPointer>

#include <string>

namespace connection_manager {
/// How the opening of a connection went.
struct Opening
{
    bool opens = false;
    bool lacksDatabase = false; ///< the server does not know the database
    std::string error;          ///< why it does not open
};

/// Opens a connection, once, in the thread of the library, so that windows stay alive meanwhile.
class OpeningRun : public QObject
{
    Q_OBJECT

public:
    enum class MissingDatabase { Report, Create };

    /// A run that waits for `start`, so that nobody misses the end.
    static QSharedPointer<OpeningRun> make();

    /// Begins. The run lives until it is finished, whether or not anybody keeps it.
    static void start(
        const QSharedPointer<OpeningRun>& run,
        const DbuiConnection& record,
        MissingDatabase missing);

signals:
    /// Arrives in the thread of the receiver.
    void finished(const connection_manager::Opening& opening);

private:
    OpeningRun() = default;
};
} // namespace connection_manager

Q_DECLARE_METATYPE(connection_manager::Opening)
