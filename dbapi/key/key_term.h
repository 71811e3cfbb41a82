#pragma once

#include <string>

/// One key that the catalogue is asked for: key name, table name, category and data type, the last
/// two as split from an attribute string and possibly empty. Ordered by these four texts in this
/// order, byte by byte.
class dbapiKeyTermC // NOLINT(readability-identifier-naming)
{
public:
    dbapiKeyTermC(
        std::string keyname,
        std::string tablename,
        std::string category,
        std::string datatype);

    [[nodiscard]] const std::string& keyname() const { return keyname_; }

    [[nodiscard]] const std::string& tablename() const { return tablename_; }

    [[nodiscard]] const std::string& category() const { return category_; }

    [[nodiscard]] const std::string& datatype() const { return datatype_; }

    bool operator<(const dbapiKeyTermC& other) const;
    bool operator==(const dbapiKeyTermC& other) const;

private:
    std::string keyname_;
    std::string tablename_;
    std::string category_;
    std::string datatype_;
};
