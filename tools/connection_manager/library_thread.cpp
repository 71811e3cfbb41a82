#include "tools/connection_manager/library_thread.h"

#include <QCoreApplication>
#include <QThreadPool>

namespace connection_manager {
namespace {
class LibraryThread : public QThreadPool
{
public:
    LibraryThread()
    {
        setMaxThreadCount(1); // the library is made for one thread
        // While there still is the application, which Qt's drivers need.
        qAddPostRoutine([] { instance().waitForDone(); });
    }

    static LibraryThread& instance()
    {
        static LibraryThread thread;
        return thread;
    }
};
} // namespace

void run_in_library_thread(const std::function<void()>& work)
{
    LibraryThread::instance().start(work);
}
} // namespace connection_manager
