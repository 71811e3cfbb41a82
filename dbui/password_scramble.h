#pragma once

#include <QByteArray>

#include <string>

/// Scrambling of stored passwords. It keeps a password from being read at a glance and is no
/// encryption: whoever has this code can turn it back. All texts are taken byte by byte, in
/// whatever encoding they have. Nothing here fails; damaged input gives a wrong or empty password.

/// Sets `out` to lower-case hexadecimal digits, or to nothing for an empty password. What comes out
/// can be turned back only with the same user name, connection name, host name and port. The
/// database name has no influence.
void encode_pwd_to_hex_string(
    const std::string& password,
    std::string* out,
    const std::string& username,
    const std::string& connectionName,
    const std::string& databaseName,
    const std::string& hostname,
    const std::string& port);

/// Sets `out` to the password that `hexString` was made from, up to its first zero byte.
void decode_pwd_from_hex_string(
    const std::string& hexString,
    std::string* out,
    const std::string& username,
    const std::string& connectionName,
    const std::string& databaseName,
    const std::string& hostname,
    const std::string& port);

/// The bytes in the order last, first, last but one, second, and so on; `unjumble_str` restores the
/// first order.
std::string jumble_str(const std::string& text);
std::string unjumble_str(const std::string& text);

/// The length of `a` and a bar, followed by the jumbled mix of `a` with `b` taken backwards.
QByteArray join_add_str_to_bytearray(const QByteArray& a, const std::string& b);
/// The `a` of a joined value, given a `b` of the length that it was joined with.
QByteArray unjoin_subtract_str_from_bytearray(const QByteArray& joined, const std::string& b);
