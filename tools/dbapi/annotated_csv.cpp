#include "tools/dbapi/annotated_csv.h"

#include "dbapi/text_rules.h"
#include "dbif/column_store.h"
#include "dbif/host_string.h"

#include "tools/dbapi/sweep_values.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <csv.h>
#include <map>
#include <memory>
#include <sys/stat.h>
#include <utility>

namespace dbapi::tool {
namespace {
constexpr std::size_t kBlockBytes = 1U << 18U;
/// A row that is longer is no part of a sweep; most likely a quote is open.
constexpr std::size_t kLongestRow = 1U << 26U;
constexpr std::size_t kLongestAnnotation = 1U << 20U;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::size_t count_line_ends(std::string_view text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

std::string cells_in_words(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " cell" : " cells");
}

/// What the rows of a file become: the header row columns, every other row a point.
class SweepRows
{
public:
    SweepRows(FileFaults* faults, std::size_t firstLine) : faults_(faults), line_(firstLine) {}

    void addCell(std::string_view cell, bool isMissing);
    /// `end` is the character that ended the row, or -1 for the end of the file.
    void endRow(int end);

    [[nodiscard]] std::size_t line() const { return line_; }

    [[nodiscard]] bool hasHeader() const { return hasHeader_; }

    [[nodiscard]] std::size_t points() const { return points_; }

    [[nodiscard]] std::vector<dbif::SetupColumn> takeColumns() { return std::move(columns_); }

private:
    void addSlowCell(std::string_view cell, bool isMissing);
    void finishRow();
    void makeColumns();
    void makeColumn(const std::string& keyword);

    FileFaults* faults_;
    std::vector<dbif::SetupColumn> columns_;
    std::vector<std::string> header_;
    std::map<std::string, std::size_t> columnOf_;
    bool hasHeader_ = false;
    std::size_t points_ = 0;
    /// The line that is being read, and the one in which the row began.
    std::size_t line_;
    std::size_t rowLine_ = 0;
    std::size_t cells_ = 0;
    bool endedAtReturn_ = false;
};

void SweepRows::addCell(std::string_view cell, bool isMissing)
{
    if (cells_ == 0) {
        rowLine_ = line_;
        endedAtReturn_ = false;
    }
    // A plain number in its column, the one case that occurs a million times.
    if (cells_ < columns_.size() && !isMissing) {
        dbif::SweepArray& values = columns_[cells_].values;
        const char* end = cell.data() + cell.size();
        double number = 0;
        if (values.kind == dbif::ValueKind::Double) {
            const auto result = std::from_chars(cell.data(), end, number);
            if (result.ec == std::errc() && result.ptr == end && std::isfinite(number)) {
                values.numbers.push_back(number);
                ++cells_;
                return;
            }
        }
    }
    addSlowCell(cell, isMissing);
    ++cells_;
}

void SweepRows::addSlowCell(std::string_view cell, bool isMissing)
{
    line_ += count_line_ends(cell);
    if (!hasHeader_) {
        header_.emplace_back(cell);
        return;
    }
    if (cells_ >= columns_.size()) {
        return; // The end of the row tells how many there are.
    }
    dbif::SetupColumn& column = columns_[cells_];
    if (isMissing) {
        append_no_value(&column.values);
        return;
    }
    std::string reason;
    if (append_value(cell, &column.values, faults_->wantsNext() ? &reason : nullptr)) {
        return;
    }
    const bool isMisplaced = cells_ == 0 && cell.starts_with('#');
    faults_->add(
        rowLine_, header_[cells_] + ": " + reason +
                      (isMisplaced ? " Annotations stand before the header row." : ""));
}

void SweepRows::endRow(int end)
{
    // CR LF ends one line, not two.
    const bool isSecondHalf = end == '\n' && endedAtReturn_ && cells_ == 0;
    if (cells_ > 0) {
        finishRow();
        cells_ = 0;
    }
    endedAtReturn_ = end == '\r';
    if (!isSecondHalf && end != -1) {
        ++line_;
    }
}

void SweepRows::finishRow()
{
    if (!hasHeader_) {
        makeColumns();
        return;
    }
    ++points_;
    if (cells_ != columns_.size()) {
        faults_->add(
            rowLine_, "The row has " + cells_in_words(cells_) + ", but the header row has " +
                          std::to_string(columns_.size()) + ".");
    }
}

void SweepRows::makeColumns()
{
    hasHeader_ = true;
    const bool isAllNumbers =
        std::all_of(header_.begin(), header_.end(), [](const std::string& cell) {
            double number = 0;
            return read_number(cell, &number);
        });
    if (isAllNumbers) {
        faults_->add(
            rowLine_, "The header row is missing: before the first point, a row names the "
                      "columns, like IND.VG,OUTD.ID.");
    }
    for (std::string& keyword : header_) {
        keyword = dbif::trimmed(keyword);
        if (isAllNumbers) {
            columns_.emplace_back().values.kind = dbif::ValueKind::Double;
        } else {
            makeColumn(keyword);
        }
    }
}

void SweepRows::makeColumn(const std::string& keyword)
{
    const std::string place = "Column " + std::to_string(columns_.size() + 1) + ": ";
    dbif::SetupColumn column;
    std::string reason;
    if (keyword.empty()) {
        reason = "The header row names no key. Write one, like OUTD.ID.";
    } else if (is_storable_text(keyword, &reason) && make_sweep_column(keyword, &column, &reason)) {
        const std::string key =
            dbif::column_key(column.isInput ? "IN" : "OUT", column.values.kind, column.name);
        const auto [first, isNew] = columnOf_.emplace(key, columns_.size() + 1);
        if (!isNew) {
            reason = dbapi::quoted(keyword) + " is column " + std::to_string(first->second) +
                     " already. Leave one out, or rename it.";
        }
    }
    if (!reason.empty()) {
        faults_->add(rowLine_, place + reason);
        column.values.kind = dbif::ValueKind::Text; // takes whatever the rows hold
    }
    columns_.push_back(std::move(column));
}

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Reads one file from its first block to its last.
class FileReader
{
public:
    explicit FileReader(AnnotatedCsv* csv) : csv_(csv), annotations_(&csv->faults) {}

