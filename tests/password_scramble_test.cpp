#include "dbui/password_scramble.h"

#include "tests/support/case_table.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

namespace {
// Fields: password, user, connection name, host, port.
using Fields = std::vector<std::string>;

std::string encode(const Fields& f)
{
    std::string hex = "left over";
    encode_pwd_to_hex_string(f[0], &hex, f[1], f[2], "any", f[3], f[4]);
    return hex;
}

std::string decode(const Fields& f, const std::string& hex)
{
    std::string password = "left over";
    decode_pwd_from_hex_string(hex, &password, f[1], f[2], "other", f[3], f[4]);
    return password;
}

const Fields kLab = {"secret", "eng", "lab", "dbhost", "3306"};
} // namespace

TEST(PasswordScramble, MatchesFixedStringsBothWays)
{
    check_cases("connections.case", "password", 5, [](const Fields& fields) {
        const std::string hex = encode(fields);
        EXPECT_EQ(decode(fields, hex), fields[0]);
        return hex;
    });
}

TEST(PasswordScramble, TakesLongPasswordsAndCutsAtZero)
{
    Fields fields = kLab;
    fields[0] = std::string("ab\0cd", 5);
    EXPECT_EQ(decode(fields, encode(fields)), "ab");

    fields[0].clear();
    for (int i = 0; i < 4096; ++i) {
        fields[0] += static_cast<char>(33 + i * 7 % 94);
    }
    const std::string hex = encode(fields);
    EXPECT_EQ(decode(fields, hex), fields[0]);
    const auto method = QCryptographicHash::Sha256;
    EXPECT_EQ(
        QCryptographicHash::hash(QByteArray::fromStdString(hex), method).toHex().toStdString(),
        "ef4ebde44871e0849d665777eab56d216c2ce2c2f3bc0bb4cd5183649e88b7d2");
}

// What comes out of damaged text is of no interest, as long as something does.
TEST(PasswordScramble, SurvivesDamage)
{
    const std::string hex = encode(kLab);
    for (std::size_t i = 0; i < hex.size(); ++i) {
        std::string flipped = hex;
        flipped[i] = flipped[i] == '7' ? 'c' : '7';
        decode(kLab, flipped);
        EXPECT_NE(decode(kLab, hex.substr(0, i)), kLab[0]) << i;
    }
    check_cases("connections.case", "damaged password", 1, [](const Fields& fields) {
        return decode(kLab, fields[0]);
    });
}
