#include "dbapi/arrow_layout.h"

#include <complex>
#include <cstring>
#include <deque>
#include <string>
#include <utility>

namespace dbapi {
namespace {
using Type = ValueColumn::Type;

/// Releases what a consumer has not moved out of its place.
template <typename Node>
void release_if_there(Node* node)
{
    if (node != nullptr && node->release != nullptr) {
        node->release(node);
    }
}

/// The memory behind an `ArrowSchema` or `ArrowArray`: the nodes below it, and its own memory. The
/// parent's release ends those below that are still in their place.
template <typename Node, typename Memory>
struct Holder
{
    Holder() = default;
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    ~Holder()
    {
        for (Node& child : children) {
            release_if_there(&child);
        }
        release_if_there(&dictionary);
    }

    static void release(Node* node)
    {
        delete static_cast<Holder*>(node->private_data);
        node->release = nullptr;
    }

    Node* addChild()
    {
        children.push_back(Node());
        pointers.push_back(&children.back());
        return &children.back();
    }

    /// Hands itself over to a node, whose own fields are set already.
    static void give(std::unique_ptr<Holder> holder, Node* node)
    {
        node->n_children = static_cast<int64_t>(holder->pointers.size());
        node->children = holder->pointers.empty() ? nullptr : holder->pointers.data();
        node->dictionary = holder->dictionary.release == nullptr ? nullptr : &holder->dictionary;
        node->release = &Holder::release;
        node->private_data = holder.release();
    }

