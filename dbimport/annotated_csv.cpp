#include "dbimport/annotated_csv.h"

#include "dbif/host/host_string.h"
#include "dbimport/csv_points.h"

#include <QtGlobal>

#include <bit>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <csv.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace dbapi {
namespace {
constexpr std::size_t kLargestBlock = 1U << 18U;
/// By so much the parser's room for one cell grows.
constexpr std::size_t kCellBytes = 1U << 12U;
/// A row that is longer is no part of a sweep; most likely a quote is open.
constexpr std::size_t kLongestRow = 1U << 26U;
constexpr std::size_t kLongestAnnotation = 1U << 20U;
/// A file that is no text shows it within this many bytes.
constexpr std::size_t kTellingBytes = 16;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The length of the first line of a text, with its line end; 0 when the text may not hold all of
/// it.
std::size_t line_length(std::string_view text, bool isLast)
{
    const std::size_t end = text.find_first_of("\r\n");
    if (end == std::string_view::npos) {
        return isLast ? text.size() : 0;
    }
    // A CR may be followed by its LF in the next block.
    if (text[end] == '\r' && end + 1 == text.size() && !isLast) {
        return 0;
    }
    return end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
}

/// An open file, which is read without a buffer in between. To open a pipe waits for nobody.
class InputFile
{
    Q_DISABLE_COPY_MOVE(InputFile)

public:
    explicit InputFile(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) // NOLINT(*-vararg)
    {}

    ~InputFile()
    {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }

    [[nodiscard]] bool status(struct stat* status) const
    {
        return descriptor_ >= 0 && fstat(descriptor_, status) == 0;
    }

    /// The number of bytes that were read: 0 at the end of the file, less after an error.
    [[nodiscard]] ssize_t read(char* bytes, std::size_t size) const
    {
        ssize_t count = 0;
        do {
            count = ::read(descriptor_, bytes, size);
        } while (count < 0 && errno == EINTR);
        return count;
    }

private:
    int descriptor_;
};

/// Reads one file from its first block to its last.
class FileReader
{
    Q_DISABLE_COPY_MOVE(FileReader)

public:
    explicit FileReader(AnnotatedCsv* csv) : csv_(csv), annotations_(&csv->faults) {}

    ~FileReader()
    {
        if (rows_ != nullptr) {
            csv_free(&parser_);
        }
    }

    void add(std::string_view block);
    void finish();

    /// Tells whether the rest of the file could not be understood.
    [[nodiscard]] bool isStopped() const { return isStopped_; }

private:
    static void onCell(void* cell, std::size_t length, void* rows);
    static void onRow(int end, void* rows);
    static void* grow(void* room, std::size_t size);

    /// Takes complete lines from the head of `pending_`, as long as they are annotations or blank.
    void readAnnotations(bool isLast);
    /// Tells whether a file that begins like this may be text; stops when it is none.
    bool isText(std::string_view begin);
    void startRows();
    void addRows(std::string_view block);
    void stop(std::size_t line, std::string reason);

