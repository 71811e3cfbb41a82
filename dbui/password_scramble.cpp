#include "dbui/password_scramble.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {
constexpr const char* kKey1 = "q!58%z7&1#tb=3";
constexpr const char* kKey2 = "5&81kvzp47RTM2";
constexpr const char* kKey3 = "*@93! JQK-_8^~";

QByteArray bytes_of(const std::string& text)
{
    return {text.data(), static_cast<qsizetype>(text.size())};
}

std::string hex(const std::string& text)
{
    return bytes_of(text).toHex().toStdString();
}

std::string base64(const std::string& text)
{
    return bytes_of(text).toBase64().toStdString();
}

/// The texts that are joined to the password, first to last. Existing files depend on the order.
std::vector<std::string> joined_texts(
    const std::string& username,
    const std::string& connectionName,
    const std::string& hostname,
    const std::string& port)
{
    QByteArray account =
        join_add_str_to_bytearray(bytes_of(base64(username)), base64(jumble_str(kKey1)));
    account = join_add_str_to_bytearray(account, hex(port));
    return {
        base64(kKey1),
        hex(jumble_str(kKey3)),
        base64(jumble_str(connectionName)),
        hex(kKey2),
        hex(jumble_str(hostname)),
        base64(jumble_str(hostname)),
        hex(jumble_str(kKey2)),
        account.toStdString(),
        hex(kKey3)};
}
} // namespace

std::string jumble_str(const std::string& text)
{
    const std::size_t size = text.size();
    std::string jumbled;
    jumbled.reserve(size);
    for (std::size_t i = 0; i < size / 2; ++i) {
        jumbled += text[size - 1 - i];
        jumbled += text[i];
    }
    if (size % 2 == 1) {
        jumbled += text[size / 2];
    }
    return jumbled;
}

std::string unjumble_str(const std::string& text)
{
    const std::size_t size = text.size();
    std::string plain(size, '\0');
    for (std::size_t i = 0; i < size / 2; ++i) {
        plain[size - 1 - i] = text[2 * i];
        plain[i] = text[2 * i + 1];
    }
    if (size % 2 == 1) {
        plain[size / 2] = text.back();
    }
    return plain;
}

QByteArray join_add_str_to_bytearray(const QByteArray& a, const std::string& b)
{
    const auto bSize = static_cast<qsizetype>(b.size());
    std::string mixed;
    for (qsizetype i = 0; i < std::max(a.size(), bSize); ++i) {
        if (i < a.size()) {
            mixed += a[i];
        }
        if (i < bSize) {
            mixed += b[static_cast<std::size_t>(bSize - 1 - i)];
        }
    }
    return QByteArray::number(a.size()) + '|' + bytes_of(jumble_str(mixed));
}

QByteArray unjoin_subtract_str_from_bytearray(const QByteArray& joined, const std::string& b)
{
    const qsizetype bar = joined.indexOf('|');
    const int size = joined.left(bar < 0 ? joined.size() : bar).toInt();
    const std::string mixed =
        bar < 0 ? std::string() : unjumble_str(joined.mid(bar + 1).toStdString());

    // The end comes from what is there, so that a damaged size cannot make this run on.
    const std::size_t end = std::max(b.size(), mixed.size());
    QByteArray a;
    for (std::size_t at = 0, i = 0; at < end; at += i < b.size() ? 2 : 1, ++i) {
        if (static_cast<qsizetype>(i) < size) {
            a += at < mixed.size() ? mixed[at] : '\0';
        }
    }
    return a;
}

void encode_pwd_to_hex_string(
    const std::string& password,
    std::string* out,
    const std::string& username,
    const std::string& connectionName,
    const std::string& /*databaseName*/,
    const std::string& hostname,
    const std::string& port)
{
    if (password.empty()) {
        out->clear();
        return;
    }
    const std::vector<std::string> texts = joined_texts(username, connectionName, hostname, port);
    const QByteArray scrambled = std::accumulate(
        texts.begin(), texts.end(), bytes_of(hex(jumble_str(password))), join_add_str_to_bytearray);
    *out = scrambled.toHex().toStdString();
}

void decode_pwd_from_hex_string(
    const std::string& hexString,
    std::string* out,
    const std::string& username,
    const std::string& connectionName,
    const std::string& /*databaseName*/,
    const std::string& hostname,
    const std::string& port)
{
    const std::vector<std::string> texts = joined_texts(username, connectionName, hostname, port);
    const QByteArray scrambled = std::accumulate(
        texts.rbegin(), texts.rend(), QByteArray::fromHex(bytes_of(hexString)),
        unjoin_subtract_str_from_bytearray);
    const std::string password = unjumble_str(QByteArray::fromHex(scrambled).toStdString());
    *out = password.substr(0, password.find('\0'));
}