    ~FileReader()
    {
        if (rows_ != nullptr) {
            csv_free(&parser_);
        }
    }

    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    void add(std::string_view block);
    void finish();

    /// Whether the rest of the file could not be understood.
    [[nodiscard]] bool isStopped() const { return isStopped_; }

private:
    static void onCell(void* cell, std::size_t length, void* rows);
    static void onRow(int end, void* rows);

    /// Takes complete lines from the head of `pending_`, as long as they are annotations or blank.
    void readAnnotations(bool isLast);
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

void FileReader::add(std::string_view block)
{
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
    if (isAtStart_ && (isLast || pending_.size() >= kByteOrderMark.size())) {
        isAtStart_ = false;
        if (pending_.starts_with(kByteOrderMark)) {
            pending_.erase(0, kByteOrderMark.size());
        }
    }
    std::size_t begin = 0;
    while (!isAtStart_ && rows_ == nullptr && begin < pending_.size()) {
        const std::size_t end = pending_.find_first_of("\r\n", begin);
        const std::string line = dbif::trimmed(pending_.substr(begin, end - begin));
        if (!line.empty() && line.front() != '#') {
            startRows();
            break;
        }
        // A CR may be followed by its LF in the next block.
        const bool isCut =
            end == std::string::npos || (pending_[end] == '\r' && end + 1 == pending_.size());
        if (isCut && !isLast) {
            break;
        }
        if (!line.empty()) {
            annotations_.addLine(line_, line);
        }
        ++line_;
        const bool isPair = end != std::string::npos && pending_.compare(end, 2, "\r\n") == 0;
        begin = end == std::string::npos ? pending_.size() : end + (isPair ? 2 : 1);
    }
    pending_.erase(0, begin);
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
    csv_set_blk_size(&parser_, kBlockBytes);
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
} // namespace

AnnotatedCsv read_annotated_csv(const std::string& path, const ReadProgress& progress)
{
    AnnotatedCsv csv;
    const auto giveUp = [&csv](int error) {
        csv.isUnreadable = true;
        csv.faults.add(0, reason_of(error));
        return std::move(csv);
    };
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rbe"));

    struct stat status
    {};

    if (file == nullptr || fstat(fileno(file.get()), &status) != 0) {
        return giveUp(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return giveUp(EISDIR);
    }
    const auto block = std::make_unique<char[]>(kBlockBytes); // NOLINT(modernize-avoid-c-arrays)
    FileReader reader(&csv);
    while (!reader.isStopped()) {
        const std::size_t size = std::fread(block.get(), 1, kBlockBytes, file.get());
        if (size == 0) {
            break;
        }
        reader.add({block.get(), size});
        if (progress) {
            progress(size);
        }
    }
    if (std::ferror(file.get()) != 0) {
        return giveUp(errno);
    }
    reader.finish();
    return csv;
}
} // namespace dbapi::tool