    AnnotatedCsv* csv_;
    AnnotationReader annotations_;
    std::string pending_;
    bool isAtStart_ = true;
    std::size_t line_ = 1;
    std::unique_ptr<SweepRows> rows_;
    csv_parser parser_{};
    /// How much was read, and since which line, without coming to the end of a row.
    std::size_t openBytes_ = 0;
    std::size_t openLine_ = 0;
    bool isStopped_ = false;
};

void FileReader::onCell(void* cell, std::size_t length, void* rows)
{
    static_cast<SweepRows*>(rows)->addCell(
        {static_cast<const char*>(cell), length}, cell == nullptr);
}

void FileReader::onRow(int end, void* rows)
{
    static_cast<SweepRows*>(rows)->endRow(end);
}

void* FileReader::grow(void* room, std::size_t size)
{
    // Twofold, because a long cell would be moved every few bytes otherwise.
    return std::realloc(room, std::bit_ceil(size)); // NOLINT(*-no-malloc): as the parser frees it
}

bool FileReader::isText(std::string_view begin)
{
    if (begin.substr(0, kTellingBytes).find('\0') == std::string_view::npos) {
        return true;
    }
    stop(
        0, begin.starts_with("\xFF\xFE") || begin.starts_with("\xFE\xFF")
               ? "The file is UTF-16. Save it as UTF-8."
               : "The file is no text, so no annotated CSV either.");
    return false;
}

void FileReader::add(std::string_view block)
{
    if (isAtStart_ && pending_.empty() && !isText(block)) {
        return;
    }
    if (rows_ != nullptr) {
        addRows(block);
        return;
    }
    pending_ += block;
    readAnnotations(false);
}

void FileReader::finish()
{
    if (rows_ == nullptr && !isStopped_) {
        readAnnotations(true);
    }
    if (isStopped_) {
        return;
    }
    if (rows_ != nullptr && csv_fini(&parser_, onCell, onRow, rows_.get()) != 0) {
        stop(rows_->line(), "A double quote that is opened here is not closed.");
        return;
    }
    csv_->annotations = annotations_.take();
    if (rows_ == nullptr || !rows_->hasHeader()) {
        stop(0, "The file has no header row, which names the columns, like IND.VG,OUTD.ID.");
        return;
    }
    csv_->points = rows_->points();
    if (csv_->faults.isEmpty()) {
        csv_->columns = rows_->takeColumns();
    }
}

void FileReader::readAnnotations(bool isLast)
{
    if (isAtStart_ && pending_.size() < kByteOrderMark.size() && !isLast) {
        return;
    }
    std::string_view rest = pending_;
    if (std::exchange(isAtStart_, false) && rest.starts_with(kByteOrderMark)) {
        rest.remove_prefix(kByteOrderMark.size());
    }
    while (const std::size_t length = line_length(rest, isLast)) {
        const std::string line = dbif::trimmed(rest.substr(0, length));
        if (!line.empty() && line.front() != '#') {
            startRows();
            break;
        }
        if (!line.empty()) {
            annotations_.addLine(line_, line);
        }
        ++line_;
        rest.remove_prefix(length);
    }
    pending_.erase(0, pending_.size() - rest.size());
    if (rows_ != nullptr) {
        addRows(std::exchange(pending_, {}));
    } else if (pending_.size() > kLongestAnnotation) {
        stop(line_, "The line is longer than 1 MiB, so this is no annotated CSV file.");
    }
}

void FileReader::startRows()
{
    rows_ = std::make_unique<SweepRows>(&csv_->faults, line_);
    csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL | CSV_EMPTY_IS_NULL);
    csv_set_blk_size(&parser_, kCellBytes);
    csv_set_realloc_func(&parser_, grow);
}

void FileReader::addRows(std::string_view block)
{
    const std::size_t read =
        csv_parse(&parser_, block.data(), block.size(), onCell, onRow, rows_.get());
    if (read != block.size()) {
        stop(
            rows_->line(),
            csv_error(&parser_) == CSV_EPARSE
                ? "A double quote stands inside of a cell. A cell with quotes stands in quotes as "
                  "a whole, and each quote in it is doubled: \"a \"\"b\"\" c\"."
                : "There is not enough memory to read the file.");
        return;
    }
    openBytes_ = rows_->line() == openLine_ ? openBytes_ + block.size() : 0;
    openLine_ = rows_->line();
    if (openBytes_ > kLongestRow) {
        stop(
            openLine_, "The row does not end within 64 MiB. Most likely a double quote is opened "
                       "and not closed.");
    }
}

void FileReader::stop(std::size_t line, std::string reason)
{
    csv_->faults.add(line, std::move(reason));
    isStopped_ = true;
}

std::string reason_of(int error)
{
    return std::string("The file cannot be read: ") + std::strerror(error) + ".";
}

/// A small file is read in one go, and needs no more room than that.
std::size_t block_bytes(off_t fileBytes)
{
    const bool isSmall = fileBytes > 0 && fileBytes < static_cast<off_t>(kLargestBlock);
    return isSmall ? static_cast<std::size_t>(fileBytes) : kLargestBlock;
}
} // namespace

AnnotatedCsv read_annotated_csv(const std::string& path, const ImportProgress& progress)
{
    AnnotatedCsv csv;
    const auto giveUp = [&csv](int error) {
        csv.isUnreadable = true;
        csv.faults.add(0, reason_of(error));
        return std::move(csv);
    };
    const InputFile file(path);

    struct stat status
    {};

    if (!file.status(&status)) {
        return giveUp(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return giveUp(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        csv.isUnreadable = true;
        csv.faults.add(
            0, "This is no regular file but a pipe or device, which cannot be imported.");
        return csv;
    }
    const std::size_t blockBytes = block_bytes(status.st_size);
    // NOLINTNEXTLINE(modernize-avoid-c-arrays)
    const auto block = std::make_unique_for_overwrite<char[]>(blockBytes);
    FileReader reader(&csv);
    while (!reader.isStopped()) {
        const ssize_t size = file.read(block.get(), blockBytes);
        if (size < 0) {
            return giveUp(errno);
        }
        if (size == 0) {
            break;
        }
        const auto bytes = static_cast<std::size_t>(size);
        reader.add({block.get(), bytes});
        if (progress) {
            progress(bytes);
        }
    }
    reader.finish();
    return csv;
}
} // namespace dbapi
