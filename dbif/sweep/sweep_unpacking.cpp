#include "dbif/host/exception.h"
#include "dbif/sweep/chunk_head.h"
#include "dbif/sweep/sweep_packing.h"

#include <algorithm>
#include <cstring>
#include <lz4.h>

namespace dbif {
namespace {
/// An LZ4 block grows by less than this factor when it is decompressed.
constexpr std::size_t kGreatestGrowth = 255;

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
    ChunkHead header_{};
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
    const ChunkHead header = head_of(chunk);
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
    return bytes.substr(std::min(bytes.size(), sizeof(ChunkHead::format)));
}

std::string chunk_values(std::string_view chunk, ValueKind kind, const SweepPlace& place)
{
    return ChunkReader(chunk, kind, place).values();
}
} // namespace dbif
