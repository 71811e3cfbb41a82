#pragma once

#include <QFileDevice>
#include <QtGlobal>

#include <memory>
#include <string>
#include <string_view>

namespace dbapi::tool {
/// Where a command writes its data: standard output, or a file that is replaced only once `finish`
/// was called. A pipe or device is no file to be replaced and takes the data as they come. Collects
/// what is written, so that a million rows are not a million writes.
class OutputStream
{
    Q_DISABLE_COPY_MOVE(OutputStream)

public:
    /// To that file, or to standard output when the name is empty. Throws `CommandFailure`, as all
    /// below do, when it cannot be written.
    explicit OutputStream(std::string file = {});
    ~OutputStream() = default;

    OutputStream& operator<<(std::string_view text);
    void finish();

private:
    [[noreturn]] void throwFault() const;
    void write();

    std::string name_;
    std::unique_ptr<QFileDevice> file_;
    std::string pending_;
};
} // namespace dbapi::tool
