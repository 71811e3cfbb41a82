#include "dbif/sweep_array.h"

#include "dbif/exception.h"
#include "dbif/host_number.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <xxhash.h>

namespace dbif {
// The packed form is the memory form, so that reading is copying.
static_assert(std::endian::native == std::endian::little);
static_assert(sizeof(std::complex<double>) == 2 * sizeof(double));

namespace {
constexpr std::size_t kChunkBytes = 1U << 20U;
constexpr std::size_t kHeaderBytes = 16;
constexpr std::uint8_t kVersion = 1;
constexpr std::uint32_t kMissingText = 0xFFFFFFFF;

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
    std::uint8_t version;
    std::uint8_t kind;
    std::uint16_t zero;
    std::uint32_t count;
    std::uint64_t checksum;
};

static_assert(sizeof(Header) == kHeaderBytes);

std::uint64_t checksum_of(const Header& header, std::string_view values)
{
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

/// Collects values into chunks.
class ChunkWriter
{
public:
    explicit ChunkWriter(ValueKind kind) : kind_(kind) {}

    /// A run of values of equal size.
    void addRun(const void* values, std::size_t count, std::size_t valueBytes)
    {
        const char* bytes = static_cast<const char*>(values);
        const std::size_t most = (kChunkBytes - kHeaderBytes) / valueBytes;
        for (std::size_t done = 0; done < count;) {
            const std::size_t now = std::min(most, count - done);
            values_.assign(bytes + done * valueBytes, now * valueBytes);
            count_ = now;
            finishChunk();
            done += now;
        }
    }

    void add(const std::string& value)
    {
        if (count_ > 0 && kHeaderBytes + values_.size() + value.size() > kChunkBytes) {
            finishChunk();
        }
        values_ += value;
        ++count_;
    }

    std::vector<std::string> finish()
    {
        if (count_ > 0) {
            finishChunk();
        }
        return std::move(chunks_);
    }

private:
    void finishChunk()
    {
        Header header{kVersion, kind_code(kind_), 0, static_cast<std::uint32_t>(count_), 0};
        header.checksum = checksum_of(header, values_);
        std::string chunk(kHeaderBytes, '\0');
        std::memcpy(chunk.data(), &header, kHeaderBytes);
        chunks_.push_back(chunk + values_);
        values_.clear();
        count_ = 0;
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

[[noreturn]] void throw_damaged(const std::string& place, const char* what)
{
    throw_error(
        place + " is damaged (" + what +
            "). Restore the database from a backup, or import the data again.",
        __FILE__, __LINE__);
}

/// Reads counts and bytes from a chunk, and never past its end.
class ChunkReader
{
public:
    ChunkReader(std::string_view bytes, const std::string& place) : bytes_(bytes), place_(place) {}

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

    /// Whether so many values of a size are left; counts come from the chunk and may be any.
    [[nodiscard]] bool has(std::size_t count, std::size_t size) const
    {
        return count <= bytes_.size() / size;
    }

    [[noreturn]] void fail(const char* what) const { throw_damaged(place_, what); }

    [[nodiscard]] bool isAtEnd() const { return bytes_.empty(); }

private:
    std::string_view bytes_;
    const std::string& place_;
};

template <typename T>
void append_run(ChunkReader& reader, std::size_t count, std::vector<T>* values)
{
    if (!reader.has(count, sizeof(T))) {
        reader.fail("it is too short");
    }
    const std::string_view bytes = reader.take(count * sizeof(T));
    const std::size_t start = values->size();
    values->resize(start + count);
    if (count > 0) {
        std::memcpy(values->data() + start, bytes.data(), bytes.size());
    }
}

ComplexMatrix read_packed_matrix(ChunkReader& reader)
{
    ComplexMatrix matrix;
    matrix.rows = reader.count();
    matrix.columns = reader.count();
    if ((matrix.rows == 0) != (matrix.columns == 0)) {
        reader.fail("a matrix has no size");
    }
    append_run(reader, matrix.rows * matrix.columns, &matrix.cells);
    return matrix;
}

std::optional<std::string> read_packed_text(ChunkReader& reader)
{
    const std::uint32_t size = reader.count();
    return size == kMissingText ? std::nullopt : std::optional(std::string(reader.take(size)));
}

Header checked_header(std::string_view chunk, ValueKind kind, const std::string& place)
{
    if (chunk.size() < kHeaderBytes) {
        throw_damaged(place, "it is too short");
    }
    Header header{};
    std::memcpy(&header, chunk.data(), kHeaderBytes);
    if (header.version > kVersion) {
        throw_error(
            place + " was written by a newer version of this program. Update this program.",
            __FILE__, __LINE__);
    }
    if (header.version != kVersion || header.zero != 0 ||
        checksum_of(header, chunk.substr(kHeaderBytes)) != header.checksum) {
        throw_damaged(place, "its checksum is wrong");
    }
    if (header.kind != kind_code(kind)) {
        throw_damaged(place, "it holds another data type");
    }
    return header;
}
} // namespace

std::size_t SweepArray::size() const
{
    switch (kind) {
    case ValueKind::Double:
        return numbers.size();
    case ValueKind::Complex:
        return complexNumbers.size();
    case ValueKind::Matrix:
        return matrices.size();
    case ValueKind::Text:
        return texts.size();
    }
    return 0;
}

bool SweepArray::hasValue(std::size_t point) const
{
    switch (kind) {
    case ValueKind::Double:
        return !std::isnan(numbers[point]);
    case ValueKind::Complex:
        return !std::isnan(complexNumbers[point].real());
    case ValueKind::Matrix:
        return matrices[point].rows > 0;
    case ValueKind::Text:
        return texts[point].has_value();
    }
    return false;
}

std::string SweepArray::text(std::size_t point) const
{
    switch (kind) {
    case ValueKind::Double:
        return std::isnan(numbers[point]) ? std::string() : double_text(numbers[point]);
    case ValueKind::Complex:
        return complex_text(complexNumbers[point]);
    case ValueKind::Matrix:
        return matrix_text(matrices[point]);
    case ValueKind::Text:
        return texts[point].value_or(std::string());
    }
    return {};
}

std::optional<SweepBounds> bounds(const SweepArray& array)
{
    std::optional<SweepBounds> found;
    if (array.kind != ValueKind::Double) {
        return found;
    }
    for (const double number : array.numbers) {
        if (std::isnan(number)) {
            continue;
        }
        if (!found.has_value()) {
            found = SweepBounds{number, number};
        }
        found->minimum = std::min(found->minimum, number);
        found->maximum = std::max(found->maximum, number);
    }
    return found;
}

bool is_finite(const SweepArray& array)
{
    const auto isFinite = [](const std::complex<double>& number) {
        return std::isfinite(number.real()) && std::isfinite(number.imag());
    };
    switch (array.kind) {
    case ValueKind::Double:
        return std::none_of(array.numbers.begin(), array.numbers.end(), [](double number) {
            return std::isinf(number);
        });
    case ValueKind::Complex:
        return std::all_of(
            array.complexNumbers.begin(), array.complexNumbers.end(),
            [&](const auto& number) { return std::isnan(number.real()) || isFinite(number); });
    case ValueKind::Matrix:
        return std::all_of(
            array.matrices.begin(), array.matrices.end(), [&](const ComplexMatrix& matrix) {
                return std::all_of(matrix.cells.begin(), matrix.cells.end(), isFinite);
            });
    case ValueKind::Text:
        break;
    }
    return true;
}

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

void unpack(std::string_view chunk, const std::string& place, SweepArray* array)
{
    const Header header = checked_header(chunk, array->kind, place);
    ChunkReader reader(chunk.substr(kHeaderBytes), place);
    switch (array->kind) {
    case ValueKind::Double:
        append_run(reader, header.count, &array->numbers);
        break;
    case ValueKind::Complex:
        append_run(reader, header.count, &array->complexNumbers);
        break;
    case ValueKind::Matrix:
        for (std::uint32_t i = 0; i < header.count; ++i) {
            array->matrices.push_back(read_packed_matrix(reader));
        }
        break;
    case ValueKind::Text:
        for (std::uint32_t i = 0; i < header.count; ++i) {
            array->texts.push_back(read_packed_text(reader));
        }
        break;
    }
    if (!reader.isAtEnd()) {
        throw_damaged(place, "it is too long");
    }
}
} // namespace dbif
