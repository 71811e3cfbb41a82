#include "tools/dbapi/output/output_stream.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"

#include "tools/dbapi/arguments/command_failure.h"

#include <QFile>
#include <QSaveFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

namespace dbapi::tool {
namespace {
constexpr std::size_t kBlockBytes = 1U << 16U;

[[noreturn]] void throw_unwritable(const std::string& what, const std::string& reason)
{
    throw CommandFailure(ExitCode::File, what + " cannot be written: " + reason);
}
} // namespace

OutputStream::OutputStream(std::string file) : name_(std::move(file))
{
    if (name_.empty()) {
        return;
    }
    std::error_code ignored;
    const auto status = std::filesystem::status(name_, ignored);
    if (std::filesystem::exists(status) && std::filesystem::is_other(status)) {
        file_ = std::make_unique<QFile>(dbif::to_qt(name_));
    } else {
        file_ = std::make_unique<QSaveFile>(dbif::to_qt(name_));
    }
    if (!file_->open(QIODevice::WriteOnly)) {
        throwFault();
    }
}

OutputStream& OutputStream::operator<<(std::string_view text)
{
    pending_ += text;
    if (pending_.size() >= kBlockBytes) {
        write();
    }
    return *this;
}

void OutputStream::finish()
{
    write();
    if (!name_.empty()) {
        auto* saved = dynamic_cast<QSaveFile*>(file_.get());
        if (saved != nullptr ? !saved->commit() : !file_->flush()) {
            throwFault();
        }
    } else if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        throw_unwritable("standard output", std::strerror(errno));
    }
}

void OutputStream::throwFault() const
{
    throw_unwritable("the file " + dbapi::quoted(name_), dbif::to_utf8(file_->errorString()) + ".");
}

void OutputStream::write()
{
    if (name_.empty()) {
        if (std::fwrite(pending_.data(), 1, pending_.size(), stdout) != pending_.size()) {
            throw_unwritable("standard output", std::strerror(errno));
        }
    } else if (
        file_->write(pending_.data(), static_cast<qint64>(pending_.size())) !=
        static_cast<qint64>(pending_.size())) {
        throwFault();
    }
    pending_.clear();
}
} // namespace dbapi::tool
