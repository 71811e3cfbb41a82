#pragma once

#include <QObject>
#include <QSharedPointer>

/// Announces every rewrite of the stored list of connections. The one instance of the process is
/// made on first use and lives until the process ends. No lock is held while a signal is on its
/// way, so a slot may read and change the list itself.
class dbConnectionNameListener : public QObject // NOLINT(readability-identifier-naming)
{
    Q_OBJECT

public:
    static QSharedPointer<dbConnectionNameListener> getInstance();

signals:
    /// Before anything is written.
    void preNotifyConnectionNamesChanged();
    /// After a successful write only.
    void connectionNamesListChanged();
    /// After the attempt to write; missing only where the file's directory could not be made.
    void postNotifyConnectionNamesChanged();

public slots:
    void sendPreNotifyConnectionNameListChange();
    void sendConnectionNameListChanged();
    void sendPostNotifyConnectionNameListChange();

private:
    explicit dbConnectionNameListener(QObject* parent = nullptr);
};
