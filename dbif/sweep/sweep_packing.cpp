#include "dbif/sweep/sweep_packing.h"

#include "dbif/host/exception.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <lz4.h>
#include <xxhash.h>

namespace dbif {
// Values are packed as they are in memory, so that reading them is copying.
static_assert(std::endian::native == std::endian::little);
static_assert(sizeof(std::complex<double>) == 2 * sizeof(double));

namespace {
constexpr std::size_t kChunkBytes = 1U << 20U;
/// A page of SQLite's (8 KiB) holds four such rows. The rest of a longer row goes to pages of its
/// own, which it fills badly, so columns of up to `kFewValuesBytes` are split.
constexpr std::size_t kRowBytes = 2000;
constexpr std::size_t kFewValuesBytes = 8 * kRowBytes;
constexpr std::uint8_t kPlain = 1;
constexpr std::uint8_t kCompressed = 2;
constexpr std::uint32_t kMissingText = 0xFFFFFFFF;
/// A chunk with fewer bytes is not worth compressing.
constexpr std::size_t kFewBytes = 64;
/// An LZ4 block grows by less than this factor when it is decompressed.
constexpr std::size_t kGreatestGrowth = 255;

std::uint8_t kind_code(ValueKind kind)
{
    switch (kind) {
    case ValueKind::Double:
        return 1;
    case ValueKind::Complex:
        return 2;
    case ValueKind::Matrix:
        return 3;
    case ValueKind::Text:
        return 4;
    }
    return 0;
}

struct Header
{
    std::uint8_t format;
    std::uint8_t kind;
    std::uint16_t zero;
    std::uint32_t count;
    std::uint64_t checksum;
};

static_assert(sizeof(Header) == kChunkHeadBytes);

/// The most values of a size that a chunk of so many bytes takes.
constexpr std::size_t values_in(std::size_t chunkBytes, std::size_t valueBytes)
{
    return (chunkBytes - kChunkHeadBytes) / valueBytes;
}

/// The head of a chunk; one that is too short has none, and counts as an empty text.
Header head_of(std::string_view chunk)
{
    Header header{kPlain, kind_code(ValueKind::Text), 0, 0, 0};
    if (chunk.size() >= kChunkHeadBytes) {
        std::memcpy(&header, chunk.data(), kChunkHeadBytes);
    }
    return header;
}

std::uint64_t checksum_of(Header header, std::string_view values)
{
    header.format = kPlain;
    std::uint64_t seed = 0;
    std::memcpy(&seed, &header, sizeof(seed));
    return XXH3_64bits_withSeed(values.data(), values.size(), seed);
}

void append_count(std::size_t count, std::string* bytes)
{
    const auto number = static_cast<std::uint32_t>(count);
    std::array<char, sizeof(number)> raw{};
    std::memcpy(raw.data(), &number, sizeof(number));
    bytes->append(raw.data(), raw.size());
}

/// Appends the values compressed; false, and nothing appended, when that saves less than an eighth.
bool append_compressed(std::string_view values, std::string* bytes)
{
    if (values.size() < kFewBytes || values.size() > LZ4_MAX_INPUT_SIZE) {
        return false;
    }
    const std::size_t before = bytes->size();
    append_count(values.size(), bytes);
    const std::size_t start = bytes->size();
    const std::size_t room = values.size() - values.size() / 8;
    bytes->resize(start + room);
    const int size = LZ4_compress_default(
        values.data(), bytes->data() + start, static_cast<int>(values.size()),
        static_cast<int>(room));
    bytes->resize(size > 0 ? start + static_cast<std::size_t>(size) : before);
    return size > 0;
}

/// Collects values into chunks.
class ChunkWriter
{
public:
    explicit ChunkWriter(ValueKind kind) : kind_(kind) {}

    /// Adds a run of values of equal size.
    void addRun(const void* values, std::size_t count, std::size_t valueBytes)
    {
        const std::string_view run(static_cast<const char*>(values), count * valueBytes);
        forEachPart(run, valueBytes, kChunkBytes, [&](std::string_view part) {
            std::string chunk = chunkOf(part, part.size() / valueBytes);
            if (chunk.size() > kRowBytes && part.size() <= kFewValuesBytes) {
                addPieces(part, valueBytes);
            } else {
                chunks_.push_back(std::move(chunk));
            }
        });
    }

    void add(const std::string& value)
    {
        if (count_ > 0 && kChunkHeadBytes + values_.size() + value.size() > kChunkBytes) {
            finishValues();
        }
        values_ += value;
        ++count_;
    }

    std::vector<std::string> finish()
    {
        if (count_ > 0) {
            finishValues();
        }
        return std::move(chunks_);
    }

private:
    void addPieces(std::string_view values, std::size_t valueBytes)
    {
        forEachPart(values, valueBytes, kRowBytes, [&](std::string_view piece) {
            chunks_.push_back(chunkOf(piece, piece.size() / valueBytes));
        });
    }

