#include "dbapi/key/key_term.h"

#include <tuple>
#include <utility>

dbapiKeyTermC::dbapiKeyTermC(
    std::string keyname,
    std::string tablename,
    std::string category,
    std::string datatype)
    : keyname_(std::move(keyname)),
      tablename_(std::move(tablename)),
      category_(std::move(category)),
      datatype_(std::move(datatype))
{}

bool dbapiKeyTermC::operator<(const dbapiKeyTermC& other) const
{
    return std::tie(keyname_, tablename_, category_, datatype_) <
           std::tie(other.keyname_, other.tablename_, other.category_, other.datatype_);
}

bool dbapiKeyTermC::operator==(const dbapiKeyTermC& other) const
{
    return std::tie(keyname_, tablename_, category_, datatype_) ==
           std::tie(other.keyname_, other.tablename_, other.category_, other.datatype_);
}