    /// Nodes keep their place.
    std::deque<Node> children;
    std::vector<Node*> pointers;
    Node dictionary{};
    Memory memory;
};

/// The texts of a schema.
struct SchemaMemory
{
    std::string name;
    std::string metadata;
};

/// The column or the vectors that the buffers of an array are in.
struct ArrayMemory
{
    std::vector<const void*> buffers;
    std::vector<std::uint8_t> validity;
    std::vector<std::int64_t> offsets;
    std::string bytes;
    std::vector<std::complex<double>> cells;
    std::shared_ptr<const ValueColumn> column;
};

using SchemaHolder = Holder<ArrowSchema, SchemaMemory>;
using ArrayHolder = Holder<ArrowArray, ArrayMemory>;

void append_length(std::size_t length, std::string* bytes)
{
    const auto value = static_cast<std::int32_t>(length);
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes->append(raw, sizeof value);
}

/// Metadata as the interface packs them: numbers of 32 bits in front of texts.
std::string metadata_of(const ValueColumn& column)
{
    const std::pair<const char*, const std::string&> entries[] = {
        {"dbapi.table", column.table},
        {"dbapi.name", column.name},
        {"dbapi.category", column.category},
        {"dbapi.datatype", column.dataType},
        {"dbapi.unit", column.unit}};
    std::string packed;
    std::size_t count = 0;
    for (const auto& [key, value] : entries) {
        if (!value.empty()) {
            ++count;
            append_length(std::strlen(key), &packed);
            packed += key;
            append_length(value.size(), &packed);
            packed += value;
        }
    }
    std::string head;
    append_length(count, &head);
    return head + packed;
}

/// A node of a schema; `format` is a literal.
void make_schema(
    const char* format,
    std::string name,
    std::string metadata,
    std::unique_ptr<SchemaHolder> holder,
    ArrowSchema* schema)
{
    holder->memory = {std::move(name), std::move(metadata)};
    *schema = {};
    schema->format = format;
    schema->name = holder->memory.name.c_str();
    schema->metadata = holder->memory.metadata.empty() ? nullptr : holder->memory.metadata.data();
    schema->flags = ARROW_FLAG_NULLABLE;
    SchemaHolder::give(std::move(holder), schema);
}

const char* format_of(Type type)
{
    switch (type) {
    case Type::Number:
        return "g";
    case Type::Integer:
        return "l";
    case Type::Complex:
        return "+w:2";
    case Type::Matrix:
        return "+L";
    case Type::Text:
        return "i";
    case Type::Time:
        break;
    }
    return "tsu:UTC";
}

/// Real and imaginary part, below a node of complex numbers.
void add_complex_parts(SchemaHolder* holder)
{
    make_schema("g", "item", {}, std::make_unique<SchemaHolder>(), holder->addChild());
}

void make_column_schema(const ValueColumn& column, ArrowSchema* schema)
{
    auto holder = std::make_unique<SchemaHolder>();
    if (column.type == Type::Complex) {
        add_complex_parts(holder.get());
    } else if (column.type == Type::Matrix) {
        auto cells = std::make_unique<SchemaHolder>();
        add_complex_parts(cells.get());
        auto rows = std::make_unique<SchemaHolder>();
        make_schema("+w:2", "item", {}, std::move(cells), rows->addChild());
        make_schema("+L", "item", {}, std::move(rows), holder->addChild());
    } else if (column.type == Type::Text) {
        make_schema("U", "", {}, std::make_unique<SchemaHolder>(), &holder->dictionary);
    }
    make_schema(
        format_of(column.type), column.keyword, metadata_of(column), std::move(holder), schema);
}

/// A bit for each row that has a value; none at all where every row has.
std::vector<std::uint8_t> validity_of(const ValueColumn& column, std::size_t missing)
{
    std::vector<std::uint8_t> bits;
    if (missing == 0) {
        return bits;
    }
    const std::size_t rows = column.size();
    bits.resize((rows + 7) / 8);
    for (std::size_t row = 0; row < rows; ++row) {
        bits[row / 8] |= static_cast<std::uint8_t>((column.hasValue(row) ? 1U : 0U) << (row % 8));
    }
    return bits;
}

/// An array whose first buffer tells the missing values (null for none), and whose other buffer,
/// unless it is null, the values.
void make_array(
    std::size_t length,
    std::size_t missing,
    std::vector<const void*> buffers,
    std::unique_ptr<ArrayHolder> holder,
    ArrowArray* array)
{
    holder->memory.buffers = std::move(buffers);
    *array = {};
    array->length = static_cast<int64_t>(length);
    array->null_count = static_cast<int64_t>(missing);
    array->n_buffers = static_cast<int64_t>(holder->memory.buffers.size());
    array->buffers = holder->memory.buffers.data();
    ArrayHolder::give(std::move(holder), array);
}

/// Complex numbers as pairs of doubles, which is how they stand in memory. `owner` keeps them.
void add_complex_parts(
    const std::vector<std::complex<double>>& numbers,
    std::unique_ptr<ArrayHolder> owner,
    ArrayHolder* parent)
{
    make_array(
        2 * numbers.size(), 0, {nullptr, numbers.data()}, std::move(owner), parent->addChild());
}

void make_dictionary(const std::vector<std::string>& texts, ArrowArray* array)
{
    auto holder = std::make_unique<ArrayHolder>();
    ArrayMemory& memory = holder->memory;
    memory.offsets.push_back(0);
    for (const std::string& text : texts) {
        memory.bytes += text;
        memory.offsets.push_back(static_cast<std::int64_t>(memory.bytes.size()));
    }
    const std::vector<const void*> buffers{nullptr, memory.offsets.data(), memory.bytes.data()};
    make_array(texts.size(), 0, buffers, std::move(holder), array);
}

/// Matrices as lists of rows, which are lists of numbers.
void add_matrix_rows(const std::vector<dbif::ComplexMatrix>& matrices, ArrayHolder* parent)
{
    auto numbers = std::make_unique<ArrayHolder>();
    auto cells = std::make_unique<ArrayHolder>();
    auto rows = std::make_unique<ArrayHolder>();
    std::vector<std::complex<double>>& all = numbers->memory.cells;
    std::vector<std::int64_t>& rowEnds = rows->memory.offsets;
    parent->memory.offsets.push_back(0);
    rowEnds.push_back(0);
    for (const dbif::ComplexMatrix& matrix : matrices) {
        for (std::size_t row = 0; row < matrix.rows; ++row) {
            rowEnds.push_back(rowEnds.back() + static_cast<std::int64_t>(matrix.columns));
        }
        all.insert(all.end(), matrix.cells.begin(), matrix.cells.end());
        parent->memory.offsets.push_back(static_cast<std::int64_t>(rowEnds.size()) - 1);
    }
    const std::size_t count = all.size();
    const std::size_t rowCount = rowEnds.size() - 1;
    const std::vector<const void*> rowBuffers{nullptr, rowEnds.data()};
    add_complex_parts(all, std::move(numbers), cells.get());
    make_array(count, 0, {nullptr}, std::move(cells), rows->addChild());
    make_array(rowCount, 0, rowBuffers, std::move(rows), parent->addChild());
}

void make_column_array(std::shared_ptr<const ValueColumn> shared, ArrowArray* array)
{
    auto holder = std::make_unique<ArrayHolder>();
    ArrayMemory& memory = holder->memory;
    const ValueColumn& column = *shared;
    memory.column = std::move(shared);
    const std::size_t rows = column.size();
    const std::size_t missing = column.missing();
    memory.validity = validity_of(column, missing);
    std::vector<const void*> buffers{missing == 0 ? nullptr : memory.validity.data()};
    switch (column.type) {
    case Type::Number:
        buffers.push_back(column.numbers.data());
        break;
    case Type::Integer:
    case Type::Time:
        buffers.push_back(column.integers.data());
        break;
    case Type::Complex: {
        // Whoever moves the parts out of their place takes their memory along.
        auto numbers = std::make_unique<ArrayHolder>();
        numbers->memory.column = memory.column;
        add_complex_parts(column.complexNumbers, std::move(numbers), holder.get());
        break;
    }
    case Type::Matrix:
        add_matrix_rows(column.matrices, holder.get());
        buffers.push_back(memory.offsets.data());
        break;
    case Type::Text:
        buffers.push_back(column.codes.data());
        make_dictionary(column.dictionary, &holder->dictionary);
        break;
    }
    make_array(rows, missing, std::move(buffers), std::move(holder), array);
}
} // namespace

void make_table_schema(const std::vector<const ValueColumn*>& columns, ArrowSchema* schema)
{
    auto holder = std::make_unique<SchemaHolder>();
    for (const ValueColumn* column : columns) {
        make_column_schema(*column, holder->addChild());
    }
    make_schema("+s", "", {}, std::move(holder), schema);
    schema->flags = 0;
}

void make_table_array(const SharedColumns& columns, std::size_t rows, ArrowArray* array)
{
    auto holder = std::make_unique<ArrayHolder>();
    for (const auto& column : columns) {
        make_column_array(column, holder->addChild());
    }
    make_array(rows, 0, {nullptr}, std::move(holder), array);
}
} // namespace dbapi