    /// Calls `use` for parts of as many values as a chunk of so many bytes takes.
    template <typename Use>
    static void forEachPart(
        std::string_view values,
        std::size_t valueBytes,
        std::size_t chunkBytes,
        const Use& use)
    {
        const std::size_t most = values_in(chunkBytes, valueBytes) * valueBytes;
        for (; !values.empty(); values.remove_prefix(std::min(most, values.size()))) {
            use(values.substr(0, most));
        }
    }

    void finishValues()
    {
        chunks_.push_back(chunkOf(values_, count_));
        values_.clear();
        count_ = 0;
    }

    [[nodiscard]] std::string chunkOf(std::string_view values, std::size_t count) const
    {
        Header header{kPlain, kind_code(kind_), 0, static_cast<std::uint32_t>(count), 0};
        header.checksum = checksum_of(header, values);
        std::string chunk(kChunkHeadBytes, '\0');
        if (append_compressed(values, &chunk)) {
            header.format = kCompressed;
        } else {
            chunk += values;
        }
        std::memcpy(chunk.data(), &header, kChunkHeadBytes);
        return chunk;
    }

    ValueKind kind_;
    std::string values_;
    std::size_t count_ = 0;
    std::vector<std::string> chunks_;
};

std::string packed_matrix(const ComplexMatrix& matrix)
{
    std::string bytes;
    append_count(matrix.rows, &bytes);
    append_count(matrix.columns, &bytes);
    const std::size_t size = matrix.cells.size() * sizeof(std::complex<double>);
    const std::size_t start = bytes.size();
    bytes.resize(start + size);
    if (size > 0) {
        std::memcpy(bytes.data() + start, matrix.cells.data(), size);
    }
    return bytes;
}

std::string packed_text(const std::optional<std::string>& text)
{
    std::string bytes;
    append_count(text.has_value() ? text->size() : kMissingText, &bytes);
    return bytes + text.value_or(std::string());
}

[[noreturn]] void throw_damaged(const SweepPlace& place, const char* what)
{
    throw_error(
        place.text() + " is damaged (" + what +
            "). Restore the database from a backup, or import the data again.",
        __FILE__, __LINE__);
}

/// Reads counts and bytes, never past the end of the chunk.
class ByteReader
{
public:
    ByteReader(std::string_view bytes, const SweepPlace& place) : bytes_(bytes), place_(place) {}

    std::uint32_t count()
    {
        std::uint32_t number = 0;
        std::memcpy(&number, take(sizeof(number)).data(), sizeof(number));
        return number;
    }

    std::string_view take(std::size_t size)
    {
        if (bytes_.size() < size) {
            throw_damaged(place_, "it is too short");
        }
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return taken;
    }

    /// Tells whether so many values of a size are left; counts come from the chunk and may be any.
    [[nodiscard]] bool has(std::size_t count, std::size_t size) const
    {
        return count <= bytes_.size() / size;
    }

    [[noreturn]] void fail(const char* what) const { throw_damaged(place_, what); }

    [[nodiscard]] std::string_view rest() const { return bytes_; }

private:
    std::string_view bytes_;
    const SweepPlace& place_;
};

/// Reads one chunk, once its head is found to be right.
class ChunkReader
{
public:
    ChunkReader(std::string_view chunk, ValueKind kind, const SweepPlace& place) : place_(place)
    {
        if (chunk.size() < kChunkHeadBytes) {
            throw_damaged(place, "it is too short");
        }
        std::memcpy(&header_, chunk.data(), kChunkHeadBytes);
        if (header_.format > kCompressed) {
            throw_error(
                place.text() +
                    " was written by a newer version of this program. Update this program.",
                __FILE__, __LINE__);
        }
        if (header_.format == 0 || header_.zero != 0) {
            throw_damaged(place, "its checksum is wrong");
        }
        if (header_.kind != kind_code(kind)) {
            throw_damaged(place, "it holds another data type");
        }
        stored_ = chunk.substr(kChunkHeadBytes);
        size_ = stored_.size();
        if (header_.format == kCompressed) {
            ByteReader reader(stored_, place);
            size_ = reader.count();
            stored_ = reader.rest();
            if (size_ / kGreatestGrowth > stored_.size()) {
                throw_damaged(place, "it is too short");
            }
        }
    }

    [[nodiscard]] std::size_t count() const { return header_.count; }

    /// The size of the values in bytes.
    [[nodiscard]] std::size_t size() const { return size_; }

    /// Writes the values, which have their right checksum.
    void writeTo(char* values) const
    {
        if (header_.format == kCompressed) {
            const int size = LZ4_decompress_safe(
                stored_.data(), values, static_cast<int>(stored_.size()), static_cast<int>(size_));
            if (size < 0 || static_cast<std::size_t>(size) != size_) {
                throw_damaged(place_, "it does not decompress");
            }
        } else if (size_ > 0) {
            std::memcpy(values, stored_.data(), size_);
        }
        if (checksum_of(header_, {values, size_}) != header_.checksum) {
            throw_damaged(place_, "its checksum is wrong");
        }
    }

