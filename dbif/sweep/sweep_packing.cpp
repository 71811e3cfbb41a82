#include "dbif/sweep/sweep_packing.h"

#include "dbif/sweep/chunk_head.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <lz4.h>

namespace dbif {
static_assert(sizeof(ChunkHead) == kChunkHeadBytes);

namespace {
/// A chunk with fewer bytes is not worth compressing.
constexpr std::size_t kFewBytes = 64;

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
        ChunkHead header{kPlain, kind_code(kind_), 0, static_cast<std::uint32_t>(count), 0};
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
} // namespace dbif
