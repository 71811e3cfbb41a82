#pragma once

#include <QObject>
#include <QSharedPointer>

/// Announces every rewrite of the stored list of connections by this process. The one instance is
/// made on first use and lives until the process ends. Signals go out in the thread that rewrites
/// the list. No lock is held meanwhile, so a slot may read and change the list itself.
class dbConnectionNameListener : public QObject // NOLINT(readability-identifier-naming)
{
    Q_OBJECT

public:
    /// The one instance; never null.
    static QSharedPointer<dbConnectionNameListener> getInstance();

signals:
    /// Sent before anything is written.
    void preNotifyConnectionNamesChanged();
    /// Sent after a successful write only.
    void connectionNamesListChanged();
    /// Sent last, whatever became of the write. It is missing only where the file's directory could
    /// not be made.
    void postNotifyConnectionNamesChanged();

public slots:
    /// Send the three signals above, in their order. Called by whoever rewrites the list.
    void sendPreNotifyConnectionNameListChange();
    void sendConnectionNameListChanged();
    void sendPostNotifyConnectionNameListChange();

private:
    explicit dbConnectionNameListener(QObject* parent = nullptr);
};