    [[nodiscard]] std::string values() const
    {
        std::string values(size_, '\0');
        writeTo(values.data());
        return values;
    }

    template <typename T>
    void appendTo(std::vector<T>* values) const
    {
        if (size_ / sizeof(T) != header_.count || size_ % sizeof(T) != 0) {
            throw_damaged(place_, "its size is wrong");
        }
        const std::size_t start = values->size();
        values->resize(start + header_.count);
        writeTo(reinterpret_cast<char*>(values->data() + start));
    }

private:
    const SweepPlace& place_;
    Header header_{};
    std::string_view stored_;
    std::size_t size_ = 0;
};

ComplexMatrix read_packed_matrix(ByteReader& reader)
{
    ComplexMatrix matrix;
    matrix.rows = reader.count();
    matrix.columns = reader.count();
    if ((matrix.rows == 0) != (matrix.columns == 0)) {
        reader.fail("a matrix has no size");
    }
    const std::size_t cells = matrix.rows * matrix.columns;
    if (!reader.has(cells, sizeof(matrix.cells[0]))) {
        reader.fail("it is too short");
    }
    matrix.cells.resize(cells);
    const std::string_view bytes = reader.take(cells * sizeof(matrix.cells[0]));
    if (cells > 0) {
        std::memcpy(matrix.cells.data(), bytes.data(), bytes.size());
    }
    return matrix;
}

std::optional<std::string> read_packed_text(ByteReader& reader)
{
    const std::uint32_t size = reader.count();
    return size == kMissingText ? std::nullopt : std::optional(std::string(reader.take(size)));
}

/// Appends values that have a size each.
template <typename T, typename Read>
void append_sized(
    const ChunkReader& chunk,
    const SweepPlace& place,
    const Read& read,
    std::vector<T>* values)
{
    const std::string bytes = chunk.values();
    ByteReader reader(bytes, place);
    for (std::size_t i = 0; i < chunk.count(); ++i) {
        values->push_back(read(reader));
    }
    if (!reader.rest().empty()) {
        reader.fail("it is too long");
    }
}
} // namespace

std::vector<std::string> pack(const SweepArray& array)
{
    ChunkWriter writer(array.kind);
    switch (array.kind) {
    case ValueKind::Double:
        writer.addRun(array.numbers.data(), array.numbers.size(), sizeof(double));
        break;
    case ValueKind::Complex:
        writer.addRun(
            array.complexNumbers.data(), array.complexNumbers.size(), sizeof(std::complex<double>));
        break;
    case ValueKind::Matrix:
        for (const ComplexMatrix& matrix : array.matrices) {
            writer.add(packed_matrix(matrix));
        }
        break;
    case ValueKind::Text:
        for (const auto& text : array.texts) {
            writer.add(packed_text(text));
        }
        break;
    }
    return writer.finish();
}

void unpack(std::string_view chunk, const SweepPlace& place, SweepArray* array)
{
    const ChunkReader reader(chunk, array->kind, place);
    switch (array->kind) {
    case ValueKind::Double:
        reader.appendTo(&array->numbers);
        break;
    case ValueKind::Complex:
        reader.appendTo(&array->complexNumbers);
        break;
    case ValueKind::Matrix:
        append_sized(reader, place, read_packed_matrix, &array->matrices);
        break;
    case ValueKind::Text:
        append_sized(reader, place, read_packed_text, &array->texts);
        break;
    }
}

std::size_t value_count(std::string_view chunk)
{
    return head_of(chunk).count;
}

bool may_go_on(std::string_view chunk)
{
    const Header header = head_of(chunk);
    const auto isFull = [&header](std::size_t valueBytes) {
        return header.count == values_in(kRowBytes, valueBytes) ||
               header.count == values_in(kChunkBytes, valueBytes);
    };
    if (header.kind == kind_code(ValueKind::Double)) {
        return isFull(sizeof(double));
    }
    return header.kind != kind_code(ValueKind::Complex) || isFull(sizeof(std::complex<double>));
}

std::string SweepPlace::text() const
{
    return "The key \"" + std::string(key) + "\" of setup " + std::to_string(setup);
}

void check_length(const SweepPlace& place, std::size_t found, std::size_t expected)
{
    if (found != expected) {
        const std::string what =
            "it has " + std::to_string(found) + " of " + std::to_string(expected) + " points";
        throw_damaged(place, what.c_str());
    }
}

std::string_view chunk_identity(std::string_view head)
{
    const std::string_view bytes = head.substr(0, kChunkHeadBytes);
    return bytes.substr(std::min(bytes.size(), sizeof(Header::format)));
}

std::string chunk_values(std::string_view chunk, ValueKind kind, const SweepPlace& place)
{
    return ChunkReader(chunk, kind, place).values();
}
} // namespace dbif
