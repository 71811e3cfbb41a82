#pragma once

#include <string>

/// One key that the catalogue is asked for (see catalogue_reader.h): key name, table name, category
/// and data type. A plain value; the four texts are UTF-8 and kept as given.
class dbapiKeyTermC // NOLINT(readability-identifier-naming)
{
public:
    dbapiKeyTermC(
        std::string keyname,
        std::string tablename,
        std::string category,
        std::string datatype);

    /// The name of the key, with letter case.
    [[nodiscard]] const std::string& keyname() const { return keyname_; }

    /// The record table in which it is looked for; a term of another table is passed over.
    [[nodiscard]] const std::string& tablename() const { return tablename_; }

    /// Category and data type as split from an attribute string, in short names; empty for any.
    [[nodiscard]] const std::string& category() const { return category_; }

    [[nodiscard]] const std::string& datatype() const { return datatype_; }

    /// Ordered by these four texts in this order, byte by byte.
    bool operator<(const dbapiKeyTermC& other) const;
    bool operator==(const dbapiKeyTermC& other) const;

private:
    std::string keyname_;
    std::string tablename_;
    std::string category_;
    std::string datatype_;
};
