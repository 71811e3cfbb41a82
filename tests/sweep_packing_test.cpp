#include "dbif/host/exception.h"
#include "dbif/sweep/sweep_packing.h"

#include "tests/support/measurement_database.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#define XXH_INLINE_ALL
#include <xxhash.h>

using dbif::SweepArray;
using dbif::ValueKind;
using testing::HasSubstr;

namespace {
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kMebibyte = 1U << 20U;

SweepArray numbers(std::vector<double> values)
{
    return {ValueKind::Double, std::move(values), {}, {}, {}};
}

SweepArray complex_numbers(std::vector<std::complex<double>> values)
{
    return {ValueKind::Complex, {}, std::move(values), {}, {}};
}

SweepArray matrices(std::vector<dbif::ComplexMatrix> values)
{
    return {ValueKind::Matrix, {}, {}, std::move(values), {}};
}

SweepArray texts(std::vector<std::optional<std::string>> values)
{
    return {ValueKind::Text, {}, {}, {}, std::move(values)};
}

dbif::ComplexMatrix matrix(std::size_t rows, std::size_t columns)
{
    std::vector<std::complex<double>> cells(rows * columns, {-0.0, kNan});
    return {rows, columns, cells};
}

/// A few values of each kind, the odd ones among them, and some that are compressed.
std::vector<SweepArray> small_arrays()
{
    return {
        numbers({0, -0.0, kNan, 1.5, -1e300, 5e-324}),
        complex_numbers({{1.5, -2}, dbif::kNoComplex}),
        matrices({matrix(2, 3), {}, {1, 1, {{1, 0.5}}}}),
        texts({"a", std::nullopt, "", std::string("\0ü", 3)}),
        numbers(std::vector<double>(12, 0.1)),
        texts(std::vector<std::optional<std::string>>(40, "ab"))};
}

template <typename T>
bool equal_bytes(const std::vector<T>& a, const std::vector<T>& b)
{
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

void expect_equal(const SweepArray& a, const SweepArray& b)
{
    EXPECT_EQ(a.kind, b.kind);
    EXPECT_TRUE(equal_bytes(a.numbers, b.numbers));
    EXPECT_TRUE(equal_bytes(a.complexNumbers, b.complexNumbers));
    EXPECT_EQ(a.texts, b.texts);
    ASSERT_EQ(a.matrices.size(), b.matrices.size());
    for (std::size_t i = 0; i < a.matrices.size(); ++i) {
        EXPECT_EQ(a.matrices[i].rows, b.matrices[i].rows);
        EXPECT_EQ(a.matrices[i].columns, b.matrices[i].columns);
        EXPECT_TRUE(equal_bytes(a.matrices[i].cells, b.matrices[i].cells));
    }
}

std::string error_of(std::string_view chunk, ValueKind kind)
{
    SweepArray array;
    array.kind = kind;
    return test_support::thrown_by([&] { dbif::unpack(chunk, {"id", 7}, &array); });
}

/// A chunk whose checksum is right, whatever it says.
std::string forged(ValueKind kind, std::uint32_t count, const std::vector<std::uint32_t>& words)
{
    std::string chunk(16 + 4 * words.size(), '\0');
    chunk[0] = 1;
    chunk[1] = static_cast<char>(
        kind == ValueKind::Double    ? 1
        : kind == ValueKind::Complex ? 2
        : kind == ValueKind::Matrix  ? 3
                                     : 4);
    std::memcpy(chunk.data() + 4, &count, 4);
    std::copy_n(reinterpret_cast<const char*>(words.data()), 4 * words.size(), chunk.data() + 16);
    std::uint64_t seed = 0;
    std::memcpy(&seed, chunk.data(), 8);
    const std::uint64_t checksum = XXH3_64bits_withSeed(chunk.data() + 16, chunk.size() - 16, seed);
    std::memcpy(chunk.data() + 8, &checksum, 8);
    return chunk;
}
} // namespace

TEST(SweepPacking, ReadsBackWhatItPacked)
{
    std::vector<SweepArray> arrays = small_arrays();
    arrays.push_back(numbers(std::vector<double>(300'000, 0.1)));
    arrays.push_back(complex_numbers(std::vector<std::complex<double>>(200'000, {0.1, -7})));
    arrays.push_back(matrices(std::vector<dbif::ComplexMatrix>(20, matrix(64, 64))));
    arrays.push_back(texts({"a", std::string(3 * kMebibyte, 'b'), std::nullopt, "c"}));
    arrays.push_back(texts(std::vector<std::optional<std::string>>(400'000, "d")));
    for (const ValueKind kind :
         {ValueKind::Double, ValueKind::Complex, ValueKind::Matrix, ValueKind::Text}) {
        arrays.emplace_back().kind = kind;
    }
    for (const SweepArray& array : arrays) {
        SweepArray read;
        read.kind = array.kind;
        for (const std::string& chunk : dbif::pack(array)) {
            const std::size_t before = read.size();
            dbif::unpack(chunk, {}, &read);
            EXPECT_TRUE(chunk.size() <= kMebibyte || read.size() == before + 1);
        }
        expect_equal(read, array);
    }
}

// A page of SQLite's takes four of them; the rest of a longer one would get a page to itself.
TEST(SweepPacking, SplitsShortColumns)
{
    const auto sizes = [](std::size_t count, bool isRepeated) {
        std::vector<double> values;
        for (std::size_t i = 0; i < count; ++i) {
            values.push_back(isRepeated ? 0.1 : std::sin(static_cast<double>(i)));
        }
        std::string text;
        for (const std::string& chunk : dbif::pack(numbers(values))) {
            text += std::to_string(chunk.size()) + " ";
        }
        return text;
    };
    EXPECT_EQ(sizes(248, false), "2000 ");
    EXPECT_EQ(sizes(300, false), "2000 432 ");
    EXPECT_EQ(sizes(2000, false), "2000 2000 2000 2000 2000 2000 2000 2000 144 ");
    EXPECT_EQ(sizes(2001, false), "16024 ");
    EXPECT_EQ(sizes(2000, true).find(' '), sizes(2000, true).size() - 1);
}

// Databases hold this form: it never changes.
TEST(SweepPacking, KeepsItsForm)
{
    const std::string ones = dbif::pack(numbers({1, -2})).front();
    EXPECT_EQ(ones, forged(ValueKind::Double, 2, {0, 0x3FF00000, 0, 0xC0000000}));
    EXPECT_EQ(QByteArray::fromStdString(ones.substr(8, 8)).toHex(), QByteArray("47475baa88e48ad2"));
    EXPECT_EQ(
        dbif::pack(matrices({{1, 1, {{1, -2}}}, {}})).front(),
        forged(ValueKind::Matrix, 2, {1, 1, 0, 0x3FF00000, 0, 0xC0000000, 0, 0}));
    EXPECT_EQ(
        dbif::pack(texts({"abcd", std::nullopt})).front(),
        forged(ValueKind::Text, 2, {4, 0x64636261, 0xFFFFFFFF}));
    EXPECT_EQ(
        dbif::pack(complex_numbers({{1, -2}})).front(),
        forged(ValueKind::Complex, 1, {0, 0x3FF00000, 0, 0xC0000000}));
}

TEST(SweepPacking, KeepsItsCompressedForm)
{
    const SweepArray ones = numbers(std::vector<double>(16, 1));
    SweepArray plain;
    std::vector<std::uint32_t> words(32);
    for (std::size_t i = 1; i < words.size(); i += 2) {
        words[i] = 0x3FF00000;
    }
    const std::string uncompressed = forged(ValueKind::Double, 16, words);
    dbif::unpack(uncompressed, {}, &plain);
    expect_equal(plain, ones);

    const std::string compressed =
        "\2" + uncompressed.substr(1, 15) +
        std::string("\x80\0\0\0\x8f\0\0\0\0\0\0\xf0\x3f\x08\0\x60\x50\0\0\0\xf0\x3f", 22);
    SweepArray read;
    dbif::unpack(compressed, {}, &read);
    expect_equal(read, ones);

    const std::string packed = dbif::pack(ones).front();
    EXPECT_LT(packed.size(), uncompressed.size() / 3);
    EXPECT_EQ(packed[0], 2);
    EXPECT_EQ(dbif::chunk_identity(packed), dbif::chunk_identity(uncompressed));
    EXPECT_EQ(dbif::chunk_values(packed, ValueKind::Double, {}), uncompressed.substr(16));
}

TEST(SweepPacking, ReportsDamage)
{
    for (const SweepArray& array : small_arrays()) {
        const std::string chunk = dbif::pack(array).front();
        for (std::size_t bit = 0; bit < 8 * chunk.size(); ++bit) {
            std::string damaged = chunk;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
            SweepArray read;
            read.kind = array.kind;
            const std::string error = test_support::thrown_by([&] {
                dbif::unpack(damaged, {"id", 7}, &read);
            });
            // There is more than one compressed form of the same values.
            if (error == "nothing thrown" && chunk[0] == 2) {
                expect_equal(read, array);
            } else {
                EXPECT_THAT(error, HasSubstr("The key \"id\" of setup 7 ")) << bit;
            }
        }
        for (std::size_t size = 0; size < chunk.size(); ++size) {
            EXPECT_THAT(error_of(chunk.substr(0, size), array.kind), HasSubstr("is damaged ("));
        }
        EXPECT_THAT(error_of(chunk + '\0', array.kind), HasSubstr("is damaged ("));
        EXPECT_THAT(
            error_of(chunk, array.kind == ValueKind::Text ? ValueKind::Double : ValueKind::Text),
            HasSubstr(
                "is damaged (it holds another data type). Restore the database from a backup"));
    }
}

TEST(SweepPacking, BelievesNoSizeThatTheBytesDoNotHave)
{
    constexpr std::uint32_t kMost = 0xFFFFFFFF;
    const std::pair<ValueKind, std::string> chunks[] = {
        {ValueKind::Double, forged(ValueKind::Double, kMost, {0, 0})},
        {ValueKind::Double, forged(ValueKind::Double, 0x20000000, {})},
        {ValueKind::Double, forged(ValueKind::Double, 1, {0, 0, 0})},
        {ValueKind::Complex, forged(ValueKind::Complex, 0x10000000, {0, 0, 0, 0})},
        {ValueKind::Text, forged(ValueKind::Text, kMost, {0})},
        {ValueKind::Text, forged(ValueKind::Text, 1, {kMost - 1, 0})},
        {ValueKind::Matrix, forged(ValueKind::Matrix, kMost, {0, 0})},
        {ValueKind::Matrix, forged(ValueKind::Matrix, 1, {kMost, kMost})},
        {ValueKind::Matrix, forged(ValueKind::Matrix, 1, {1U << 31U, 1U << 29U})},
        {ValueKind::Matrix, forged(ValueKind::Matrix, 1, {kMost, 0})},
        {ValueKind::Matrix, forged(ValueKind::Matrix, 1, {0, kMost})},
        {ValueKind::Text, "\2" + forged(ValueKind::Text, 1, {kMost, 0}).substr(1)}};
    for (const auto& [kind, chunk] : chunks) {
        EXPECT_THAT(error_of(chunk, kind), HasSubstr("The key \"id\" of setup 7 is damaged ("))
            << &chunk - &chunks[0].second;
    }
    // Refused before so much memory is asked for.
    EXPECT_THAT(
        error_of(chunks[std::size(chunks) - 1].second, ValueKind::Text), HasSubstr("too short"));
}
