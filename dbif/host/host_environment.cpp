#include "dbif/host/host_environment.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

namespace {
char* copy_of(const std::string& text)
{
    return strdup(text.c_str());
}

std::string value_of(const std::string& name)
{
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? std::string() : std::string(value);
}

bool is_name_character(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// Reads the reference that starts at the `$` in `text[*at]`, moves `at` behind it and returns its
/// value.
std::string expand_reference(const std::string& text, std::size_t* at)
{
    std::size_t start = *at + 1;
    const bool braced = start < text.size() && text[start] == '{';
    start += braced ? 1 : 0;
    std::size_t end = start;
    while (end < text.size() && is_name_character(text[end])) {
        ++end;
    }
    if (end == start || (braced && (end == text.size() || text[end] != '}'))) {
        ++*at;
        return "$";
    }
    *at = end + (braced ? 1 : 0);
    return value_of(text.substr(start, end - start));
}
} // namespace

char* astr_expand_environment_value(const char* /*context*/, const char* text)
{
    if (text == nullptr) {
        return nullptr;
    }
    const std::string given = text;
    std::string expanded;
    for (std::size_t at = 0; at < given.size();) {
        if (given[at] == '$') {
            expanded += expand_reference(given, &at);
        } else {
            expanded += given[at++];
        }
    }
    return copy_of(expanded);
}

void astr_set_environment(const char* /*context*/) {}

char* astr_environment_value(const char* name)
{
    const char* value = name == nullptr ? nullptr : std::getenv(name);
    return value == nullptr ? nullptr : copy_of(value);
}

void astr_free_string(char* text)
{
    std::free(text);
}

void gmem_ee_free(void* memory)
{
    std::free(memory);
}
